#include "practice/world/World.h"

#include "practice/world/PlayerNames.h"

#include <algorithm>

namespace practice {

namespace {

constexpr int scoreSeconds = 20;
constexpr int shortestMapSeconds = 12 * 60;
constexpr int longestMapSeconds = 30 * 60;
constexpr int mostFirstPlayers = 6; // who stand ready when a game opens

bool isPlaying(const Profile& profile)
{
    return profile.state == GameState::Hosting || profile.state == GameState::HostingSquad;
}

} // namespace

int World::below(int limit)
{
    return static_cast<int>(chance() % static_cast<unsigned>(limit));
}

void World::advance(std::chrono::seconds time)
{
    const std::chrono::seconds steps =
        std::clamp<std::chrono::seconds>(time, std::chrono::seconds(0), std::chrono::days(1));
    for (std::chrono::seconds step{0}; step < steps; ++step) {
        clock = clock.addSecs(1);
        for (Profile& profile : profiles)
            advanceOneSecond(profile);
    }
}

void World::advanceOneSecond(Profile& profile)
{
    if (profile.state == GameState::NotHosting || profile.state == GameState::NotActive)
        return;
    const bool playing = isPlaying(profile);
    if (playing)
        play(profile);
    profile.secondsLeft = std::max(0, profile.secondsLeft - 1);
    if (profile.secondsLeft > 0)
        return;

    if (playing) {
        profile.enter(GameState::Scoring);
        profile.secondsLeft = scoreSeconds;
    } else if (profile.state == GameState::Scoring) {
        const qsizetype next = profile.mapList.indexOf(profile.map) + 1;
        if (!profile.mapList.isEmpty())
            profile.map = profile.mapList[next % profile.mapList.size()];
        for (Player& player : profile.players)
            player = newcomer(player.name, player.identity, player.slot, player.team);
        profile.enter(GameState::Loading);
        profile.secondsLeft = loadSeconds;
    } else {
        profile.enter(GameState::Hosting);
        profile.secondsLeft = shortestMapSeconds + below(longestMapSeconds - shortestMapSeconds);
        const int first = profile.players.isEmpty() ? std::min(2 + below(mostFirstPlayers - 1), profile.maxPlayers) : 0;
        for (int i = 0; i < first; ++i)
            addPlayer(profile);
    }
}

void World::play(Profile& profile)
{
    if (below(20) == 0 && profile.players.size() < profile.maxPlayers)
        addPlayer(profile);
    if (below(40) == 0 && profile.players.size() > 1)
        profile.players.removeAt(below(static_cast<int>(profile.players.size())));

    for (Player& player : profile.players) {
        ++player.seconds;
        if (below(3) != 0)
            continue;
        WeaponUse& use = player.weapons[below(static_cast<int>(player.weapons.size()))];
        const int shots = 1 + below(6);
        player.shots += shots;
        use.shots += shots;
        use.seconds += 3;
        if (below(12) == 0) {
            ++player.kills;
            ++use.kills;
            player.experience += 10;
            use.experience += 10;
            player.headshots += below(4) == 0 ? 1 : 0;
            player.doubleKills += below(9) == 0 ? 1 : 0;
            player.knifings += below(15) == 0 ? 1 : 0;
            player.sniperKills += below(5) == 0 ? 1 : 0;
        }
        player.deaths += below(40) == 0 ? 1 : 0;
        player.medicSaves += below(60) == 0 ? 1 : 0;
    }
}

QByteArray World::eliminate()
{
    QList<Profile*> matches;
    for (Profile& profile : profiles) {
        if (isPlaying(profile) && profile.players.size() > 1)
            matches += &profile;
    }
    if (matches.isEmpty())
        return {};
    Profile& match = *matches[below(static_cast<int>(matches.size()))];
    const int players = static_cast<int>(match.players.size());
    const int first = below(players);
    Player& killer = match.players[first];
    Player& victim = match.players[(first + 1 + below(players - 1)) % players];
    WeaponUse& use = killer.weapons[below(static_cast<int>(killer.weapons.size()))];
    ++killer.kills;
    ++use.kills;
    ++victim.deaths;
    QByteArray line = match.name + ": " + killer.name + " eliminated " + victim.name + " (" + use.weapon + ')';
    // Whoever names himself like a marker must not cut the message.
    return line.replace("[ST]", "(ST)").replace("[ND]", "(ND)");
}

void World::addPlayer(Profile& profile)
{
    const auto slotTaken = [&](int slot) {
        return std::any_of(profile.players.cbegin(), profile.players.cend(),
                           [slot](const Player& player) { return player.slot == slot; });
    };
    int slot = 0;
    while (slotTaken(slot))
        ++slot;
    const auto nameTaken = [&](const QByteArray& name) {
        return std::any_of(profile.players.cbegin(), profile.players.cend(),
                           [&name](const Player& player) { return player.name == name; });
    };
    int number = below(playerNames);
    while (nameTaken(playerName(number)))
        ++number;
    const QByteArray name = playerName(number);
    profile.players += newcomer(name, identityOf(name, below(1000)), slot, slot % 2 + 1);
}

} // namespace practice
