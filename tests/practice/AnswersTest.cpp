#include "practice/Answers.h"
#include "Caller.h"

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

    void aPluginIsReportedWithTheVersionItDemands_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("version"); // null takes the plugin away
        QTest::addColumn<QByteArray>("status");
        const QByteArray start = "QkhEIEF1dG8gU3RhcnQ=-1-cXJ2QkhER1MuZGxs-";
        const QByteArray watch = "TWF0Y2ggV2F0Y2g=-1-cXJ2V2F0Y2guZGxs-";
        const auto row = [](const char* tag, const QByteArray& name, const QByteArray& version,
                            const QByteArray& status) { QTest::newRow(tag) << name << version << status; };
        row("outdated", "BHD Auto Start", "9999", start + "9999|" + watch + "1000");
        row("no version", "BHD Auto Start", "", start + "|" + watch + "1000");
        row("missing", "BHD Auto Start", {}, watch + "1000");
        row("another", "X", "1", start + "1000|" + watch + "1000|WA==-1-cXJ2WC5kbGw=-1");
    }
    void aPluginIsReportedWithTheVersionItDemands()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, version);
        QFETCH(const QByteArray, status);
        Tracker tracker(World::small());
        if (version.isNull())
            tracker.world().removePlugin(name);
        else
            tracker.world().setPluginVersion(name, version);
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login("admin", "admin");
        QCOMPARE(caller.ask("GetStatus_admin_VB6_"), "Status_" + status);
    }

    void pluginsAreOpenToTheModeratorAndRestrictedForTheGuest()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        for (const auto& [user, mark] : {std::pair("moderator"_ba, "=0|"_ba), std::pair("guest"_ba, "=1|"_ba)}) {
            const QByteArray text = QByteArray::fromBase64(caller.login(user, user).split('_').value(3));
            QVERIFY(text.contains("|BHD Auto Start|Restrict Access" + mark));
            QVERIFY(text.contains("|Match Watch|Restrict Access" + mark));
        }
    }

    void aStartIsAcknowledgedOrRefused_data()
    {
        QTest::addColumn<QByteArray>("user");
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("started"); // for this profile; 0 for none
        const auto row = [](const char* tag, const QByteArray& user, const QByteArray& text, const QByteArray& reply,
                            int started) { QTest::newRow(tag) << user << text << reply << started; };
        const QByteArray done = "";
        const QByteArray no = "Plugin_qrvBHDGS_Refused_";
        row("super", "admin", "Start_2_admin", done, 2);
        row("moderator", "moderator", "Start_2_moderator", done, 2);
        row("separators in the user name", "admin", "Start_2_a_VB6_b", done, 2);
        row("guest", "guest", "Start_2_guest", no + "2_not allowed", 0);
        row("guest calls himself admin", "guest", "Start_2_admin", no + "2_not allowed", 0);
        row("attached", "admin", "Start_1_admin", no + "1_cannot be started", 0);
        row("no such profile", "admin", "Start_9_admin", no + "9_cannot be started", 0);
        row("no profile", "admin", "Start_x_admin", no + "0_cannot be started", 0);
        row("something else", "admin", "Begin_2_admin", done, 0);
        row("nothing", "admin", "", done, 0);
    }
    void aStartIsAcknowledgedOrRefused()
    {
        QFETCH(const QByteArray, user);
        QFETCH(const QByteArray, text);
        QFETCH(const QByteArray, reply);
        QFETCH(const int, started);
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login(user, user);
        const qsizetype before = tracker.world().processes.size();
        for (int again = 0; again < 2; ++again) { // a game that runs is not started twice
            const QByteArray answer = caller.ask("Plugin_qrvBHDGS_" + text);
            QVERIFY(caller.received.endsWith("[ND]"));
            QCOMPARE(answer, again && started ? "Plugin_qrvBHDGS_Refused_2_cannot be started"_ba : reply);
            QCOMPARE(tracker.world().processes.size(), before + (started ? 1 : 0));
        }
        QCOMPARE(tracker.world().processes.constLast().startedFor, started);
    }

    void aStartedGameIsAttachedPlayedAndStopped()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login("admin", "admin");
        caller.ask("Plugin_qrvBHDGS_Start_2_admin");
        const QByteArray listed = caller.ask("Attach_admin_VB6_2").split('_').constLast();
        const QList<QByteArray> process = QByteArray::fromBase64(listed).split('|');
        QCOMPARE(process.value(1), "Delta Force,  V1.5.0.5"_ba);
        QCOMPARE(caller.ask("Attach_admin_VB6_2_" + process[0]), "True"_ba);
        const auto row = [&] {
            const QByteArray second = caller.ask("GetProfiles_admin__VB6_").split('_').value(2);
            return QByteArray::fromBase64(second).split('|');
        };
        tracker.world().advance(std::chrono::seconds(World::loadSeconds - 1));
        QCOMPARE(row().value(9), "1"_ba);
        QCOMPARE(row().value(7), process[0]);
        tracker.world().advance(std::chrono::seconds(1));
        const QList<QByteArray> hosting = row();
        QCOMPARE(hosting.value(9), "2"_ba);
        QVERIFY(hosting[3].split('/')[0].toInt() > 1);
        QVERIFY(!hosting[4].isEmpty());
        QVERIFY(hosting[6] > "00:11:59");
        QCOMPARE(caller.ask("StopGame_admin_VB6_2"), "True"_ba);
        QCOMPARE(row().mid(3, 7), (QList<QByteArray>{"", "", "TDM", "", "0", "Not active", "5"}));
        QVERIFY(!caller.ask("Attach_admin_VB6_2").contains(listed));
    }

    void nothingToCompressIsStillAStream()
    {
        QCOMPARE(envelope({}), "0[-]Quorvane[-]"_ba + QByteArray::fromHex("789c030000000001"));
    }
};

QTEST_GUILESS_MAIN(AnswersTest)
#include "AnswersTest.moc"
