#pragma once

#include <QObject>

class QLabel;
class QStatusBar;

/// What happens once a second for the life of the program: the status bar's labels, and memory given back.
class Housekeeping : public QObject
{
    Q_OBJECT

public:
    /// @param updatesAvailable  read at every tick; outlives this
    Housekeeping(QStatusBar& statusBar, const bool& updatesAvailable, QObject* parent);

    /// Shows an event of the link at the left of the status bar, until the next; an empty text takes it away. What does
    /// not fit is cut off.
    void note(const QString& text);
    /// Takes a note away, if it is still the one shown.
    void withdraw(const QString& text);

private:
    void tick();

    const bool& m_updatesAvailable;
    QLabel* lblNote;
    QLabel* lblStatus;
};
