#pragma once

#include "client/Preferences.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

class QWidget;
struct Client;

/// Says when a window that is in front is to follow the tracker by the clock: as often as the user likes it, more
/// rarely while the frame is minimised, and never under a menu, a box, a button that is held down or a request.
class QuietRefresh : public QObject
{
    Q_OBJECT

public:
    using Pause = std::chrono::seconds Preferences::*;

    /// @param window  asked whether it can be seen and used; owns this. The client outlives both
    /// @param timer   object name of the clock
    /// @param pause   the preference that says how often; 0 for never
    QuietRefresh(const Client& client, QWidget& window, const QString& timer, Pause pause);

    /// From now on, as it is preferred now.
    void start();

Q_SIGNALS:
    void due();

private:
    void tick();
    bool isQuiet() const;

    const Client& m_client;
    const QWidget& m_window;
    Pause m_pause;
    QTimer m_clock;
    QElapsedTimer m_last; ///< since `due`
};
