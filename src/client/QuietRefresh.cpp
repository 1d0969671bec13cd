#include "client/QuietRefresh.h"

#include "client/Client.h"
#include "link/clsWinSock.h"

#include <QApplication>
#include <QWidget>

using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds minimisedPause = 60s; // at least

} // namespace

QuietRefresh::QuietRefresh(const Client& client, QWidget& window, const QString& timer, Pause pause)
    : QObject(&window),
      m_client(client),
      m_window(window),
      m_pause(pause),
      m_clock(this)
{
    m_clock.setObjectName(timer);
    m_last.start();
    connect(&m_clock, &QTimer::timeout, this, &QuietRefresh::tick);
}

void QuietRefresh::start()
{
    const std::chrono::seconds pause = m_client.preferences.*m_pause;
    if (pause > 0s)
        m_clock.start(pause);
    else
        m_clock.stop();
}

void QuietRefresh::tick()
{
    const bool isResting =
        m_window.window()->isMinimized() && std::chrono::milliseconds(m_last.elapsed()) < minimisedPause;
    if (isResting || !isQuiet())
        return;
    m_last.restart();
    Q_EMIT due();
}

bool QuietRefresh::isQuiet() const
{
    return m_window.isVisible() && m_window.isEnabled() && m_client.link.isLoggedIn() && !m_client.link.pending() &&
           !QApplication::activePopupWidget() && !QApplication::activeModalWidget() &&
           QApplication::mouseButtons() == Qt::NoButton;
}
