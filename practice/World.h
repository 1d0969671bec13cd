#pragma once

#include "practice/Privileges.h"
#include "practice/Profile.h"

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

/// A plugin that runs inside the tracker.
struct TrackerPlugin
{
    QByteArray name;
    QByteArray file;
    QByteArray version; ///< without "-"
    bool enabled = true;
};

/// Everything the tracker knows: a plain value that no socket touches.
class World
{
public:
    /// How long a game loads a map.
    static constexpr int loadSeconds = 8;

    /// Nine profiles in every state, three pictures, logs of every type up to today, accounts admin (super), moderator
    /// and guest, whose passwords are their names; guest has no privileges.
    static World lively(quint32 seed = 1, const QDateTime& now = QDateTime::currentDateTime());
    /// Three profiles: 1 "Alpha" hosts with two players, 2 "Bravo" is not active, 3 "Charlie" hosts the second game
    /// family with one player. Processes 200 and 201 are free. The clock stands at 29 November 2009, 20:00. Same
    /// accounts.
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
    std::minstd_rand chance;

    Profile* profile(int id);
    const Profile* profile(int id) const;
    Account* account(const QByteArray& name);
    const HostProcess* process(int id) const;
    /// Sections of the tracker and of its enabled plugins.
    QList<PrivilegeSection> sections() const;

    /// Makes the profile follow the process, whose game it then hosts.
    /// @return false, with nothing changed, when one of them is unknown, the profile follows a process already or the
    /// process is followed by another profile
    bool attach(int profileId, int processId);
    /// Ends following; the game runs on.
    bool detach(int profileId);
    /// Ends the followed process itself.
    bool stopGame(int profileId);
    bool deleteProfile(const QByteArray& name);

    void connected(const QByteArray& accountName, const QByteArray& address);
    void disconnected(const QByteArray& accountName);
    /// Adds a line with the world's date and time to the connectivity log, which keeps its newest 500 lines.
    void log(const QByteArray& line);

    /// Lets the world live on: timers run down, maps are loaded, played and scored, players come and go. What happens
    /// depends on the seed alone. At most one day a call.
    void advance(std::chrono::seconds time);

private:
    void advanceOneSecond(Profile& profile);
    void play(Profile& profile);
    void addPlayer(Profile& profile);
    int below(int limit);
};

} // namespace practice
