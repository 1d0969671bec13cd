#include "practice/links/Tracker.h"
#include "Caller.h"
#include "practice/links/Framing.h"
#include "practice/links/Outage.h"
#include "practice/links/SupportSide.h"
#include "support/AddRow.h"

#include <QPointer>
#include <QTcpSocket>

using namespace practice;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class TrackerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOutageEndsLinksAndComesBack()
    {
        Tracker tracker(World::small());
        SupportSide support;
        QVERIFY(tracker.listen() && support.listen());
        const quint16 port = tracker.port();
        for (const quint32 seed : {1U, 2U, 3U, 4U}) { // some resets, some not
            QTcpSocket client;
            client.connectToHost(u"127.0.0.1"_s, port);
            QTRY_COMPARE(tracker.links(), 1);
            QPointer<Outage> outage = new Outage(tracker, support, 1ms, 1ms, seed);
            connect(outage, &Outage::turned, outage, [&](bool isThere) {
                if (isThere)
                    outage->deleteLater(); // one is enough
            });
            QTRY_VERIFY(!outage);
            QTRY_COMPARE(tracker.links(), 0);
            QCOMPARE(tracker.port(), port);
        }
    }

    void aLoginIsAnsweredByItsAccount_data()
    {
        // privileges: how they begin; empty when the login fails
        addColumns<QByteArray, QByteArray, QByteArray>("user", "password", "privileges");
        addRow("super", "admin"_ba, "admin"_ba, "Super"_ba);
        addRow("some", "moderator"_ba, "moderator"_ba, "User|Profiles|Edit Profiles=0|Attach Profiles to Games=1|"_ba);
        addRow("none", "guest"_ba, "guest"_ba, "User|Profiles|Edit Profiles=0|Attach Profiles to"_ba);
        addRow("underscores", "a_b"_ba, "c_d"_ba, "User|"_ba);
        addRow("wrong password", "admin"_ba, "guest"_ba, QByteArray());
        addRow("unknown", "nobody"_ba, "x"_ba, QByteArray());
    }
    void aLoginIsAnsweredByItsAccount()
    {
        QFETCH(const QByteArray, user);
        QFETCH(const QByteArray, password);
        QFETCH(const QByteArray, privileges);
        Tracker tracker(World::small());
        tracker.world().accounts += Account{.name = "a_b", .password = "c_d"};
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        const QByteArray body = caller.login(user, password);
        if (privileges.isEmpty()) {
            QVERIFY(body.startsWith("Login Failed"));
            QVERIFY(caller.ask("GetStatus_" + user + "_VB6_").startsWith("Login Failed"));
            return;
        }
        const QList<QByteArray> fields = body.split('_');
        QCOMPARE(fields.size(), 5);
        QCOMPARE(fields[0], "Success"_ba);
        QVERIFY(QByteArray::fromBase64(fields[3]).startsWith(privileges));
        QCOMPARE(fields[4], "8000"_ba);
        QCOMPARE(tracker.world().account(user)->address, "127.0.0.1"_ba);
        caller.socket.abort();
        QTRY_COMPARE(tracker.links(), 0);
        QCOMPARE(tracker.world().account(user)->connections, 0);
    }

    void aFaultDoesWhatItsNameSays_data()
    {
        addColumns<Fault, QByteArray, bool>("fault", "bytes", "closes");
        const QByteArray whole = "0000013[ST]a_b_c[ND]";
        addRow("none", Fault::none(), whole, false);
        addRow("late", Fault::late(std::chrono::milliseconds(1)), whole, false);
        addRow("never", Fault::never(), QByteArray(), false);
        addRow("twice", Fault::twice(), whole + whole, false);
        addRow("cut off", Fault::cutOffAfter(9), "0000013[S"_ba, true);
        addRow("silent", Fault::silentAfter(3), "000"_ba, false);
        addRow("reset", Fault::reset(), QByteArray(), true);
        addRow("element", Fault::garbageInElement(1), "0000019[ST]a_\x01!*\x7F%(~_c[ND]"_ba, false);
        addRow("element too far", Fault::garbageInElement(3), whole, false);
        addRow("wrong prefix", Fault::wrongPrefix(), "length?[ST]a_b_c[ND]"_ba, false);
        addRow("huge prefix", Fault::hugePrefix(), "9999999[ST]a_b_c[ND]"_ba, false);
        addRow("no markers", Fault::noMarkers(), "0000013a_b_c"_ba, false);
        addRow("no end", Fault::noEnd(), "0000013[ST]a_b_c"_ba, false);
        addRow("empty", Fault::emptyBody(), "0000008[ST][ND]"_ba, false);
        const QByteArray news = "[ST]Plugin_qrvWatch_Alpha: Kestrel eliminated Otter (M4)[ND]";
        addRow("news first", Fault::newsFirst(), "0000060" + news + whole, false);
        addRow("news within", Fault::newsWithin(), "0000073" + news + "[ST]a_b_c[ND]", false);
    }
    void aFaultDoesWhatItsNameSays()
    {
        QFETCH(const Fault, fault);
        QFETCH(const QByteArray, bytes);
        QFETCH(const bool, closes);
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        QVERIFY(caller.login("admin", "admin").startsWith("Success_"));
        caller.received.clear();
        tracker.answerNext("GetStatus", fault);
        tracker.answerNextWith("GetStatus", "a_b_c");
        caller.write("GetStatus_admin_VB6_");
        QTRY_COMPARE(caller.received, bytes);
        QTRY_COMPARE(caller.closed(), closes);
        if (!closes) { // the fault was for one request only, and nothing of it follows
            caller.received.clear();
            caller.write("GetProfile_admin_VB6_99");
            QTRY_COMPARE(caller.received, "0000008[ST][ND]"_ba);
        }
    }

    void anActionNeedsItsPrivilege_data()
    {
        // firstProcess: of profile 1 afterwards
        addColumns<QByteArray, QByteArray, QByteArray, int, int>("user", "request", "reply", "firstProcess",
                                                                 "secondProcess");
        addRow("super attaches", "admin"_ba, "Attach_admin_VB6_2_200"_ba, "True"_ba, 100, 200);
        addRow("moderator attaches", "moderator"_ba, "Attach_moderator_VB6_2_200"_ba, "True"_ba, 100, 200);
        addRow("guest attaches", "guest"_ba, "Attach_guest_VB6_2_200"_ba, "False"_ba, 100, 0);
        addRow("process is taken", "admin"_ba, "Attach_admin_VB6_2_100"_ba, "False"_ba, 100, 0);
        addRow("no such process", "admin"_ba, "Attach_admin_VB6_2_7"_ba, "False"_ba, 100, 0);
        addRow("process 0", "admin"_ba, "Attach_admin_VB6_2_0"_ba, "False"_ba, 100, 0);
        addRow("moderator detaches", "moderator"_ba, "Detach_moderator_VB6_1"_ba, "True"_ba, 0, 0);
        addRow("guest detaches", "guest"_ba, "Detach_guest_VB6_1"_ba, "False"_ba, 100, 0);
        addRow("guest calls himself admin", "guest"_ba, "Detach_admin_VB6_1"_ba, "False"_ba, 100, 0);
        addRow("moderator stops", "moderator"_ba, "StopGame_moderator_VB6_1"_ba, "False"_ba, 100, 0);
        addRow("super stops", "admin"_ba, "StopGame_admin_VB6_1"_ba, "True"_ba, 0, 0);
    }
    void anActionNeedsItsPrivilege()
    {
        QFETCH(const QByteArray, user);
        QFETCH(const QByteArray, request);
        QFETCH(const QByteArray, reply);
        QFETCH(const int, firstProcess);
        QFETCH(const int, secondProcess);
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login(user, user);
        QCOMPARE(caller.ask(request), reply);
        const Profile& first = *tracker.world().profile(1);
        QCOMPARE(first.process, firstProcess);
        QCOMPARE(first.isHosting(), firstProcess != 0);
        QCOMPARE(first.playersText().isEmpty(), firstProcess == 0);
        QCOMPARE(tracker.world().profile(2)->process, secondProcess);
        QCOMPARE(tracker.world().process(100) == nullptr, request.startsWith("StopGame") && reply == "True");
    }

    void newsReachWhoMayHearThemAtAnyMoment()
    {
        Tracker tracker(World::small());
        tracker.world().profiles[0].name = "A[ND]_lpha";
        QVERIFY(tracker.listen());
        Caller admin(tracker), guest(tracker), stranger(tracker), waiting(tracker);
        admin.login("admin", "admin");
        guest.login("guest", "guest");
        stranger.login("nobody", "x");
        waiting.login("moderator", "moderator");
        tracker.hold("GetStatus");
        waiting.write("GetStatus_moderator_VB6_");
        QTRY_COMPARE(tracker.held("GetStatus"), 1);
        for (Caller* caller : {&admin, &guest, &stranger, &waiting})
            caller->received.clear();

        QCOMPARE(tracker.sendPluginNews(), 2);
        for (Caller* caller : {&admin, &waiting}) {
            QTRY_VERIFY(caller->received.endsWith(")[ND]"));
            QVERIFY(caller->received.contains("[ST]Plugin_qrvWatch_A(ND)_lpha: "));
            QCOMPARE(caller->received.left(7).toInt() + 7, caller->received.size());
        }
        for (Caller* caller : {&guest, &stranger}) {
            caller->write("X_x_VB6_");
            QTRY_VERIFY(caller->received.endsWith("[ND]"));
            QVERIFY(!caller->received.contains("Plugin"));
        }
        tracker.world().removePlugin("Match Watch");
        QCOMPARE(tracker.sendPluginNews(), 0);
    }

    void newsComeBehindAReplyThatIsGoingOut()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.login("admin", "admin");
        const QByteArray body(1000, 'x');
        tracker.answerNextWith("GetStatus", body);
        tracker.answerNext("GetStatus", Fault::chunks(1));
        caller.received.clear();
        qsizetype before = 0;
        QObject::connect(
            &caller.socket, &QTcpSocket::readyRead, &tracker,
            [&] {
                before = caller.received.size();
                tracker.sendPluginNews();
            },
            Qt::SingleShotConnection);
        caller.write("GetStatus_admin_VB6_");
        QTRY_VERIFY(caller.received.endsWith(")[ND]"));
        QVERIFY2(before < body.size(), "the pieces came together");
        QVERIFY(caller.received.startsWith("0001008[ST]" + body + "[ND]"));
        QCOMPARE(caller.received.count("[ST]"), 2);
    }

    void aHeldAnswerIsThatOfItsArrival()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller first(tracker), second(tracker);
        for (Caller* caller : {&first, &second}) {
            caller->login("admin", "admin");
            caller->received.clear();
        }
        tracker.hold("GetStatus");
        tracker.answerNext("GetStatus", Fault::twice());
        first.write("GetStatus_admin_VB6_");
        QTRY_COMPARE(tracker.held("GetStatus"), 1);
        tracker.world().plugins.clear();
        second.write("GetStatus_admin_VB6_");
        QTRY_COMPARE(tracker.held("GetStatus"), 2);

        QVERIFY(tracker.release("GetStatus")); // the oldest, with its fault
        QTRY_COMPARE(first.received.count("[ND]"), 2);
        QVERIFY(first.received.contains("[ST]Status_QkhE"));
        QCOMPARE(tracker.held("GetStatus"), 1);
        QVERIFY(second.received.isEmpty());
        tracker.releaseAll();
        QTRY_COMPARE(second.received, "0000015[ST]Status_[ND]"_ba);
        QVERIFY(!tracker.release("GetStatus"));
        QCOMPARE(second.ask("GetStatus_admin_VB6_"), "Status_"_ba);
    }

    void aHeldAnswerIsNotOvertakenOnItsLink()
    {
        Tracker tracker(World::small());
        tracker.world().plugins.clear();
        QVERIFY(tracker.listen());
        Caller caller(tracker), other(tracker);
        for (Caller* each : {&caller, &other})
            each->login("admin", "admin");
        tracker.hold("GetStatus");
        tracker.hold("GetProfile");
        caller.received.clear();
        tracker.answerNextWith("X", "x");
        for (const char* name : {"GetStatus", "X", "GetProfile"})
            caller.write(QByteArray(name) + "_admin_VB6_99");
        QTRY_COMPARE(tracker.held("GetProfile"), 1);
        QVERIFY(tracker.release("GetProfile"));
        QCOMPARE(tracker.held("GetProfile"), 0);
        QCOMPARE(other.ask("X_admin_VB6_"), ""_ba); // the other link goes on
        QVERIFY(caller.received.isEmpty());
        QVERIFY(tracker.release("GetStatus"));
        QTRY_COMPARE(caller.received, "0000015[ST]Status_[ND]0000009[ST]x[ND]0000008[ST][ND]"_ba);
    }

    void whatFollowsAHeldAnswerHappensAfterIt_data()
    {
        QTest::addColumn<bool>("closes"); // the link that waits for the answer
        addRow("released", false);
        addRow("forgotten with its link", true);
    }
    void whatFollowsAHeldAnswerHappensAfterIt()
    {
        QFETCH(const bool, closes);
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller admin(tracker), moderator(tracker);
        admin.login("admin", "admin");
        moderator.login("moderator", "moderator");
        tracker.hold("KickProfileAdmin");
        admin.received.clear();
        admin.write("KickProfileAdmin_admin_VB6_2_" + "moderator"_ba.toBase64());
        QTRY_COMPARE(tracker.held("KickProfileAdmin"), 1);
        QVERIFY(moderator.ask("GetStatus_moderator_VB6_").startsWith("Status_"));
        if (closes)
            admin.socket.abort();
        else
            QVERIFY(tracker.release("KickProfileAdmin"));
        QTRY_VERIFY(moderator.closed());
        QCOMPARE(tracker.held("KickProfileAdmin"), 0);
        QTRY_COMPARE(admin.received, closes ? QByteArray() : "0000012[ST]True[ND]"_ba);
    }

    void aHostileClientIsBorneAndBounded()
    {
        Tracker tracker(World::small());
        QVERIFY(tracker.listen());
        Caller caller(tracker);
        caller.socket.write("noise[ND][ST][ND]x[ST]login_[ND][ST]Plugin_raw[ND][ST]_VB6_[ND]");
        QTRY_COMPARE(tracker.requests(), (QList<QByteArray>{"noise", "", "login_", "Plugin_raw", "_VB6_"}));
        QCOMPARE(tracker.links(), 1);
        caller.socket.write(QByteArray(RequestReader::maxPending + 1, 'x'));
        QTRY_VERIFY(caller.closed());
        QTRY_COMPARE(tracker.links(), 0);
    }
};

QTEST_GUILESS_MAIN(TrackerTest)
#include "TrackerTest.moc"
