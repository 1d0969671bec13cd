#include "practice/answers/Answers.h"
#include "Caller.h"
#include "support/AddRow.h"

using namespace practice;
using namespace Qt::StringLiterals;

class AnswersTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
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

    void aStartIsAcknowledgedOrRefused_data()
    {
        // started: for this profile; 0 for none
        addColumns<QByteArray, QByteArray, QByteArray, int>("user", "text", "reply", "started");
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

    void nothingToCompressIsStillAStream()
    {
        QCOMPARE(envelope({}), "0[-]Quorvane[-]"_ba + QByteArray::fromHex("789c030000000001"));
    }
};

QTEST_GUILESS_MAIN(AnswersTest)
#include "AnswersTest.moc"
