#pragma once

#include "practice/world/Privileges.h"
#include "practice/world/Profile.h"

#include <QDateTime>
#include <QMap>

#include <chrono>
#include <random>

namespace practice {

/// An account that may log in from afar.
struct Account
{
    QByteArray name;
    QByteArray password;
    bool super = false;
    Privileges privileges = {};
    QList<int> profiles = {}; ///< the profiles that it administers; a super account administers all
    QByteArray address = {};  ///< of its newest connection; empty while none is open
    int connections = 0;      ///< open connections
    bool allows(const QByteArray& section, const QByteArray& privilege) const
    {
        return super || privileges.allows(section, privilege);
    }
    /// Whether a plugin is not restricted.
    bool mayUse(const QByteArray& plugin) const { return super || !privileges.has(plugin, restrictAccess); }
    bool administers(int profile) const { return super || profiles.contains(profile); }
};

/// A log or backup that the host keeps for a profile.
struct LogFile
{
    int profile = 0;
    QByteArray type; ///< "Admin Logs", "Backup Files", "Chat Logs", ...
    QByteArray name;
    QByteArray gameType; ///< of backups only
    QDate date;
    QByteArray content;

    /// Folder and name as a client asks for them, with backslashes.
    QByteArray path() const;
};

/// The plugin that starts games, and the section of its privileges.
inline constexpr char autoStart[] = "BHD Auto Start";
/// The plugin that tells what happens in matches, and the section of its privileges.
inline constexpr char matchWatch[] = "Match Watch";

/// A plugin that runs inside the tracker.
struct TrackerPlugin
{
    QByteArray name;
    QByteArray file;
    QByteArray version; ///< that the client's counterpart must have: a file version without its dots; may be empty
    bool enabled = true;
};

/// Everything the tracker knows: a plain value that no socket touches.
class World
{
public:
    /// How long a game loads a map.
    static constexpr int loadSeconds = 6;

    /// Nine profiles in every state, three pictures, logs of every type up to today, both plugins with version "1000"
    /// and news, accounts admin (super), moderator and guest, whose passwords are their names; guest has no privileges,
    /// and both plugins are restricted for it.
    static World lively(quint32 seed = 1, const QDateTime& now = QDateTime::currentDateTime());
    /// Three profiles: 1 "Alpha" hosts with two players, 2 "Bravo" is not active, 3 "Charlie" hosts the second game
    /// family with one player. Processes 200 and 201 are free. The clock stands at 29 November 2009, 20:00. Same
    /// accounts and plugins, no news.
    static World small();
    /// `profiles` profiles that all host with `playersEach` players.
    static World many(int profiles, int playersEach = 16, quint32 seed = 1);

    QList<Profile> profiles;
    QList<HostProcess> processes;
    QList<Account> accounts;
    QList<LogFile> files;
    QList<TrackerPlugin> plugins;
    QMap<QByteArray, QByteArray> pictures; ///< mod pictures by file name
    QList<QByteArray> statsSystems;
    QList<QByteArray> connectivityLog;
    QByteArray hostName = "Practice host";
    QByteArray version = "3.0.1.0";
    quint16 supportPort = 0; ///< announced at login
    QDateTime clock;
    std::chrono::seconds newsEvery{0}; ///< how often "Match Watch" tells something while the world moves; 0 for never
    std::minstd_rand chance;

    Profile* profile(int id);
    const Profile* profile(int id) const;
    Account* account(const QByteArray& name);
    const HostProcess* process(int id) const;
    /// The enabled plugin of that name, or null.
    const TrackerPlugin* plugin(const QByteArray& name) const;
    /// Sets the version that a plugin demands; a plugin that is not there yet joins.
    void setPluginVersion(const QByteArray& name, const QByteArray& demanded);
    void removePlugin(const QByteArray& name);
    /// Sections of the tracker and of its enabled plugins.
    QList<PrivilegeSection> sections() const;

    /// Makes the profile follow the process, whose game it then hosts.
    /// @return false, with nothing changed, when one of them is unknown, the profile follows a process already or the
    /// process is followed by another profile
    bool attach(int profileId, int processId);
    /// Ends following; the game runs on.
    bool detach(int profileId);
    /// Starts a game for a profile: a process of its own, which nobody follows yet.
    /// @return false, with nothing changed, when the profile is unknown, follows a process already, is of a game that
    /// cannot be started, or the game last started for it still runs
    bool startGame(int profileId);
    /// Ends the followed process itself.
    bool stopGame(int profileId);
    bool deleteProfile(const QByteArray& name);

    /// Gives every profile a chat log of that size, dated today: lines of usual length with line ends of every kind.
    void addBigLog(int mebibytes);

    void connected(const QByteArray& accountName, const QByteArray& address);
    void disconnected(const QByteArray& accountName);
    /// Adds a line with the world's date and time to the connectivity log, which keeps its newest 500 lines.
    void log(const QByteArray& line);

    /// Lets the world live on: timers run down, maps are loaded, played and scored, players come and go. What happens
    /// depends on the seed alone. At most one day a call.
    void advance(std::chrono::seconds time);
    /// Lets a player be eliminated in one of the matches, counts it for both sides, and tells of it in a line that
    /// holds no message marker. Empty when nobody plays against anybody.
    QByteArray eliminate();

private:
    void advanceOneSecond(Profile& profile);
    void play(Profile& profile);
    void addPlayer(Profile& profile);
    int below(int limit);
};

} // namespace practice
