#pragma once

#include <QGroupBox>
#include <QStringList>

class QLabel;
class QListWidget;

/// The frame that shows who connected to the tracker, and when.
class ConnectivityLog : public QGroupBox
{
    Q_OBJECT

public:
    explicit ConnectivityLog(QWidget* parent);

    /// Whoever looks at the end goes on looking at the end; anybody else stays where he is.
    /// @param emptyText  why there are no lines, if there are none
    void showLines(const QStringList& lines, const QString& emptyText);

private:
    QListWidget* lstLog = nullptr;
    QLabel* lblLogEmpty = nullptr;
};
