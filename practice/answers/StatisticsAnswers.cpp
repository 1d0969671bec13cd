#include "practice/answers/Answers.h"

#include <algorithm>

namespace practice {

namespace {

/// A record of zeros with some fields set, joined by "_".
QByteArray numberedRecord(qsizetype size, std::initializer_list<std::pair<qsizetype, int>> values)
{
    QList<QByteArray> fields(size, "0");
    for (const auto& [field, value] : values)
        fields[field] = QByteArray::number(value);
    return fields.join('_');
}

/// A player with the key under which his statistics are sent.
struct PlayerEntry
{
    QByteArray record;
    QByteArray key;
};

PlayerEntry entryOf(const Player& player, bool joint)
{
    const QByteArray slot = QByteArray::number(player.slot);
    const QByteArray team = QByteArray::number(player.team);
    const QByteArray name = player.name.toBase64();
    if (joint) // the key keeps the encoded name
        return {slot + '_' + team + '_' + name + "_0", slot + '_' + team + '_' + name};
    return {name + '_' + slot + '_' + team + '_' + player.identity.toBase64() + "_0",
            player.name + '_' + slot + '_' + team + '_' + player.identity};
}

QByteArray statisticsOf(const Player& p, bool joint)
{
    if (joint) {
        return numberedRecord(36, {{0, p.shots},
                                   {3, p.kills},
                                   {5, p.deaths},
                                   {7, p.medicSaves},
                                   {14, p.headshots},
                                   {15, p.knifings},
                                   {22, p.experience},
                                   {28, p.seconds},
                                   {30, p.sniperKills},
                                   {31, p.doubleKills}});
    }
    return numberedRecord(26, {{2, p.kills},
                               {3, p.deaths},
                               {9, p.medicSaves},
                               {13, p.doubleKills},
                               {14, p.headshots},
                               {15, p.knifings},
                               {16, p.sniperKills},
                               {23, p.shots},
                               {24, p.experience},
                               {25, p.seconds}});
}

QByteArray weaponOf(const Player& player, const WeaponUse& use, bool joint)
{
    const QByteArray name = player.name.toBase64();
    if (joint) {
        return numberedRecord(34, {{0, use.shots}, {3, use.kills}, {22, use.experience}, {28, use.seconds}}) + '_' +
               name + '_' + use.weapon.toBase64();
    }
    return name + '_' + use.weapon + '_' +
           numberedRecord(5, {{0, use.stance}, {1, use.seconds}, {2, use.kills}, {3, use.shots}, {4, use.experience}});
}

/// The second game family does not tell stances apart: one record a weapon.
QList<WeaponUse> withoutStances(const QList<WeaponUse>& uses)
{
    QList<WeaponUse> weapons;
    for (const WeaponUse& use : uses) {
        const auto same = std::find_if(weapons.begin(), weapons.end(),
                                       [&use](const WeaponUse& other) { return other.weapon == use.weapon; });
        if (same == weapons.end()) {
            weapons += use;
            continue;
        }
        same->seconds += use.seconds;
        same->kills += use.kills;
        same->shots += use.shots;
        same->experience += use.experience;
    }
    return weapons;
}

} // namespace

Answer answerGetPlayerStats(World& world, const Account&, const Request& request)
{
    const Profile* profile = world.profile(request.tail.toInt());
    if (!profile || !profile->isHosting())
        return {"0"};
    const bool joint = profile->gameVersion.contains("Joint Operations");
    QList<QByteArray> players;
    QList<QByteArray> statistics;
    QList<QByteArray> weapons;
    for (const Player& player : profile->players) {
        const PlayerEntry entry = entryOf(player, joint);
        players += entry.record.toBase64();
        statistics += entry.key.toBase64() + '_' + statisticsOf(player, joint).toBase64();
        for (const WeaponUse& use : joint ? withoutStances(player.weapons) : player.weapons)
            weapons += weaponOf(player, use, joint).toBase64();
    }
    return {players.join('|') + "[-][-]" + statistics.join('|') + "[-][-]" + weapons.join('|')};
}

} // namespace practice
