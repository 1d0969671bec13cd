#include "practice/world/PlayerNames.h"

#include <array>

namespace practice {

namespace {

// One umlaut and one accent: names are bytes of the code page, and clients have to show them.
constexpr std::array<const char*, playerNames> names{
    "Ghost",      "Raven",      "[TF] Maverick", "Bravo_Six", "Sandstorm", "K\xF6nig",   "Hammerhead", "Doc",
    "Nomad",      "Sgt.Pepper", "Viper",         "Longshot",  "Ren\xE9",   "Tumbleweed", "Iceman",     "Jackal",
    "Mad Max",    "Echo",       "Foxhound",      "Mongoose",  "Reaper",    "Lucky 7",    "Whiskey",    "Duke",
    "Cobra",      "Dust Devil", "Ranger",        "Wolf",      "Sparks",    "Hawkeye",    "Bulldog",    "Grizzly",
    "Night Owl",  "Torch",      "Skid",          "Badger",    "Comet",     "Falcon",     "Anvil",      "Tango",
    "Desert Fox", "Stitch",     "Rook",          "Otter",     "Kestrel",   "Flint",      "Moose",      "Zulu",
};

} // namespace

QByteArray playerName(int number)
{
    const QByteArray name = names[static_cast<std::size_t>(number % playerNames)];
    const int round = number / playerNames;
    return round == 0 ? name : name + ' ' + QByteArray::number(round + 1);
}

QByteArray identityOf(const QByteArray& name, int number)
{
    return name.left(2).toUpper().toHex().toUpper() + QByteArray::number(100000 + number);
}

Player newcomer(const QByteArray& name, const QByteArray& identity, int slot, int team)
{
    Player player;
    player.name = name;
    player.identity = identity;
    player.slot = slot;
    player.team = team;
    player.weapons = {{"M4 Carbine", 0}, {"M4 Carbine", 2}, {"M21 Sniper", 2}, {"M9 Pistol", 1}, {"Knife", 0}};
    return player;
}

} // namespace practice
