#include "app/StatusLabel.h"
#include "app/StatusLine.h"
#include "live/support/SupportDesk.h"
#include "support/AddRow.h"
#include "support/Desk.h"

#include <QAbstractButton>
#include <QAction>
#include <QLabel>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using State = ReconnectPlan::State;

namespace {

constexpr int patience = 30'000; // milliseconds; only a fault makes anybody wait that long

/// A client that connects again by itself, and waits for long where nobody presses "Try now".
class ReconnectDesk : public Desk
{
public:
    bool begin()
    {
        if (!open())
            return false;
        core().keeper.plan = ReconnectPlan({10min});
        core().keeper.setOn(true);
        return logIn();
    }
    bool lose()
    {
        tracker.stopListening();
        tracker.closeLinks();
        return QTest::qWaitFor([this] { return core().keeper.plan.state() == State::Waiting; }, patience);
    }
    /// Presses "Try now" with the keyboard, once the host is there again.
    bool comeBack()
    {
        if (!tracker.listen(tracker.port()))
            return false;
        pressTry();
        return QTest::qWaitFor([this] { return link().isLoggedIn(); }, patience);
    }
    void pressTry()
    {
        const auto isThere = [this] { return isInFront(u"cmdTryNow"_s) && control(u"cmdTryNow"_s).isEnabled(); };
        if (!QTest::qWaitFor(isThere, patience))
            qFatal("there is nothing to press");
        control(u"cmdTryNow"_s).setFocus();
        QTest::keyClick(&control(u"cmdTryNow"_s), Qt::Key_Space);
    }
    QString status() { return control<StatusLabel>(u"lblConnection"_s).text(); }
    bool isInFront(const QString& window)
    {
        auto* found = frame().findChild<QWidget*>(window);
        return found && found->isVisible();
    }
};

} // namespace

class ReconnectTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theUserIsWhereHeWas_data()
    {
        // entry: of the menu; tab: clicked; field: in which something is typed or chosen
        addColumns<QString, QString, QString, QString, QString>("window", "entry", "strip", "tab", "field");
        const QString none;
        addRow("list", u"qrvrcProfilesList"_s, none, none, none, none);
        addRow("editor", u"qrvrcModify"_s, u"mnuModify"_s, none, none, u"txtName"_s);
        addRow("files", u"qrvrcFileManager"_s, u"mnuFileManager"_s, none, none, none);
        addRow("options", u"qrvrcOptions"_s, none, u"tsMain"_s, u"Options"_s, u"txtMakerHost"_s);
        addRow("accounts", u"qrvrcProfileAdmin"_s, none, u"tsSection"_s, u"Server Manager"_s, u"txtUser"_s);
        addRow("login", u"qrvrcLogin"_s, none, u"tsMain"_s, u"Login"_s, none);
    }
    void theUserIsWhereHeWas()
    {
        QFETCH(const QString, window);
        QFETCH(const QString, entry);
        QFETCH(const QString, strip);
        QFETCH(const QString, tab);
        QFETCH(const QString, field);
        ReconnectDesk desk;
        QVERIFY(desk.begin());
        desk.clickRow(1);
        if (!entry.isEmpty())
            desk.control<QAction>(entry).trigger();
        if (!tab.isEmpty())
            desk.clickTab(strip, tab);
        QTRY_VERIFY(desk.isInFront(window) && desk.settles());
        if (!field.isEmpty()) {
            QTRY_VERIFY(desk.in(window).control(field).isEnabled() && desk.settles());
            desk.in(window).type(field, u"typed"_s);
        }

        const QPointer<QWidget> before = &desk.control(window);
        QVERIFY(desk.lose());
        QTRY_VERIFY(desk.isInFront(u"qrvrcLogin"_s));
        QVERIFY(!desk.tabs(u"tsMain"_s).contains(u"Profile List"_s));
        desk.pressTry(); // nobody is there
        QTRY_COMPARE(desk.core().keeper.plan.attempt(), 2);
        desk.tracker.world().account("admin")->super = false;
        QVERIFY(desk.comeBack());
        QTRY_VERIFY_WITH_TIMEOUT(desk.isInFront(window) && desk.grid().rowCount() == 3, patience);
        QVERIFY(desk.settles());
        QCOMPARE(desk.frame().findChild<QWidget*>(window), before.data());
        if (!field.isEmpty())
            QCOMPARE(desk.in(window).text(field), u"typed"_s);
        QTRY_COMPARE(desk.core().selected.profile->id, 2);
        QVERIFY(!desk.core().permissions.isSuper); // his rights as they are now
        QVERIFY(desk.tabs(u"tsMain"_s).contains(u"Profile List"_s));
        QVERIFY(desk.boxes.boxes.isEmpty());
        QVERIFY(!desk.control(u"cmdConnect"_s).isEnabled());
    }

    void whoGoesElsewhereMeanwhileStaysThere()
    {
        ReconnectDesk desk;
        QVERIFY(desk.begin());
        desk.frame().supportDesk().open();
        QTRY_COMPARE(desk.operatorSide.links(), 1);
        QVERIFY(desk.lose());
        QTRY_COMPARE(desk.operatorSide.links(), 0);
        desk.frame().activateWindow();
        desk.clickTab(u"tsMain"_s, u"Help"_s);
        desk.pressTry();
        QTRY_COMPARE(desk.core().keeper.plan.attempt(), 2);
        QVERIFY(desk.isInFront(u"qrvrcHelp"_s));
        const QSignalSpy back(&desk.core().keeper, &LinkKeeper::back);
        QVERIFY(desk.comeBack());
        QTRY_COMPARE(desk.grid().rowCount(), 3);
        QVERIFY(desk.settles());
        QVERIFY(desk.isInFront(u"qrvrcHelp"_s));
        QTRY_COMPARE(desk.operatorSide.links(), 1); // the support link as well
        QCOMPARE(back.size(), 1);
        QCOMPARE(back[0][0].toInt(), 2);
    }

    void theTriesEnd_data()
    {
        QTest::addColumn<std::function<void(ReconnectDesk&)>>("act");
        QTest::addColumn<int>("boxes");
        using Act = std::function<void(ReconnectDesk&)>;
        const auto row = [](const char* name, const Act& act, int boxes) { QTest::newRow(name) << act << boxes; };
        row(
            "by Stop", [](ReconnectDesk& desk) { desk.control<QAbstractButton>(u"cmdStopTrying"_s).click(); }, 0);
        row(
            "by Disconnect", [](ReconnectDesk& desk) { desk.click(u"cmdDisconnect"_s); }, 0);
        row(
            "by another profile", [](ReconnectDesk& desk) { desk.chooseProfile(u"New Profile"_s); }, 0);
        row(
            "by typing another", [](ReconnectDesk& desk) { desk.type(u"txtHost"_s, u"x"_s); }, 0);
        row(
            "by the option", [](ReconnectDesk& desk) { desk.core().keeper.setOn(false); }, 0);
        row(
            "by quitting", [](ReconnectDesk& desk) { desk.frame().close(); }, 1);
        row(
            "by a refused login",
            [](ReconnectDesk& desk) {
                desk.tracker.world().accounts.clear();
                desk.tracker.listen(desk.tracker.port());
                desk.pressTry();
            },
            1);
    }
    void theTriesEnd()
    {
        QFETCH(const std::function<void(ReconnectDesk&)>, act);
        QFETCH(const int, boxes);
        ReconnectDesk desk;
        QVERIFY(desk.begin());
        desk.clickRow(1);
        desk.control<QAction>(u"mnuFileManager"_s).trigger();
        QTRY_VERIFY(desk.isInFront(u"qrvrcFileManager"_s));
        const QPointer<QWidget> left = &desk.control(u"qrvrcFileManager"_s);
        QVERIFY(desk.lose());
        QTRY_VERIFY(desk.isInFront(u"cmdStopTrying"_s));
        act(desk);
        QTRY_COMPARE(desk.core().keeper.plan.state(), State::Idle);
        QTRY_COMPARE(desk.link().phase(), LinkPhase::Down);
        QTRY_COMPARE(int(desk.boxes.boxes.size()), boxes);
        if (desk.frame().isVisible()) {
            QTRY_VERIFY(!desk.isInFront(u"cmdTryNow"_s));
            QTRY_VERIFY(!left); // as when nothing is tried
            QVERIFY(desk.status().startsWith(u"not connected"_s));
        }
    }

    void withoutTheOptionALossIsALoss()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        const QSignalSpy lost(&desk.core().keeper, &LinkKeeper::lost);
        desk.tracker.closeLinks();
        QTRY_COMPARE(lost.size(), 1);
        QCOMPARE(lost[0][0].toString(), u"the host closed the connection"_s);
        QVERIFY(!lost[0][1].toBool());
        QVERIFY(!desk.frame().findChild<QWidget*>(u"cmdTryNow"_s));
        QTRY_COMPARE(desk.control<StatusLabel>(u"lblConnection"_s).text(),
                     u"not connected: the host closed the connection"_s);
    }

    void theStatusLineCountsWhileItIsSeen()
    {
        ReconnectDesk desk;
        QVERIFY(desk.begin());
        QTRY_VERIFY(desk.status().startsWith(
            u"connected to 127.0.0.1 as admin  \u00B7  3 profiles, 2 hosting, 3 players  \u00B7  list of "_s));
        const QSignalSpy told(desk.frame().findChild<StatusLine*>(), &StatusLine::stateTold);
        const int height = desk.frame().statusBar()->height();
        auto& second = desk.control<QTimer>(u"tmrStatusLine"_s);
        const QSignalSpy ticks(&second, &QTimer::timeout);
        second.setInterval(1);
        QTRY_VERIFY(ticks.size() > 20);
        QCOMPARE(told.size(), 0);
        desk.frame().showMinimized();
        QTRY_VERIFY(!second.isActive());
        desk.frame().showNormal();
        QTRY_VERIFY(second.isActive());
        QVERIFY(desk.lose());
        QTRY_COMPARE(told.size(), 1);
        QCOMPARE(told[0][0].toString(), u"reconnecting, first try: the host closed the connection"_s);
        QTRY_VERIFY(desk.isInFront(u"cmdTryNow"_s));
        QCOMPARE(desk.frame().statusBar()->height(), height);
    }

    void aMessageGoesByItself()
    {
        Desk desk;
        QVERIFY(desk.open());
        const auto& label = *desk.frame().statusBar()->findChild<QLabel*>(u"lblNote"_s);
        const int height = desk.frame().statusBar()->height();
        desk.core().status.tell(u"'Reserve' has stopped."_s);
        QCOMPARE(label.text(), u"'Reserve' has stopped."_s);
        QVERIFY(label.isVisible());
        desk.control<QTimer>(u"tmrMessage"_s).start(1);
        QTRY_VERIFY(!label.isVisible());
        QCOMPARE(desk.frame().statusBar()->height(), height);
    }
};

QTEST_MAIN(ReconnectTest)
#include "ReconnectTest.moc"
