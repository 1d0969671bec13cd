#pragma once

#include "updates/UpdateServices.h"

#include <QObject>

#include <array>
#include <functional>
#include <memory>

class ListCheck;
class NewsDesk;
class QTimer;
struct Client;

/// The part of updates that works without a window: the questions of a start, the check by the clock, the news.
class UpdateAgent : public QObject
{
    Q_OBJECT

public:
    /// All outlive the agent.
    /// @param updatesAvailable  written by the check by the clock
    UpdateAgent(const UpdateServices& services, Client& client, bool& updatesAvailable, QObject* parent);
    ~UpdateAgent() override;

    NewsDesk& news() { return *m_news; }

    /// Whether the update location has something for the client's own files. Events run meanwhile, for a few seconds at
    /// most.
    bool QRVUpdateAvailable();
    /// The same for plugins.
    bool PluginsUpdateAvailable();
    /// Asks both without holding anybody up; `done` is called once, at most a few seconds later.
    void askAtStart(std::function<void(bool core, bool plugins)> done);

    /// The plugin half of the check by the clock: sets the flag when there is something, clears it when there is no
    /// list, and otherwise leaves it alone.
    void CheckForPlugins();
    /// Turns the check by the clock on or off.
    void setAutomatic(bool automatic);
    /// Everything that a list offered has been downloaded. The flag stays as long as the other list has something.
    void forgetAvailable(ListKind kind);

private:
    bool isAvailable(const CheckOrder& order);
    bool note(const ListCheck& check, ListKind kind);
    void tick();
    void checkByClock();

    const UpdateServices& m_services;
    bool& m_updatesAvailable;
    std::array<bool, 2> m_offers{}; ///< by kind of list, whether the last check found something
    std::unique_ptr<NewsDesk> m_news;
    std::unique_ptr<ListCheck> m_clientCheck; ///< the last one by the clock
    std::unique_ptr<ListCheck> m_pluginCheck;
    QTimer* Timer1;
    QTimer* tmrUpdateCheck;
    qint32 m_ticks = 0;
};
