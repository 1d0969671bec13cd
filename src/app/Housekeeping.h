#pragma once

#include <QObject>

class QLabel;
class QStatusBar;

/// What happens once a second for the life of the program: the label of waiting updates, and memory given back.
class Housekeeping : public QObject
{
    Q_OBJECT

public:
    /// @param updatesAvailable  read at every tick; outlives this
    Housekeeping(QStatusBar& statusBar, const bool& updatesAvailable, QObject* parent);

private:
    void tick();

    const bool& m_updatesAvailable;
    QLabel* lblStatus;
};
