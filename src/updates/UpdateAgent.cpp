#include "updates/UpdateAgent.h"

#include "link/EventWait.h"
#include "updates/ListCheck.h"
#include "updates/NewsDesk.h"

#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto minute = 60000ms;
constexpr qint32 ticksBetween = 30; // that pass by between two checks

} // namespace

UpdateAgent::UpdateAgent(const UpdateServices& services, Client& client, bool& updatesAvailable, QObject* parent)
    : QObject(parent),
      m_services(services),
      m_updatesAvailable(updatesAvailable),
      m_news(std::make_unique<NewsDesk>(services, client, nullptr)),
      Timer1(new QTimer(this)),
      tmrUpdateCheck(new QTimer(this))
{
    Timer1->setObjectName(u"Timer1"_s);
    tmrUpdateCheck->setObjectName(u"tmrUpdateCheck"_s);
    tmrUpdateCheck->setInterval(minute);
    connect(Timer1, &QTimer::timeout, m_news.get(), &NewsDesk::fetchIfDue);
    connect(tmrUpdateCheck, &QTimer::timeout, this, &UpdateAgent::tick);
    Timer1->start(minute);
}

UpdateAgent::~UpdateAgent() = default;

void UpdateAgent::setAutomatic(bool automatic)
{
    if (automatic && !tmrUpdateCheck->isActive())
        tmrUpdateCheck->start();
    else if (!automatic)
        tmrUpdateCheck->stop();
}

bool UpdateAgent::isAvailable(const CheckOrder& order)
{
    ListCheck check(m_services, order, m_services.startLimit);
    const WaitEnd end = EventWait().endsOn(&check, &ListCheck::finished, WaitEnd::Done).run();
    return note(check, order.kind) && end == WaitEnd::Done;
}

/// @return whether the list offers something
bool UpdateAgent::note(const ListCheck& check, ListKind kind)
{
    const bool offers = check.hasList() && !check.candidates().isEmpty();
    m_offers.at(static_cast<std::size_t>(kind)) = offers;
    return offers;
}

void UpdateAgent::forgetAvailable(ListKind kind)
{
    m_offers.at(static_cast<std::size_t>(kind)) = false;
    if (m_offers == decltype(m_offers){})
        m_updatesAvailable = false;
}

bool UpdateAgent::QRVUpdateAvailable()
{
    return isAvailable(clientCheck);
}

bool UpdateAgent::PluginsUpdateAvailable()
{
    return isAvailable(pluginCheck);
}

void UpdateAgent::askAtStart(std::function<void(bool core, bool plugins)> done)
{
    auto* core = new ListCheck(m_services, clientCheck, m_services.startLimit, this);
    connect(core, &ListCheck::finished, this, [this, core, done = std::move(done)] {
        auto* plugins = new ListCheck(m_services, pluginCheck, m_services.startLimit, this);
        // Behind the check's own doings: what follows opens a box.
        connect(
            plugins, &ListCheck::finished, this,
            [this, core, plugins, done] {
                core->deleteLater();
                plugins->deleteLater();
                const bool offersCore = note(*core, ListKind::Client);
                done(offersCore, note(*plugins, ListKind::Plugins));
            },
            Qt::QueuedConnection);
    });
}

void UpdateAgent::tick()
{
    if (m_ticks < ticksBetween) {
        ++m_ticks;
        return;
    }
    m_ticks = 0;
    checkByClock();
}

void UpdateAgent::checkByClock()
{
    if (m_clientCheck && !m_clientCheck->isOver())
        return;
    m_clientCheck = std::make_unique<ListCheck>(m_services, clientCheckByClock, m_services.listLimit);
    connect(m_clientCheck.get(), &ListCheck::finished, this, [this] {
        if (note(*m_clientCheck, ListKind::Client))
            m_updatesAvailable = true;
        else if (!m_clientCheck->hasList() && !m_services.isPackaged)
            m_updatesAvailable = false;
        else if (!m_updatesAvailable || m_services.isPackaged)
            CheckForPlugins();
    });
}

void UpdateAgent::CheckForPlugins()
{
    if (m_pluginCheck && !m_pluginCheck->isOver())
        return;
    m_pluginCheck = std::make_unique<ListCheck>(m_services, pluginCheckByClock, m_services.listLimit);
    connect(m_pluginCheck.get(), &ListCheck::finished, this, [this] {
        if (note(*m_pluginCheck, ListKind::Plugins))
            m_updatesAvailable = true;
        else if (!m_pluginCheck->hasList())
            m_updatesAvailable = false;
    });
}
