#pragma once

#include <QGroupBox>
#include <QStringList>

class CutNote;
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
    /// @param isCut      whether there are more
    void showLines(const QStringList& lines, const QString& emptyText, bool isCut = false);

private:
    QListWidget* lstLog = nullptr;
    QLabel* lblLogEmpty = nullptr;
    CutNote* lblLogCut = nullptr;
};
