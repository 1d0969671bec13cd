#include "practice/world/World.h"

#include <QSet>
#include <QTest>

using namespace practice;
using namespace Qt::StringLiterals;

namespace {

/// Everything of a world that moves, as one text.
QByteArray moving(const World& world)
{
    QByteArray text;
    for (const Profile& profile : world.profiles) {
        text += profile.map + profile.timerText() + profile.playersText() + profile.statusText;
        for (const Player& player : profile.players)
            text += player.name + QByteArray::number(player.shots) + ',' + QByteArray::number(player.kills);
    }
    return text;
}

} // namespace

class WorldTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSeedDecidesWhatHappens()
    {
        const QDateTime now(QDate(2009, 11, 29), QTime(20, 0));
        World first = World::lively(5, now);
        World second = World::lively(5, now);
        World other = World::lively(6, now);
        for (World* world : {&first, &second, &other})
            world->advance(std::chrono::minutes(10));
        QCOMPARE(moving(first), moving(second));
        QVERIFY(moving(first) != moving(other));
    }

    void aDayGoesThroughEveryStateWithoutContradiction()
    {
        World world = World::lively(1, QDateTime(QDate(2009, 11, 29), QTime(20, 0)));
        QSet<int> statesOfTheFirst;
        QSet<QByteArray> mapsOfTheFirst;
        for (int minute = 0; minute < 60 * 6; ++minute) {
            world.advance(std::chrono::seconds(7));
            for (const Profile& profile : world.profiles) {
                const bool active = profile.state != GameState::NotActive;
                QCOMPARE(profile.isAttached(), active);
                QCOMPARE(profile.isHosting(), active && profile.state != GameState::NotHosting);
                QVERIFY(profile.players.size() <= profile.maxPlayers);
                QSet<int> taken;
                for (const Player& player : profile.players)
                    taken += player.slot;
                QCOMPARE(taken.size(), profile.players.size());
            }
            statesOfTheFirst += static_cast<int>(world.profiles[0].state);
            mapsOfTheFirst += world.profiles[0].map;
        }
        QCOMPARE(statesOfTheFirst, (QSet<int>{1, 2, 4}));
        QVERIFY(mapsOfTheFirst.size() > 1);
    }

    void aRestrictedSectionAllowsNothing()
    {
        Privileges privileges;
        privileges.grant("Options", "View Options");
        QVERIFY(privileges.allows("Options", "View Options"));
        privileges.grant("Options", restrictAccess);
        QVERIFY(!privileges.allows("Options", "View Options"));
        QCOMPARE(privileges.text({{"Options", {restrictAccess, "View Options"}}, pluginSection("Relay")}),
                 "User|Options|Restrict Access=1|View Options=1|Relay|Restrict Access=0|Start Server=0|"
                 "Change Settings=0"_ba);
    }
};

QTEST_GUILESS_MAIN(WorldTest)
#include "WorldTest.moc"
