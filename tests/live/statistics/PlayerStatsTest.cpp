#include "live/statistics/qrvrcPlayerStats.h"

#include "support/AddRow.h"
#include "support/Desk.h"
#include "ui/GridView.h"

#include <QAction>
#include <QScrollBar>
#include <QTabBar>
#include <QTableView>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

const QString windowName = u"qrvrcPlayerStats"_s;
const QString deltaForceSuffix = u" [Delta Force,  V1.5.0.5]"_s;

/// Rows of the small world's profile list.
enum Profile { Alpha, Bravo, Charlie };

qrvrcPlayerStats* window(Desk& desk)
{
    return desk.frame().findChild<qrvrcPlayerStats*>(windowName);
}

GridView& grid(Desk& desk, const QString& name)
{
    return desk.in(windowName).control<GridView>(name);
}

/// Logs in and opens the statistics of a profile.
bool open(Desk& desk, int profile = Alpha)
{
    if (!desk.logIn())
        return false;
    desk.clickRow(profile);
    return desk.answered("GetPlayerStats", [&] { desk.control<QAction>(u"mnuPlayers"_s).trigger(); });
}

bool refreshed(Desk& desk)
{
    return desk.answered("GetPlayerStats", [&] { desk.in(windowName).click(u"cmdRefresh"_s); });
}

QString title(Desk& desk)
{
    return desk.in(windowName).text(u"lblTitle"_s);
}

void choose(Desk& desk, const QString& caption)
{
    desk.in(windowName).clickTab(u"tsMain"_s, caption);
}

bool isShown(Desk& desk, const QString& name)
{
    const bool weapons = name == u"fgWeapons"_s;
    return grid(desk, u"fgWeapons"_s).isVisible() == weapons && grid(desk, u"fgPlayers"_s).isVisible() != weapons &&
           desk.in(windowName).control<QTabBar>(u"tsMain"_s).currentIndex() == (weapons ? 1 : 0);
}

} // namespace

class PlayerStatsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyPlayerAndWeaponIsARow_data()
    {
        addColumns<int, QByteArray, QStringList, QStringList>("profile", "request", "player", "weapon");
        const auto numbers = [](const QString& name, const QString& slot, const QString& team) {
            return QStringList{slot,   name,   team,   u"40"_s, u"3"_s,  u"1"_s,       u"0"_s,
                               u"0"_s, u"0"_s, u"0"_s, u"0"_s,  u"30"_s, u"01:02:05"_s};
        };
        addRow("delta force", int(Alpha), "GetPlayerStats_admin_VB6_1"_ba, numbers(u"Ghost"_s, u"0"_s, u"1"_s),
               QStringList{u"1"_s, u"M4 Carbine"_s, u"Stand"_s, u"40"_s, u"3"_s, u"0"_s, u"00:02:00"_s});
        addRow("joint operations", int(Charlie), "GetPlayerStats_admin_VB6_3"_ba,
               numbers(u"K\u00F6nig"_s, u"0"_s, u"1"_s),
               QStringList{u"1"_s, u"M4 Carbine"_s, u"N/A"_s, u"40"_s, u"3"_s, u"0"_s, u"00:02:00"_s});
    }
    void everyPlayerAndWeaponIsARow()
    {
        QFETCH(const int, profile);
        Desk desk;
        QVERIFY(open(desk, profile));
        QTEST(desk.lastRequest("GetPlayerStats"), "request");
        QCOMPARE(desk.frame().helpSection(), u"View Player Stats"_s);
        QTEST(desk.in(windowName).cells(u"fgPlayers"_s, 0), "player");
        QCOMPARE(grid(desk, u"fgPlayers"_s).selectedRow(), -1);
        QVERIFY(title(desk).startsWith(QString::fromLatin1(desk.tracker.world().profiles[profile].name)));

        QTest::keyClick(&grid(desk, u"fgPlayers"_s), Qt::Key_Down);
        choose(desk, u"Weapon Stats"_s);
        QTRY_VERIFY(isShown(desk, u"fgWeapons"_s));
        QTEST(desk.in(windowName).cells(u"fgWeapons"_s, 0), "weapon");
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void theClockKeepsPlayerAndPlace()
    {
        Desk desk;
        desk.tracker.world() = practice::World::many(1, 40);
        QVERIFY(desk.open());
        desk.core().preferences.playerRefresh = 60s;
        QVERIFY(open(desk));
        auto& clock = desk.control<QTimer>(u"tmrPlayerRefresh"_s);
        QVERIFY(clock.intervalAsDuration() == 60s && clock.isActive());
        const auto byClock = [&] {
            return desk.answered("GetPlayerStats", [&] { clock.start(1); }) && (clock.stop(), true);
        };
        const GridView& players = grid(desk, u"fgPlayers"_s);
        desk.in(windowName).clickRow(u"fgPlayers"_s, 30);
        const QString name = desk.in(windowName).cells(u"fgPlayers"_s, 30)[1];
        players.verticalScrollBar()->setValue(7);
        const int scrolled = players.verticalScrollBar()->value();
        QVERIFY(scrolled > 0);
        desk.tracker.world().profiles[0].players.removeFirst();
        QVERIFY(byClock());
        QCOMPARE(players.rows().rowCount(), 39);
        QCOMPARE(desk.in(windowName).cells(u"fgPlayers"_s, players.selectedRow())[1], name);
        QCOMPARE(players.selectedRow(), 29);
        QCOMPARE(players.verticalScrollBar()->value(), scrolled);
        desk.tracker.answerAlways("GetPlayerStats", Fault::garbage());
        for (int round = 0; round < 3; ++round)
            QVERIFY(byClock());
        QVERIFY(desk.boxes.boxes.size() <= 1); // the same trouble is told once
    }

    void weaponsAreThoseOfThePlayerWhoIsSelected()
    {
        Desk desk;
        QVERIFY(open(desk));
        const GridView& weapons = grid(desk, u"fgWeapons"_s);
        desk.in(windowName).clickRow(u"fgPlayers"_s, 1);
        choose(desk, u"Weapon Stats"_s);
        QTRY_COMPARE(weapons.rows().rowCount(), 5);
        QCOMPARE(weapons.rows().text(0, 0), u"6"_s); // its place among the records of all players
        choose(desk, u"Player Stats"_s);
        QTRY_VERIFY(isShown(desk, u"fgPlayers"_s));
        QCOMPARE(grid(desk, u"fgPlayers"_s).selectedRow(), 1);
        QTest::keyClick(&grid(desk, u"fgPlayers"_s), Qt::Key_Up);
        QTest::keyClick(&grid(desk, u"fgPlayers"_s), Qt::Key_Return);
        QTRY_VERIFY(isShown(desk, u"fgWeapons"_s));
        QCOMPARE(weapons.rows().text(0, 0), u"1"_s);
        QVERIFY(weapons.hasFocus());
        // A refresh goes by the name, wherever the player stands by then.
        desk.tracker.world().profiles[Alpha].players.swapItemsAt(0, 1);
        QVERIFY(refreshed(desk));
        QCOMPARE(weapons.rows().text(0, 0), u"6"_s);
        QVERIFY(title(desk).startsWith(u"Ghost on Alpha"_s));
    }

    void theProfileIsTheOneThatItWasOpenedFor_data()
    {
        addColumns<int, Fault>("id", "fault");
        QTest::newRow("answered late") << 3 << Fault::none();
        QTest::newRow("news in front") << 3 << Fault::newsFirst();
        QTest::newRow("number 0") << 0 << Fault::none();
    }
    void theProfileIsTheOneThatItWasOpenedFor()
    {
        QFETCH(const int, id);
        QFETCH(const Fault, fault);
        Desk desk;
        desk.tracker.world().profiles[Charlie].id = id;
        QVERIFY(desk.logIn());
        desk.clickRow(Charlie);
        desk.beforeAnswer("GetPlayerStats", [&] { desk.control<QTableView>(u"fgProfiles"_s).selectRow(Alpha); });
        desk.tracker.answerNext("GetPlayerStats", fault);
        desk.control<QAction>(u"mnuPlayers"_s).trigger();
        QTRY_COMPARE(desk.requestCount("GetPlayerStats"), 1);
        QVERIFY(desk.settles());
        const QByteArray request = "GetPlayerStats_admin_VB6_" + QByteArray::number(id);
        QCOMPARE(desk.lastRequest("GetPlayerStats"), request);
        QVERIFY(title(desk).startsWith(u"Charlie - "_s) && title(desk).contains(u"Joint Operations"_s));
        QCOMPARE(grid(desk, u"fgPlayers"_s).rows().text(0, 12), u"01:02:05"_s); // where this game has it
        QVERIFY(refreshed(desk));
        QCOMPARE(desk.lastRequest("GetPlayerStats"), request);
    }

    void aRefreshKeepsRowAndView()
    {
        Desk desk(practice::World::many(1, 200));
        QVERIFY(open(desk));
        GridView& players = grid(desk, u"fgPlayers"_s);
        QCOMPARE(players.rows().rowCount(), 200);
        players.selectRow(150);
        players.verticalScrollBar()->setValue(60);
        QList<practice::Player>& sent = desk.tracker.world().profiles[0].players;
        sent.swapItemsAt(150, 20);
        QVERIFY(refreshed(desk));
        QCOMPARE(players.selectedRow(), 150);
        QCOMPARE(players.verticalScrollBar()->value(), 60);
        QCOMPARE(players.rows().text(150, 1), QString::fromLatin1(sent[150].name));
        choose(desk, u"Weapon Stats"_s); // of whoever stands in the selected row now
        QTRY_COMPARE(grid(desk, u"fgWeapons"_s).rows().text(0, 0), QString::number(150 * 5 + 1));

        choose(desk, u"Player Stats"_s);
        sent.resize(3);
        QVERIFY(refreshed(desk));
        QCOMPARE(players.selectedRow(), 2);
        sent.clear();
        QVERIFY(refreshed(desk));
        QCOMPARE(players.rows().rowCount(), 0);
        QCOMPARE(players.emptyText(), u"Nobody is playing."_s);
        choose(desk, u"Weapon Stats"_s);
        QTRY_COMPARE(desk.boxes.onlyText(), u"You must select a player!"_s);
    }

    void badAnswersAreToldOnceAndChangeLittle_data()
    {
        // rows: two were shown before
        addColumns<QByteArray, int, QString>("body", "rows", "box");
        const auto b = [](const QByteArray& text) { return text.toBase64(); };
        const QByteArray record = "0_1_2_3_4_5_6_7_8_9_10_11_12_13_14_15_16_17_18_19_20_21_22_23_24_25";
        const QByteArray players = b("0_1_" + b("Ghost")) + '|' + b("1_2_" + b("Raven"));
        const QByteArray first = b("0_1_Ghost") + '_' + b(record);
        const auto row = [](const char* tag, const QByteArray& body, int rows, const QString& box) {
            QTest::newRow(tag) << body << rows << box;
        };
        row("not running", "0", 2, u"The server does not appear to be running!"_s);
        row("one character", "x", 2, {});
        row("nothing", "", 2, {});
        row("no players", "[-][-][-][-]", 0, {});
        row("second player without statistics", players + "[-][-]" + first + "[-][-]", 1,
            deltaForceSuffix + u"\r\nFunction/Sub: qrvrcPlayerStats_UpdateGrid"_s);
        row("no sections", players, 0, u"Function/Sub: HandleData"_s);
        row("no weapon section", players + "[-][-]" + first, 1, u"Function/Sub: HandleData"_s);
    }
    void badAnswersAreToldOnceAndChangeLittle()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const int, rows);
        QFETCH(const QString, box);
        Desk desk;
        QVERIFY(open(desk));
        GridView& players = grid(desk, u"fgPlayers"_s);
        desk.tracker.answerNextWith("GetPlayerStats", body);
        QVERIFY(refreshed(desk));
        QCOMPARE(players.rows().rowCount(), rows);
        QVERIFY(rows > 0 || !players.emptyText().isEmpty());
        QTRY_COMPARE(desk.boxes.boxes.size(), box.isEmpty() ? 0 : 1);
        QVERIFY2(box.isEmpty() || desk.boxes.onlyText().contains(box), qPrintable(desk.boxes.onlyText()));
        QVERIFY(refreshed(desk));
        QCOMPARE(players.rows().rowCount(), 2);
        QVERIFY(!window(desk)->testAttribute(Qt::WA_SetCursor));
    }

    void anotherGameHasNoRows()
    {
        practice::World world = practice::World::small();
        world.profiles[Alpha].gameVersion = "Delta Force, V1.5.0.5"; // one blank
        Desk desk(world);
        QVERIFY(open(desk));
        QCOMPARE(grid(desk, u"fgPlayers"_s).rows().rowCount(), 0);
        QCOMPARE(grid(desk, u"fgPlayers"_s).emptyText(), u"There are no statistics for this game."_s);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void aSecondRefreshAsksAgain()
    {
        Desk desk;
        QVERIFY(open(desk));
        desk.tracker.answerNext("GetPlayerStats", Fault::late(50ms));
        desk.tracker.forgetRequests();
        for (int press = 0; press < 4; ++press)
            QTest::keyClick(window(desk), Qt::Key_F5);
        QTRY_COMPARE(desk.requestCount("GetPlayerStats"), 2);
        QTRY_VERIFY(desk.settles() && !window(desk)->testAttribute(Qt::WA_SetCursor));
        QCOMPARE(desk.requestCount("GetPlayerStats"), 2);
    }

    void anAnswerToTheWindowBeforeIsNotShown()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        desk.clickRow(Alpha);
        desk.tracker.answerNext("GetPlayerStats", Fault::late(100ms));
        desk.control<QAction>(u"mnuPlayers"_s).trigger();
        QTRY_COMPARE(desk.requestCount("GetPlayerStats"), 1);
        const QPointer<QWidget> first = window(desk);
        desk.click(u"cmdClose"_s);
        QTRY_VERIFY(!first);
        QVERIFY(desk.control(u"qrvrcProfilesList"_s).isVisible());
        desk.frame().showWindowFor(windowName, {.id = 3, .name = {}, .gameVersion = practice::jointOperations});
        QTRY_COMPARE(desk.requestCount("GetPlayerStats"), 2);
        QVERIFY(desk.settles());
        QCOMPARE(grid(desk, u"fgPlayers"_s).rows().rowCount(), 1);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void aDropLeavesNothingBehind()
    {
        Desk desk;
        QVERIFY(open(desk));
        const QPointer<QWidget> shown = window(desk);
        desk.tracker.answerNext("GetPlayerStats", Fault::reset());
        QTest::keyClick(shown, Qt::Key_F5);
        QTRY_VERIFY(!shown);
        QVERIFY(desk.control(u"qrvrcLogin"_s).isVisible());
    }
};

QTEST_MAIN(PlayerStatsTest)
#include "PlayerStatsTest.moc"
