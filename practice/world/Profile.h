#pragma once

#include <QByteArray>
#include <QList>

namespace practice {

/// The game version whose profiles the client starts and stops, with its two blanks.
extern const char* const deltaForce;
/// A version of the second game family that has its own statistics layout.
extern const char* const jointOperations;

/// What a server profile is doing; the numbers are those of the wire.
enum class GameState { NotHosting = 0, Loading = 1, Hosting = 2, HostingSquad = 3, Scoring = 4, NotActive = 5 };

/// One player's use of one weapon in one stance.
struct WeaponUse
{
    QByteArray weapon;
    int stance = 0; ///< 0 stand, 1 crouch, 2 prone, 3 midair
    int seconds = 0;
    int kills = 0;
    int shots = 0;
    int experience = 0;
};

/// A player on a game server with what he has done on the current map.
struct Player
{
    QByteArray name;
    QByteArray identity; ///< tells players of one name apart
    int slot = 0;
    int team = 0;
    int shots = 0;
    int kills = 0;
    int deaths = 0;
    int doubleKills = 0;
    int headshots = 0;
    int knifings = 0;
    int sniperKills = 0;
    int medicSaves = 0;
    int experience = 0;
    int seconds = 0;
    QList<WeaponUse> weapons;
};

/// What the profile editor edits.
struct ProfileSettings
{
    QList<QByteArray> scripts; ///< each an address, ":" and a server id
    QByteArray hostName = "Host";
    bool connectOnStart = false;
    bool announceRanks = false;
    int leftLeaning = 0; ///< 0 ignore, 1 disarm, 2 kill
    bool reportToMaster = false;
    bool antiPadding = false;
    QByteArray padMinutes = "5";
    QByteArray padPlayers = "4";
    QByteArray statsSystem;
};

/// One server profile. All texts are bytes of the host's code page.
struct Profile
{
    int id = 0;
    QByteArray name;
    QByteArray modPicture; ///< key into World::pictures; empty for none
    int maxPlayers = 32;
    QList<Player> players;
    QByteArray map; ///< empty while no game is hosted
    QList<QByteArray> mapList;
    QByteArray gameType;
    int secondsLeft = 0; ///< of the current state; not counted in NotHosting and NotActive
    GameState state = GameState::NotActive;
    QByteArray statusText = "Not active";
    QByteArray gameVersion;
    int process = 0; ///< the followed process; 0 for none
    ProfileSettings settings;

    bool isAttached() const { return process != 0; }
    bool isHosting() const { return !map.isEmpty(); }
    /// "players/maximum"; empty while no game is attached.
    QByteArray playersText() const;
    /// "hh:mm:ss"; empty while nothing is timed.
    QByteArray timerText() const;
    /// Sets the state and the status text that goes with it.
    void enter(GameState newState);
    /// Forgets the game: no process, players, map or timer.
    void leaveGame();
};

/// A game process on the host.
struct HostProcess
{
    int id = 0;
    QByteArray name;
    QByteArray gameVersion;
    int startedFor = 0; ///< the profile for which the tracker started it; 0 when it was there already
};

} // namespace practice
