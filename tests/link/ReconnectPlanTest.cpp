#include "link/ReconnectPlan.h"

#include <QTest>

using namespace std::chrono_literals;
using State = ReconnectPlan::State;

namespace {

/// What a plan says after events: l(ogged in), x (lost), d(ue), g(iven up).
ReconnectPlan after(const QByteArray& events, double chance = 0)
{
    ReconnectPlan plan;
    for (const char event : events) {
        if (event == 'l')
            plan.loggedIn();
        else if (event == 'x')
            plan.lost(chance);
        else if (event == 'd')
            plan.due();
        else
            plan.giveUp();
    }
    return plan;
}

} // namespace

class ReconnectPlanTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLossIsTriedAgainEverMoreRarely_data()
    {
        QTest::addColumn<QByteArray>("events");
        QTest::addColumn<State>("state");
        QTest::addColumn<int>("attempt");
        QTest::addColumn<int>("seconds");
        const auto row = [](const char* events, State state, int attempt, int seconds) {
            QTest::newRow(events) << QByteArray(events) << state << attempt << seconds;
        };
        row("x", State::Idle, 0, 0); // nobody was logged in
        row("l", State::Armed, 0, 0);
        row("lx", State::Waiting, 1, 5);
        row("lxx", State::Waiting, 1, 5); // told twice
        row("lxd", State::Trying, 1, 5);
        row("lxdx", State::Waiting, 2, 10);
        row("lxdxdx", State::Waiting, 3, 20);
        row("lxdxdxdx", State::Waiting, 4, 40);
        row("lxdxdxdxdx", State::Waiting, 5, 60);
        row("lxdxdxdxdxdx", State::Waiting, 6, 60);
        row("lxdxdl", State::Armed, 0, 10);
        row("lxdxdlx", State::Waiting, 1, 5); // from the beginning
        row("lxg", State::Idle, 0, 5);
        row("lxgd", State::Idle, 0, 5);
        row("lxdgx", State::Idle, 0, 5);
        row("lgx", State::Idle, 0, 0);
    }
    void aLossIsTriedAgainEverMoreRarely()
    {
        QFETCH(const QByteArray, events);
        const ReconnectPlan plan = after(events);
        QTEST(plan.state(), "state");
        QTEST(plan.attempt(), "attempt");
        QTEST(static_cast<int>(plan.wait() / 1s), "seconds");
        QVERIFY(plan.wait() % 1s == 0s);
    }

    void aWaitIsUpToATenthLonger()
    {
        QVERIFY(after("lx", 1).wait() == 5500ms);
        QVERIFY(after("lxdx", 0.5).wait() == 10500ms);
        QVERIFY(after("lx", 7).wait() == 5500ms);
    }
};

QTEST_GUILESS_MAIN(ReconnectPlanTest)
#include "ReconnectPlanTest.moc"
