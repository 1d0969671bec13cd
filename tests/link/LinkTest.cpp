#include "support/AddRow.h"
#include "support/LinkRig.h"
#include "support/LoggedIn.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

const Request profilesRequest{"GetProfiles", "GetProfiles_admin_", {}};
const Request statusRequest{"GetStatus", "GetStatus_admin", {}};

} // namespace

class LinkTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyWaitEndsWhateverTheTrackerDoes_data()
    {
        addColumns<Fault, int, int>("fault", "end", "handled");
        constexpr int replied = int(WaitEnd::Done);
        constexpr int dropped = int(WaitEnd::Broken);
        constexpr int timedOut = int(WaitEnd::TimedOut);
        QTest::newRow("an answer") << Fault::none() << replied << 1;
        QTest::newRow("late") << Fault::late(20ms) << replied << 1;
        QTest::newRow("in chunks of 1 byte") << Fault::chunks(1) << replied << 1;
        QTest::newRow("in chunks of 9 bytes") << Fault::chunks(9) << replied << 1;
        QTest::newRow("twice") << Fault::twice() << replied << 1;
        QTest::newRow("letters for a length") << Fault::wrongPrefix() << replied << 1;
        QTest::newRow("far too large a length") << Fault::hugePrefix() << replied << 1;
        QTest::newRow("nothing in it") << Fault::emptyBody() << replied << 1;
        QTest::newRow("garbage") << Fault::garbage(3) << replied << 1;
        QTest::newRow("cut off at once") << Fault::cutOffAfter(0) << dropped << 0;
        QTest::newRow("cut off in the length") << Fault::cutOffAfter(3) << dropped << 0;
        QTest::newRow("cut off in the body") << Fault::cutOffAfter(60) << dropped << 0;
        QTest::newRow("reset") << Fault::reset() << dropped << 0;
        QTest::newRow("never") << Fault::never() << timedOut << 0;
        QTest::newRow("silent in the body") << Fault::silentAfter(60) << timedOut << 0;
        QTest::newRow("no end marker") << Fault::noEnd() << timedOut << 0;
        QTest::newRow("no markers") << Fault::noMarkers() << timedOut << 0;
    }
    void everyWaitEndsWhateverTheTrackerDoes()
    {
        QFETCH(const Fault, fault);
        QFETCH(const int, end);
        LoggedIn<LinkRig> rig;
        int handled = 0;
        rig.replies.on("GetProfiles", &rig.link, [&](std::string_view) { ++handled; });
        QSignalSpy told(&rig.link, &clsWinSock::hostUnusable);
        rig.tracker.answerNext("GetProfiles", fault);
        const bool mustTimeOut = end == int(WaitEnd::TimedOut);
        if (mustTimeOut)
            rig.link.replyLimit = 30ms;
        QCOMPARE(int(ask(rig.link, profilesRequest)), end);
        QTEST(handled, "handled");
        QCOMPARE(rig.link.isConnected(), end == int(WaitEnd::Done));
        QCOMPARE(told.count(), mustTimeOut ? 1 : 0);
        QVERIFY(!rig.link.pending());
        QVERIFY(rig.link.ReplyReceived());
        QCOMPARE(rig.locks, 0);
        if (end == int(WaitEnd::Done)) // what went before leaves nothing behind
            QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::Done);
    }

    void eachChunkRestartsTheLimit()
    {
        LoggedIn<LinkRig> rig;
        // A hundred pieces with pauses take longer than the limit, which only a whole pause may exceed.
        rig.tracker.answerNextWith("GetProfiles", QByteArray(985, 'x'));
        rig.tracker.answerNext("GetProfiles", Fault::chunks(10, 17ms));
        rig.link.replyLimit = 1500ms;
        QElapsedTimer passed;
        passed.start();
        QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::Done);
        QVERIFY(passed.elapsed() > 1500);
    }

    void aLateReplyIsNotTakenForAnotherRequests()
    {
        LoggedIn<LinkRig> rig;
        std::vector<std::string> bodies;
        for (const char* name : {"GetProfiles", "GetStatus"})
            rig.replies.on(name, &rig.link, [&](std::string_view body) { bodies.emplace_back(body); });
        rig.tracker.answerNextWith("GetProfiles", "too late");
        rig.tracker.answerNext("GetProfiles", Fault::late(60ms));
        rig.link.replyLimit = 20ms;
        QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::TimedOut);
        rig.link.replyLimit = 1min;
        QVERIFY(rig.logIn());
        rig.tracker.answerNextWith("GetStatus", "status");
        rig.tracker.answerNext("GetStatus", Fault::late(120ms));
        QCOMPARE(ask(rig.link, statusRequest), WaitEnd::Done);
        QCOMPARE(bodies, std::vector<std::string>{"status"});
    }

    void aDropForgetsWhatWasUnderWay()
    {
        LoggedIn<LinkRig> rig;
        QSignalSpy lost(&rig.link, &clsWinSock::linkLost);
        rig.tracker.sendRaw("0000900[ST]half a rep");
        QSignalSpy chunks(&rig.link, &clsWinSock::chunkArrived);
        QTRY_COMPARE(chunks.count(), 1);
        rig.link.SendData("GetProfiles", "GetProfiles_admin_", {});
        rig.tracker.answerNext("GetProfiles", Fault::never());
        QVERIFY(!rig.link.ReplyReceived());
        QTRY_VERIFY(!rig.tracker.requests().isEmpty() && rig.tracker.requests().constLast().startsWith("GetProfiles"));
        rig.tracker.closeLinks();
        QTRY_COMPARE(lost.count(), 1);
        QCOMPARE(rig.link.state(), SocketState::PeerClosing);
        QVERIFY(rig.link.ReplyReceived());
        QVERIFY(!rig.link.pending());
        rig.link.SendData("GetStatus", "GetStatus_admin", {});
        QVERIFY(rig.link.ReplyReceived() && !rig.link.pending());
        QCOMPARE(ask(rig.link, statusRequest), WaitEnd::Broken);

        QVERIFY(rig.logIn()); // the half reply is not in the way
        QCOMPARE(lost.count(), 1);
    }

    void repliesBeforeTheLoginAreDroppedAndEndNoWait()
    {
        LinkRig rig;
        QVERIFY(rig.connect());
        QSignalSpy dropped(&rig.link, &clsWinSock::replyHandled);
        int handled = 0;
        rig.replies.on("GetProfiles", &rig.link, [&](std::string_view) { ++handled; });
        rig.replies.onPluginMessage(&rig.link, [&](const std::string&, const std::string&) { ++handled; });
        for (const char* body : {"Profiles_", "Plugin_qrvStats_x"}) {
            rig.tracker.answerNextWith("GetProfiles", body);
            rig.link.SendData("GetProfiles", "GetProfiles_admin_", {});
            QTRY_COMPARE(dropped.count(), 1);
            dropped.clear();
        }
        QCOMPARE(handled, 0);
        QVERIFY(rig.link.pending());
        QCOMPARE(rig.link.phase(), LinkPhase::LoggingIn);
    }

    void loginRepliesCountWheneverTheyCome_data()
    {
        addColumns<QByteArray, bool, QString>("body", "loggedIn", "told");
        addRow("a success", "Success_a_b_U3VwZXI=_8001"_ba, true, QString());
        addRow("a failure", "a_Login Failed: kicked._b"_ba, false, u"a_Login Failed: kicked._b"_s);
        addRow("a success with too few fields", "Success_a_b"_ba, false,
               u"The tracker's answer to the login cannot be understood. The connection was closed."_s);
    }
    void loginRepliesCountWheneverTheyCome()
    {
        QFETCH(const QByteArray, body);
        LoggedIn<LinkRig> rig;
        QString told;
        QStringList privileges;
        QObject::connect(&rig.link, &clsWinSock::loginFailed, &rig.link,
                         [&](const std::string& text) { told = QString::fromStdString(text); });
        QObject::connect(&rig.link, &clsWinSock::hostUnusable, &rig.link, [&](const QString& text) { told = text; });
        QObject::connect(&rig.link, &clsWinSock::loginSucceeded, &rig.link,
                         [&](const std::string& text) { privileges += QString::fromStdString(text); });
        QSignalSpy handled(&rig.link, &clsWinSock::replyHandled);
        rig.tracker.send(body);
        QTRY_COMPARE(handled.count(), 1);
        QTEST(rig.link.isLoggedIn(), "loggedIn");
        QTEST(told, "told");
        const bool succeeded = rig.link.isConnected();
        QCOMPARE(privileges, succeeded ? QStringList{u"U3VwZXI="_s} : QStringList());
        QCOMPARE(rig.link.supportPort(), succeeded ? 8001 : 8000);
    }

    void aHostThatKeepsBreakingTheProtocolIsLeft_data()
    {
        addColumns<QByteArray, int, bool>("message", "times", "isLeft");
        QTest::newRow("just below") << "Plugin"_ba << 19 << false;
        QTest::newRow("just there") << "Plugin"_ba << 20 << true;
        QTest::newRow("a plugin that fails on sound messages") << "Plugin_x_y"_ba << 40 << false;
    }
    void aHostThatKeepsBreakingTheProtocolIsLeft()
    {
        QFETCH(const QByteArray, message);
        QFETCH(const int, times);
        QFETCH(const bool, isLeft);
        LoggedIn<LinkRig> rig;
        int handled = 0;
        rig.replies.onPluginMessage(&rig.link, [&](const std::string&, const std::string& payload) {
            ++handled;
            if (payload == "y")
                throw RuntimeError(ErrorNumber::TypeMismatch);
        });
        const QSignalSpy told(&rig.link, &clsWinSock::hostUnusable);
        for (int count = 0; count < times; ++count)
            rig.tracker.send(message);
        rig.tracker.send("Plugin_x_last");
        QTRY_VERIFY(isLeft ? !rig.link.isConnected() : handled == (times == 40 ? 41 : 1));
        QCOMPARE(rig.link.isConnected(), !isLeft);
        QCOMPARE(told.count(), isLeft ? 1 : 0);
    }
};

QTEST_GUILESS_MAIN(LinkTest)
#include "LinkTest.moc"
