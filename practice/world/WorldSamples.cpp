#include "practice/world/GifEmblem.h"
#include "practice/world/PlayerNames.h"
#include "practice/world/World.h"

#include <array>

namespace practice {

using namespace Qt::StringLiterals;

namespace {

const QList<QByteArray> desertMaps{"Dust Alley",       "Cracked Palace", "Harbour at Dawn", "Market Street",
                                   "Bridge Too Close", "Radio Hill",     "Wadi Crossing",   "The Refinery"};
const QList<QByteArray> islandMaps{"Monsoon Landing", "Coral Airfield", "Two Rivers", "Jungle Depot"};
const QByteArray xtreme = "Delta Force: Xtreme,  V1.6.9.1";

/// One row of the table from which a sample world's profiles are made.
struct Sketch
{
    const char* name;
    const char* picture;
    QByteArray gameVersion;
    const char* gameType;
    GameState state;
    int players;
    int maxPlayers;
    int secondsLeft;
};

QList<Account> sampleAccounts(const QList<Profile>& profiles)
{
    QList<int> all;
    for (const Profile& profile : profiles)
        all += profile.id;
    Privileges some;
    some.grant("Profiles", "Attach Profiles to Games").grant("Profiles", "Detach Profiles from Games");
    some.grant("Profiles", "Start Game from QRV").grant("Profile Admins", "View Connectivity Log");
    some.grant("Profile Admins", "View Users").grant("Profile Admins", "Kick User").grant("Options", "View Options");
    some.grant(autoStart, "Start Server");
    Privileges none;
    none.grant(autoStart, restrictAccess).grant(matchWatch, restrictAccess);
    return {
        {.name = "admin", .password = "admin", .super = true, .profiles = all},
        {.name = "moderator", .password = "moderator", .privileges = some, .profiles = all},
        {.name = "guest", .password = "guest", .privileges = none, .profiles = all},
    };
}

QList<TrackerPlugin> samplePlugins()
{
    return {{.name = autoStart, .file = "qrvBHDGS.dll", .version = "1000"},
            {.name = matchWatch, .file = "qrvWatch.dll", .version = "1000"}};
}

QMap<QByteArray, QByteArray> samplePictures()
{
    return {{"desert.gif", gifEmblem(Emblem::Shield)},
            {"airborne.gif", gifEmblem(Emblem::Parachute)},
            {"islands.gif", gifEmblem(Emblem::Crosshair)}};
}

Profile drawn(const Sketch& sketch, int id)
{
    Profile profile;
    profile.id = id;
    profile.name = sketch.name;
    profile.modPicture = sketch.picture;
    profile.gameVersion = sketch.gameVersion;
    profile.gameType = sketch.gameType;
    profile.maxPlayers = sketch.maxPlayers;
    profile.secondsLeft = sketch.secondsLeft;
    const QList<QByteArray>& maps = sketch.gameVersion == jointOperations ? islandMaps : desertMaps;
    for (qsizetype i = 0; i < maps.size(); ++i)
        profile.mapList += maps[(i + id) % maps.size()];
    profile.enter(sketch.state);
    if (sketch.state != GameState::NotActive)
        profile.process = 1000 + 4 * id;
    if (sketch.state != GameState::NotActive && sketch.state != GameState::NotHosting)
        profile.map = profile.mapList.front();
    profile.settings.hostName = sketch.name;
    profile.settings.scripts = {"http://stats.example/" + QByteArray::number(id) + ":" + QByteArray::number(100 + id)};
    profile.settings.statsSystem = "Quorvane Alpha";
    return profile;
}

QByteArray processName(const QByteArray& gameVersion)
{
    return gameVersion == jointOperations ? "joserver.exe" : "dfserver.exe";
}

QByteArray logText(const QByteArray& type, const Profile& profile, const QDate& date, int lines,
                   const QByteArray& lineEnd)
{
    const QByteArray day = date.toString(u"dd/MM/yyyy"_s).toLatin1();
    QByteArray text = type + " of " + profile.name + ", " + day + lineEnd + lineEnd;
    for (int i = 0; i < lines; ++i) {
        const int second = i * 86399 / qMax(1, lines);
        const QByteArray time = QTime(0, 0).addSecs(second).toString(u"hh:mm:ss"_s).toLatin1();
        text += time + "  " + playerName(i * 7 + profile.id) + ": " + profile.mapList.value(i % 5) + ", entry " +
                QByteArray::number(i + 1) + lineEnd;
    }
    return text;
}

/// A backup is no text: every value of a byte stands in it.
QByteArray archive(const QByteArray& text)
{
    QByteArray bytes("BMA1");
    for (int value = 0; value < 256; ++value)
        bytes += static_cast<char>(value);
    return bytes + text;
}

/// One file of every type for each of the last `days` days.
QList<LogFile> sampleFiles(const QList<Profile>& profiles, const QDate& today, int days)
{
    struct Kind
    {
        const char* type;
        const char* prefix;
        const char* ending;
        const char* lineEnd = "\r\n"; // trackers of other systems wrote the others
    };
    static constexpr std::array<Kind, 7> kinds{{{"Admin Logs", "admin", ".txt"},
                                                {"Backup Files", "backup", ".bma"},
                                                {"Chat Logs", "chat", ".txt"},
                                                {"Server Message Logs", "server", ".txt"},
                                                {"Player Logs", "players", ".txt"},
                                                {"Status Logs", "status", ".txt", "\r"},
                                                {"Import Logs", "import", ".txt", "\n"}}};
    QList<LogFile> files;
    for (const Profile& profile : profiles) {
        for (int back = days - 1; back >= 0; --back) {
            const QDate date = today.addDays(-back);
            for (const Kind& kind : kinds) {
                const QByteArray name =
                    QByteArray(kind.prefix) + '-' + date.toString(u"yyyyMMdd"_s).toLatin1() + kind.ending;
                const bool backup = QByteArray(kind.type) == "Backup Files";
                const int lines = 20 + 15 * back + (kind.prefix[0] == 'c' ? 400 : 0);
                const QByteArray text = logText(kind.type, profile, date, lines, kind.lineEnd);
                files += {profile.id, kind.type,
                          name,       backup ? profile.gameType : QByteArray(),
                          date,       backup ? archive(text) : text};
            }
        }
    }
    return files;
}

} // namespace

World World::lively(quint32 seed, const QDateTime& now)
{
    const std::array<Sketch, 9> sketches{{
        {"Desert Storm Coop", "desert.gif", deltaForce, "Coop", GameState::Hosting, 14, 32, 1180},
        {"Night Raiders Squad", "airborne.gif", deltaForce, "TKOTH", GameState::HostingSquad, 20, 24, 640},
        {"Capture & Hold", "desert.gif", deltaForce, "CTF", GameState::Scoring, 11, 16, 15},
        {"Search and Destroy", "airborne.gif", deltaForce, "S&D", GameState::Loading, 9, 32, 6},
        {"Island Assault", "islands.gif", jointOperations, "AAS", GameState::Hosting, 23, 64, 1510},
        {"Training Ground", "desert.gif", deltaForce, "TDM", GameState::NotHosting, 0, 12, 0},
        {"Reserve", "", deltaForce, "TDM", GameState::NotActive, 0, 32, 0},
        {"Xtreme Deathmatch", "airborne.gif", xtreme, "DM", GameState::Hosting, 6, 16, 95},
        {"Monsoon Night Watch", "islands.gif", jointOperations, "Coop", GameState::NotActive, 0, 32, 0},
    }};
    World world;
    world.clock = now;
    world.chance.seed(seed);
    world.supportPort = 8000;
    world.newsEvery = std::chrono::seconds(10);
    world.pictures = samplePictures();
    world.plugins = samplePlugins();
    world.statsSystems = {"Quorvane Alpha", "Quorvane Classic", "Standard PHP Stats"};
    for (const Sketch& sketch : sketches) {
        Profile profile = drawn(sketch, static_cast<int>(world.profiles.size()) + 1);
        for (int i = 0; i < sketch.players; ++i)
            world.addPlayer(profile);
        if (profile.isAttached())
            world.processes += HostProcess{profile.process, processName(profile.gameVersion), profile.gameVersion};
        world.profiles += profile;
    }
    world.processes += {{2120, "dfserver.exe", deltaForce}, {2264, "dfserver.exe", deltaForce}};
    world.processes += HostProcess{2308, "joserver.exe", jointOperations};
    world.accounts = sampleAccounts(world.profiles);
    world.files = sampleFiles(world.profiles, now.date(), 4);
    world.log("Tracker started");
    // Players arrive with a history; what they did so far is played, not invented.
    for (int second = 0; second < 300; ++second) {
        for (Profile& profile : world.profiles) {
            if (profile.state == GameState::Hosting || profile.state == GameState::HostingSquad)
                world.play(profile);
        }
    }
    return world;
}

World World::small()
{
    const std::array<Sketch, 3> sketches{{
        {"Alpha", "desert.gif", deltaForce, "Coop", GameState::Hosting, 2, 16, 600},
        {"Bravo", "", deltaForce, "TDM", GameState::NotActive, 0, 32, 0},
        {"Charlie", "islands.gif", jointOperations, "AAS", GameState::HostingSquad, 1, 64, 3725},
    }};
    World world;
    world.clock = QDateTime(QDate(2009, 11, 29), QTime(20, 0));
    world.supportPort = 8000;
    world.pictures = samplePictures();
    world.plugins = samplePlugins();
    world.statsSystems = {"Quorvane Alpha", "Quorvane Classic"};
    for (const Sketch& sketch : sketches) {
        Profile profile = drawn(sketch, static_cast<int>(world.profiles.size()) + 1);
        if (profile.isAttached()) {
            profile.process = 100 * profile.id;
            world.processes += HostProcess{profile.process, processName(profile.gameVersion), profile.gameVersion};
        }
        for (int slot = 0; slot < sketch.players; ++slot) {
            const QByteArray name = playerName(slot + 5 * (profile.id / 3));
            Player player = newcomer(name, identityOf(name, slot), slot, slot + 1);
            player.kills = 3 + slot;
            player.deaths = 1;
            player.shots = 40;
            player.experience = 30;
            player.seconds = 3725;
            player.weapons[0].kills = 3 + slot;
            player.weapons[0].shots = 40;
            player.weapons[0].seconds = 120;
            profile.players += player;
        }
        world.profiles += profile;
    }
    world.processes += {{200, "dfserver.exe", deltaForce}, {201, "joserver.exe", jointOperations}};
    world.accounts = sampleAccounts(world.profiles);
    world.files = sampleFiles(world.profiles, world.clock.date(), 2);
    world.log("Tracker started");
    return world;
}

World World::many(int profiles, int playersEach, quint32 seed)
{
    World world;
    world.clock = QDateTime(QDate(2009, 11, 29), QTime(20, 0));
    world.chance.seed(seed);
    world.supportPort = 8000;
    world.pictures = samplePictures();
    world.plugins = samplePlugins();
    world.statsSystems = {"Quorvane Alpha"};
    const QList<QByteArray> pictureNames = world.pictures.keys();
    for (int id = 1; id <= profiles; ++id) {
        Profile profile = drawn(
            {"", "", deltaForce, "Coop", GameState::Hosting, playersEach, playersEach + 8, 300 + world.below(1200)},
            id);
        profile.name = "Server " + QByteArray::number(id).rightJustified(5, '0');
        profile.modPicture = pictureNames[id % pictureNames.size()];
        for (int slot = 0; slot < playersEach; ++slot) {
            const QByteArray name = playerName(slot);
            profile.players += newcomer(name, identityOf(name, slot), slot, slot % 2 + 1);
        }
        world.processes += HostProcess{profile.process, processName(profile.gameVersion), profile.gameVersion};
        world.profiles += profile;
    }
    world.accounts = sampleAccounts(world.profiles);
    return world;
}

void World::addBigLog(int mebibytes)
{
    const qsizetype size = qsizetype{mebibytes} << 20;
    QByteArray text;
    text.reserve(size + 200);
    const std::array<const char*, 3> ends{"\r\n", "\n", "\r"};
    for (int line = 0; text.size() < size; ++line) {
        const QByteArray name = playerName(line * 7);
        text += QTime(0, 0).addSecs(line % 86400).toString(u"hh:mm:ss"_s).toLatin1() + "  " + name + ": entry " +
                QByteArray::number(line) + ", " + QByteArray::number(qsizetype{line} * 2654435761U % 1000003);
        text += line % 1000 < 998 ? ends[0] : ends[static_cast<std::size_t>(line % 1000 - 997)];
    }
    text.truncate(size);
    for (const Profile& profile : profiles)
        files += {profile.id, "Chat Logs", "chat-large.txt", {}, clock.date(), text};
}

} // namespace practice
