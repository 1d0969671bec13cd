#include "support/AddRow.h"
#include "support/LinkRig.h"
#include "support/LoggedIn.h"

#include <QEventLoop>
#include <QSignalSpy>
#include <QTimer>

#include <new>
#include <stdexcept>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

const Request profilesRequest{"GetProfiles", "GetProfiles_admin_", {}};
const Request statusRequest{"GetStatus", "GetStatus_admin", {}};

/// Two messages in one reply, as the body of one.
QByteArray twoMessages(const QByteArray& first, const QByteArray& second)
{
    return first + "[ND]0000099[ST]" + second;
}

} // namespace

/// Handlers that fail, wait, or are called while others are at it.
class ReentranceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void twoAsksAtOnceAreAnsweredInOrder()
    {
        LoggedIn<LinkRig> rig;
        rig.tracker.forgetRequests();
        std::vector<std::string> bodies;
        for (const char* name : {"GetProfiles", "GetStatus"})
            rig.replies.on(name, &rig.link, [&](std::string_view body) { bodies.emplace_back(body); });
        rig.tracker.answerNextWith("GetProfiles", "profiles");
        rig.tracker.answerNextWith("GetStatus", "status");
        rig.tracker.answerNext("GetProfiles", Fault::late(20ms));
        std::optional<WaitEnd> second;
        QTimer::singleShot(0, &rig.link, [&] { second = ask(rig.link, statusRequest); });
        const WaitEnd first = ask(rig.link, profilesRequest);
        QCOMPARE(first, WaitEnd::Done);
        QCOMPARE(second, std::optional(WaitEnd::Done));
        QCOMPARE(bodies, (std::vector<std::string>{"profiles", "status"}));
        QCOMPARE(rig.tracker.requests().size(), 2);
    }

    void whatStandsBehindThePostedEventThatWaitsIsDelivered()
    {
        QObject object;
        std::optional<WaitEnd> end;
        QTimer::singleShot(
            0, &object, [&] { end = EventWait(2s).endsOn(&object, &QObject::objectNameChanged, WaitEnd::Done).run(); });
        QTimer::singleShot(0, &object, [&] { object.setObjectName(u"another"_s); });
        QVERIFY(QTest::qWaitFor([&] { return end.has_value(); }));
        QCOMPARE(end, std::optional(WaitEnd::Done));
    }

    void aSilentTrackerIsToldOnceHoweverManyWait()
    {
        LoggedIn<LinkRig> rig;
        QSignalSpy told(&rig.link, &clsWinSock::hostUnusable);
        rig.tracker.answerAll(Fault::never());
        rig.link.replyLimit = 30ms;
        QList<WaitEnd> ends;
        for (int i = 0; i < 3; ++i)
            QTimer::singleShot(0, &rig.link, [&] { ends += ask(rig.link, statusRequest); });
        ends += ask(rig.link, profilesRequest);
        QCOMPARE(ends.size(), 4);
        QVERIFY(!ends.contains(WaitEnd::Done));
        QCOMPARE(told.count(), 1);
        QVERIFY(!rig.link.isConnected());
        QCOMPARE(rig.tracker.requests().count("GetStatus_admin_VB6_"), 0); // none was sent over a pending one
    }

    void aReplyThatComesWhileAHandlerWaitsIsHandledThere()
    {
        LoggedIn<LinkRig> rig;
        QStringList steps;
        const auto note = [&](const QString& what) { steps += u"%1, locked %2"_s.arg(what).arg(rig.locks); };
        QEventLoop loop;
        rig.replies.onPluginMessage(&rig.link, [&](const std::string&, const std::string& payload) {
            note(u"plugin "_s + QString::fromStdString(payload));
            loop.quit();
        });
        rig.replies.on("GetProfiles", &rig.link, [&](std::string_view body) {
            const std::string before(body);
            note(u"profiles"_s);
            rig.tracker.send("Plugin_x_inside");
            loop.exec();
            QCOMPARE(std::string(body), before);
            note(u"profiles again"_s);
        });
        rig.tracker.answerNextWith("GetProfiles", twoMessages("first", "Plugin_x_behind"));
        QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::Done);
        QCOMPARE(steps, (QStringList{u"profiles, locked 1"_s, u"plugin inside, locked 2"_s,
                                     u"profiles again, locked 1"_s, u"plugin behind, locked 1"_s}));
        QCOMPARE(rig.locks, 0);
    }

    void aHandlerThatTakesLongDoesNotExpireTheWaitBeneathIt()
    {
        LoggedIn<LinkRig> rig;
        rig.link.replyLimit = 1000ms;
        rig.replies.on("GetProfiles", &rig.link, [&](std::string_view) { pauseFor(1100ms); });
        QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::Done);
        QVERIFY(rig.link.isConnected());
    }

    void aHandlerThatFailsIsReportedAndHoldsNothingUp_data()
    {
        addColumns<int, QString>("kind", "error");
        QTest::newRow("an error of ours") << 0 << u"Error 13: Type mismatch"_s;
        QTest::newRow("the library's") << 1 << u"Error 51: Internal error: stop"_s;
        QTest::newRow("no memory") << 2 << u"Error 7: Out of memory"_s;
    }
    void aHandlerThatFailsIsReportedAndHoldsNothingUp()
    {
        QFETCH(const int, kind);
        QFETCH(const QString, error);
        LoggedIn<LinkRig> rig;
        std::string behind;
        rig.replies.on("GetProfiles", &rig.link, [&](std::string_view) {
            if (kind == 0)
                throw RuntimeError(ErrorNumber::TypeMismatch);
            if (kind == 1)
                throw std::runtime_error("stop");
            throw std::bad_alloc();
        });
        rig.replies.onPluginMessage(&rig.link,
                                    [&](const std::string&, const std::string& payload) { behind = payload; });
        rig.tracker.answerNextWith("GetProfiles", twoMessages("x", "Plugin_x_behind"));
        QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::Done);
        QCOMPARE(rig.boxes.count(u"QRVRC Error!"_s), 1);
        const QStringList lines = rig.boxes.onlyText().split(u"\r\n"_s);
        QCOMPARE(lines.value(1), error);
        QCOMPARE(lines.value(2), u"Function/Sub: HandleData"_s);
        QCOMPARE(behind, std::string("behind"));
        QCOMPARE(rig.locks, 0);
        QVERIFY(!rig.link.pending());
        QCOMPARE(ask(rig.link, statusRequest), WaitEnd::Done);
    }

    void aPluginMessageAnswersNothingButARawRequest_data()
    {
        addColumns<Request, QByteArray, int>("request", "body", "answers");
        const QByteArray news = "Plugin_qrvStats_a_b";
        QTest::newRow("in front of the answer") << profilesRequest << twoMessages(news, "profiles") << 1;
        QTest::newRow("in front of it, twice") << profilesRequest << twoMessages(news, twoMessages(news, "x")) << 1;
        QTest::newRow("in its place, and the answer later") << profilesRequest << news << 1;
        QTest::newRow("to a raw request") << rawRequest("raw_x") << news << 0;
    }
    void aPluginMessageAnswersNothingButARawRequest()
    {
        QFETCH(const Request, request);
        QFETCH(const QByteArray, body);
        LoggedIn<LinkRig> rig;
        int answers = 0;
        std::string component;
        rig.replies.on("GetProfiles", &rig.link, [&](std::string_view) { ++answers; });
        rig.replies.onPluginMessage(&rig.link, [&](const std::string& name, const std::string&) {
            component = name;
            if (rig.link.pending() && !body.contains("[ND]"))
                rig.tracker.send("the answer");
        });
        rig.tracker.answerNextWith(QByteArray::fromStdString(request.name), body);
        QCOMPARE(ask(rig.link, request), WaitEnd::Done);
        QTEST(answers, "answers");
        QCOMPARE(component, std::string("qrvrcStats"));
        QVERIFY(!rig.link.pending());
    }

    void aSilentRawRequestEndsItsOwnWaitAndNothingElse()
    {
        LoggedIn<LinkRig> rig;
        rig.link.rawLimit = 30ms;
        rig.tracker.answerNext("RCData", Fault::never());
        std::optional<WaitEnd> behind;
        QTimer::singleShot(0, &rig.link, [&] { behind = ask(rig.link, profilesRequest); });
        QCOMPARE(ask(rig.link, rawRequest("raw_x")), WaitEnd::TimedOut);
        QCOMPARE(behind, std::optional(WaitEnd::Done));
        QVERIFY(rig.link.isLoggedIn());
    }

    void handlersGoWithTheirOwners()
    {
        LoggedIn<LinkRig> rig;
        int calls = 0;
        auto owner = std::make_unique<QObject>();
        rig.replies.on("GetProfiles", owner.get(), [&](std::string_view) { ++calls; });
        rig.replies.onPluginMessage(owner.get(), [&](const std::string&, const std::string&) { ++calls; });
        owner.reset();
        rig.tracker.answerNextWith("GetProfiles", twoMessages("x", "Plugin_x_y"));
        QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::Done);
        QCOMPARE(calls, 0);
        QVERIFY(rig.boxes.boxes.isEmpty());
    }

    void aHandlerMayCloseTheLink()
    {
        LoggedIn<LinkRig> rig;
        int behind = 0;
        rig.replies.onPluginMessage(&rig.link, [&](const std::string&, const std::string&) { ++behind; });
        rig.replies.on("GetProfiles", &rig.link, [&](std::string_view) { rig.link.close(); });
        rig.tracker.answerNextWith("GetProfiles", twoMessages("x", "Plugin_x_y"));
        QCOMPARE(ask(rig.link, profilesRequest), WaitEnd::Broken);
        QCOMPARE(behind, 1); // it had arrived
        QCOMPARE(rig.locks, 0);
        QVERIFY(rig.logIn());
    }
};

QTEST_GUILESS_MAIN(ReentranceTest)
#include "ReentranceTest.moc"
