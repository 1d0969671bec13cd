#include "practice/Answers.h"

#include <QTest>

using namespace practice;
using namespace Qt::StringLiterals;

namespace {

QList<QByteArray> decodedItems(const QByteArray& section)
{
    QList<QByteArray> items;
    for (const QByteArray& item : section.split('|'))
        items += QByteArray::fromBase64(item);
    return items;
}

QList<QByteArray> sections(const QByteArray& body)
{
    const qsizetype first = body.indexOf("[-][-]");
    const qsizetype second = body.indexOf("[-][-]", first + 6);
    return {body.left(first), body.mid(first + 6, second - first - 6), body.mid(second + 6)};
}

} // namespace

class AnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void statisticsAreFoundUnderThePlayersKey_data()
    {
        QTest::addColumn<QByteArray>("profile");
        QTest::addColumn<QByteArray>("player");
        QTest::addColumn<QByteArray>("key");
        QTest::addColumn<int>("kills"); // which field
        QTest::addColumn<int>("seconds");
        QTest::addColumn<QByteArray>("weapon"); // the first record's beginning or end
        QTest::newRow("five fields") << "1"_ba
                                     << "R2hvc3Q=_0_1_NDc0ODEwMDAwMA==_0"_ba
                                     << "Ghost_0_1_4748100000"_ba << 2 << 25 << "R2hvc3Q=_M4 Carbine_0_120_3_40_0"_ba;
        QTest::newRow("four fields") << "3"_ba
                                     << "0_1_S/ZuaWc=_0"_ba
                                     << "0_1_S/ZuaWc="_ba << 3 << 28 << "_S/ZuaWc=_TTQgQ2FyYmluZQ=="_ba;
    }
    void statisticsAreFoundUnderThePlayersKey()
    {
        QFETCH(const QByteArray, profile);
        QFETCH(const QByteArray, player);
        QFETCH(const QByteArray, key);
        QFETCH(const int, kills);
        QFETCH(const int, seconds);
        QFETCH(const QByteArray, weapon);
        World world = World::small();
        const Request request = Request::parse("GetPlayerStats_admin_VB6_" + profile);
        const QList<QByteArray> parts = sections(answerRequest(world, *world.account("admin"), request).body);
        QCOMPARE(decodedItems(parts[0])[0], player);
        const QList<QByteArray> entry = parts[1].split('|')[0].split('_');
        QCOMPARE(QByteArray::fromBase64(entry[0]), key);
        const QList<QByteArray> record = QByteArray::fromBase64(entry[1]).split('_');
        QCOMPARE(record.value(kills), "3"_ba);
        QCOMPARE(record.value(seconds), "3725"_ba);
        const QByteArray first = decodedItems(parts[2])[0];
        QVERIFY2(first == weapon || first.endsWith(weapon), first.constData());
    }

    void aProfileWithoutAGameHasNoStatistics()
    {
        World world = World::small();
        const Account admin = *world.account("admin");
        QCOMPARE(answerRequest(world, admin, Request::parse("GetPlayerStats_admin_VB6_2")).body, "0"_ba);
        QCOMPARE(answerRequest(world, admin, Request::parse("GetPlayerStats_admin_VB6_x")).body, "0"_ba);
    }

    void nobodyRaisesHimselfOrTouchesASuperAccount()
    {
        World world = World::small();
        Account& moderator = *world.account("moderator");
        moderator.privileges.grant("Profile Admins", "Modify User").grant("Profile Admins", "Delete User");
        const Account who = moderator;
        const QByteArray text = "moderator|moderator"_ba.toBase64() + "[-]LgnPss|" + "x"_ba.toBase64() +
                                "||SelProfiles|[1]||Profiles|Profiles||Edit Profiles|1||Attach Profiles to Games|0";
        answerRequest(world, who, Request::parse("ModifyProfileAdmin_moderator_VB6_1_" + text.toBase64()));
        QCOMPARE(world.account("moderator")->password, "x"_ba);
        QVERIFY(!world.account("moderator")->allows("Profiles", "Edit Profiles"));
        QVERIFY(!world.account("moderator")->allows("Profiles", "Attach Profiles to Games"));
        answerRequest(world, who, Request::parse("DeleteProfileAdmin_moderator_VB6_1_" + "admin"_ba.toBase64()));
        QVERIFY(world.account("admin"));
    }

    void nothingToCompressIsStillAStream()
    {
        QCOMPARE(envelope({}), "0[-]Quorvane[-]"_ba + QByteArray::fromHex("789c030000000001"));
    }
};

QTEST_GUILESS_MAIN(AnswersTest)
#include "AnswersTest.moc"
