#include "practice/world/World.h"

#include <algorithm>
#include <utility>

namespace practice {

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype maxLogLines = 500;
constexpr int processIdStep = 4; // the host's system hands out multiples of it

QByteArray folderOf(const LogFile& file)
{
    if (file.type == "Admin Logs")
        return "\\adminlogs\\";
    if (file.type == "Backup Files")
        return "\\Backups\\" + file.gameType + '\\';
    if (file.type == "Chat Logs" || file.type == "Server Message Logs")
        return "\\messagelogs\\";
    return "\\misclogs\\";
}

/// The element of `list` whose `member` equals `value`, or null.
template <typename List, typename Member, typename Value>
auto* find(List& list, Member member, const Value& value)
{
    const auto found =
        std::find_if(list.begin(), list.end(), [&](const auto& element) { return element.*member == value; });
    return found == list.end() ? nullptr : &*found;
}

} // namespace

QByteArray LogFile::path() const
{
    return folderOf(*this) + name;
}

Profile* World::profile(int id)
{
    return find(profiles, &Profile::id, id);
}

const Profile* World::profile(int id) const
{
    return find(profiles, &Profile::id, id);
}

Account* World::account(const QByteArray& name)
{
    return find(accounts, &Account::name, name);
}

const HostProcess* World::process(int id) const
{
    return find(processes, &HostProcess::id, id);
}

const TrackerPlugin* World::plugin(const QByteArray& name) const
{
    const TrackerPlugin* found = find(plugins, &TrackerPlugin::name, name);
    return found && found->enabled ? found : nullptr;
}

void World::setPluginVersion(const QByteArray& name, const QByteArray& demanded)
{
    if (TrackerPlugin* known = find(plugins, &TrackerPlugin::name, name))
        known->version = demanded;
    else
        plugins += TrackerPlugin{
            .name = name, .file = "qrv" + QByteArray(name).replace(' ', "") + ".dll", .version = demanded};
}

void World::removePlugin(const QByteArray& name)
{
    plugins.removeIf([&](const TrackerPlugin& candidate) { return candidate.name == name; });
}

QList<PrivilegeSection> World::sections() const
{
    QList<PrivilegeSection> all = standardSections();
    for (const TrackerPlugin& plugin : plugins) {
        if (plugin.enabled)
            all += pluginSection(plugin.name);
    }
    return all;
}

bool World::attach(int profileId, int processId)
{
    Profile* target = profile(profileId);
    const HostProcess* game = process(processId);
    const bool taken = find(profiles, &Profile::process, processId) != nullptr;
    if (!target || !game || target->isAttached() || taken)
        return false;
    target->process = processId;
    target->gameVersion = game->gameVersion;
    target->map = target->mapList.value(0);
    target->secondsLeft = target->isHosting() ? loadSeconds : 0;
    target->enter(target->isHosting() ? GameState::Loading : GameState::NotHosting);
    return true;
}

bool World::detach(int profileId)
{
    Profile* target = profile(profileId);
    if (!target || !target->isAttached())
        return false;
    target->leaveGame();
    return true;
}

bool World::startGame(int profileId)
{
    const Profile* target = profile(profileId);
    const bool startable = target && !target->isAttached() && target->gameVersion == deltaForce;
    if (!startable || find(processes, &HostProcess::startedFor, profileId))
        return false;
    int highest = 0;
    for (const HostProcess& running : std::as_const(processes))
        highest = std::max(highest, running.id);
    const int id = (highest / processIdStep + 1 + below(40)) * processIdStep;
    processes += {.id = id, .name = deltaForce, .gameVersion = deltaForce, .startedFor = profileId};
    return true;
}

bool World::stopGame(int profileId)
{
    Profile* target = profile(profileId);
    if (!target || !target->isAttached())
        return false;
    processes.removeIf([ended = target->process](const HostProcess& game) { return game.id == ended; });
    target->leaveGame();
    return true;
}

bool World::deleteProfile(const QByteArray& name)
{
    return profiles.removeIf([&](const Profile& candidate) { return candidate.name == name; }) > 0;
}

void World::connected(const QByteArray& accountName, const QByteArray& address)
{
    if (Account* found = account(accountName)) {
        ++found->connections;
        found->address = address;
    }
    log(accountName + " logged in from " + address);
}

void World::disconnected(const QByteArray& accountName)
{
    if (Account* found = account(accountName); found && found->connections > 0) {
        if (--found->connections == 0)
            found->address.clear();
    }
    log(accountName + " disconnected");
}

void World::log(const QByteArray& line)
{
    connectivityLog += clock.toString(u"dd/MM/yyyy hh:mm:ss"_s).toLatin1() + ' ' + line;
    if (connectivityLog.size() > maxLogLines)
        connectivityLog.removeFirst();
}

} // namespace practice
