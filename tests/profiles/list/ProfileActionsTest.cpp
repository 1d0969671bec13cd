#include "profiles/list/ProfileActions.h"

#include "profiles/list/ActionUser.h"
#include "support/AddRow.h"
#include "support/LoggedIn.h"

#include <QLabel>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

constexpr int playersColumn = 3;

bool isShown(Desk& desk, const QString& window)
{
    const auto* widget = desk.frame().findChild<QWidget*>(window);
    return widget && widget->isVisible();
}

/// One profile named Solo that plays no role but for these cells.
QByteArray reply(const QByteArray& players, const QByteArray& map, const QByteArray& status)
{
    const QList<QByteArray> fields{"1", "Solo", {}, players, map.toBase64(), "TDM", {}, {}, "text", status, "v"};
    return "Profiles_" + fields.join('|').toBase64() + '_';
}

} // namespace

class ProfileActionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aProcessIsChosenAndAttached()
    {
        LoggedIn<Desk> desk;
        desk.clickRow(Bravo);
        bool wasLocked = false;
        bool stayedOpen = false;
        int idBesideName = -1;
        int nameBesideId = -1;
        PickerUser user([&](const Pane& picker) {
            QCOMPARE(picker.control<QLabel>(u"lblProfile"_s).text(), u"Attach 'Bravo' to:"_s);
            wasLocked = !desk.control(u"qrvrcProfilesList"_s).isEnabled() && !QApplication::overrideCursor();
            picker.click(u"cmdAttach"_s); // nothing is chosen yet
            stayedOpen = picker.window().isVisible();
            picker.clickRow(u"lstProcess"_s, 1);
            idBesideName = picker.control<QListWidget>(u"lstID"_s).currentRow();
            picker.clickRow(u"lstID"_s, 2);
            nameBesideId = picker.control<QListWidget>(u"lstProcess"_s).currentRow();
            picker.click(u"cmdAttach"_s);
        });
        const qsizetype refreshed = desk.requestCount("GetProfiles");
        desk.click(u"cmdAttach"_s);
        QCOMPARE(user.opened, 1);
        QCOMPARE(user.ids, QStringList({u"100"_s, u"300"_s, u"200"_s, u"201"_s}));
        QCOMPARE(user.processes,
                 QStringList({u"dfserver.exe"_s, u"joserver.exe"_s, u"dfserver.exe"_s, u"joserver.exe"_s}));
        QVERIFY(wasLocked);
        QVERIFY(stayedOpen);
        QCOMPARE(desk.boxes.onlyText(), u"You must select a process from the list!"_s);
        QCOMPARE(idBesideName, 1);
        QCOMPARE(nameBesideId, 2);
        QCOMPARE(desk.requestCount("Attach"), 2);
        QCOMPARE(desk.lastRequest("Attach"), "Attach_admin_VB6_2_200");
        QCOMPARE(desk.requestCount("GetProfiles"), refreshed + 1);
        QCOMPARE(desk.column(playersColumn), QStringList({u"2/16"_s, u"0/32"_s, u"1/64"_s}));
        QVERIFY(isUsable(desk));
    }

    void aQuestionComesFirstWhereOneWantsIt_data()
    {
        addColumns<bool, bool, QString, QByteArray, QString>("isStop", "answer", "question", "request", "told");
        const QString stop = u"Are you sure you want to stop the game of the profile 'Alpha'?"_s;
        const QString detach = u"Are you sure you want to detach the profile 'Alpha' from its game?"_s;
        addRow("stop", true, true, stop, "StopGame"_ba, u"'Alpha' has stopped."_s);
        addRow("no stop", true, false, stop, "StopGame"_ba, u""_s);
        addRow("detach", false, true, detach, "Detach"_ba, u"'Alpha' is detached."_s);
        addRow("no detach", false, false, detach, "Detach"_ba, u""_s);
    }
    void aQuestionComesFirstWhereOneWantsIt()
    {
        QFETCH(const bool, isStop);
        QFETCH(const bool, answer);
        QFETCH(const QByteArray, request);
        LoggedIn<Desk> desk;
        pretendStartPlugin(desk);
        desk.clickRow(Bravo);
        desk.clickRow(Alpha);
        desk.core().preferences.asksBefore = {.detach = !isStop, .stopGame = isStop};
        desk.boxes.answer = answer;
        desk.boxes.whileOpen = [&] { desk.clickRow(Charlie); }; // what it is about is settled
        QStringList told;
        connect(&desk.core().status, &StatusSlot::told, this, [&](const QString& text) { told += text; });
        use(desk, isStop ? u"cmdStop"_s : u"cmdDetach"_s);
        QTEST(desk.boxes.onlyText(), "question");
        QCOMPARE(desk.lastRequest(request), answer ? request + "_admin_VB6_1" : QByteArray());
        QTEST(told.join(u'|'), "told");
    }

    void aRefusedAttachFromTheMenuOnlyRefreshes()
    {
        LoggedIn<Desk> desk;
        desk.clickRow(Bravo);
        bool wereLocked = false;
        PickerUser user([&](const Pane& picker) {
            wereLocked = !desk.control(u"qrvrcMenu"_s).isEnabled() && !desk.control(u"qrvrcProfilesList"_s).isEnabled();
            choosing(u"100"_s)(picker); // Alpha's
        });
        const qsizetype refreshed = desk.requestCount("GetProfiles");
        use(desk, u"mnuAttach"_s);
        QTRY_COMPARE_WITH_TIMEOUT(desk.requestCount("GetProfiles"), refreshed + 1, patience);
        QTRY_VERIFY_WITH_TIMEOUT(isUsable(desk), patience);
        QVERIFY(wereLocked);
        QCOMPARE(user.opened, 1);
        QCOMPARE(actionsSent(desk), 2);
        QCOMPARE(desk.column(playersColumn), QStringList({u"2/16"_s, QString(), u"1/64"_s}));
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void anActionIsSentOnceHoweverOftenItIsChosen_data()
    {
        // runsOn: whether the game's process is still there
        addColumns<QString, QByteArray, bool>("control", "request", "runsOn");
        QTest::newRow("detach") << u"cmdDetach"_s << "Detach_admin_VB6_1"_ba << true;
        QTest::newRow("stop") << u"cmdStop"_s << "StopGame_admin_VB6_1"_ba << false;
    }
    void anActionIsSentOnceHoweverOftenItIsChosen()
    {
        QFETCH(const QString, control);
        QFETCH(const QByteArray, request);
        LoggedIn<Desk> desk;
        pretendStartPlugin(desk);
        desk.clickRow(Bravo);
        desk.clickRow(Alpha);
        const QByteArray name = request.left(request.indexOf('_'));
        desk.tracker.answerNext(name, Fault::late(50ms)); // time for a user who is quick
        int chosenAgain = 0;
        connect(&desk.tracker, &practice::Tracker::requestReceived, this, [&](const QByteArray& received) {
            if (received != name)
                return;
            QTimer::singleShot(0, this, [&] {
                ++chosenAgain;
                use(desk, control);
            });
        });
        const qsizetype refreshed = desk.requestCount("GetProfiles");
        use(desk, control);
        QCOMPARE(chosenAgain, 1);
        QVERIFY(desk.settles());
        QCOMPARE(desk.lastRequest(name), request);
        QCOMPARE(actionsSent(desk), 1);
        QCOMPARE(desk.requestCount("GetProfiles"), refreshed + 1);
        QCOMPARE(desk.column(playersColumn).value(Alpha), QString());
        QTEST(desk.tracker.world().process(100) != nullptr, "runsOn");
        QVERIFY(desk.boxes.boxes.isEmpty());
        QVERIFY(isUsable(desk));
    }

    void aProfileIsDeletedWhenTheUserIsSure_data()
    {
        addColumns<QString, bool>("control", "answer");
        QTest::newRow("the key, Yes") << u"Delete"_s << true;
        QTest::newRow("the key, No") << u"Delete"_s << false;
        QTest::newRow("the menu, Yes") << u"mnuDelete"_s << true;
        QTest::newRow("the menu, No") << u"mnuDelete"_s << false;
    }
    void aProfileIsDeletedWhenTheUserIsSure()
    {
        QFETCH(const QString, control);
        QFETCH(const bool, answer);
        practice::World world = practice::World::small();
        world.profiles[Bravo].name = "Br\xE9_vo";
        LoggedIn<Desk> desk(std::move(world));
        desk.clickRow(Bravo);
        desk.boxes.answer = answer;
        const qsizetype refreshed = desk.requestCount("GetProfiles");
        use(desk, control);
        QTRY_COMPARE(desk.boxes.boxes.size(), 1);
        QCOMPARE(desk.boxes.boxes.constFirst(),
                 (RecordingDialogs::Box{u"Confirmation Required!"_s,
                                        u"Are you sure you want to delete the 'Br\u00E9_vo' Profile?"_s}));
        QTRY_COMPARE(desk.requestCount("GetProfiles"), refreshed + (answer ? 1 : 0));
        QVERIFY(desk.settles());
        QTRY_VERIFY(isUsable(desk));
        QCOMPARE(desk.lastRequest("DeleteProfile"), answer ? "DeleteProfile_admin_Br\xE9_vo_VB6_"_ba : QByteArray());
        QCOMPARE(desk.column(1).size(), answer ? 2 : 3);
        QCOMPARE(desk.boxes.boxes.size(), 1);
    }

    void nothingIsDeletedWithoutProfileOrPrivilege()
    {
        Desk desk;
        QVERIFY(desk.logIn(u"moderator"_s));
        pressDelete(desk);
        QVERIFY(desk.boxes.boxes.isEmpty());
        LoggedIn<Desk> empty;
        empty.tracker.world().profiles.clear();
        QVERIFY(empty.refreshQuietly());
        pressDelete(empty);
        QVERIFY(!empty.control<QAction>(u"mnuDelete"_s).isEnabled());
        QVERIFY(empty.boxes.boxes.isEmpty());
        QCOMPARE(actionsSent(desk) + actionsSent(empty), 0);
    }

    void windowsOpenForTheProfilesTheyAreFor_data()
    {
        addColumns<QString, QByteArray, QString, QString>("control", "profiles", "window", "refusal");
        const QString attached = u"You cannot modify a profile that is attached to a game."_s;
        const QString idle = u"You must select a profile that is hosting!"_s;
        const QString editor = u"qrvrcModify"_s;
        const QString statistics = u"qrvrcPlayerStats"_s;
        addRow("editor, blank players", u"cmdModify"_s, reply("  ", "Map", "2"), editor, QString());
        addRow("editor, attached", u"cmdModify"_s, reply("0/32", "", "0"), editor, attached);
        addRow("editor by menu, attached", u"mnuModify"_s, reply("1/2", "Map", "2"), editor, attached);
        addRow("statistics, loading without a map", u"mnuPlayers"_s, reply("1/2", "", "1"), statistics, idle);
    }
    void windowsOpenForTheProfilesTheyAreFor()
    {
        QFETCH(const QString, control);
        QFETCH(const QByteArray, profiles);
        QFETCH(const QString, window);
        QFETCH(const QString, refusal);
        LoggedIn<Desk> desk;
        desk.tracker.answerNextWith("GetProfiles", profiles);
        QVERIFY(desk.refreshQuietly());
        use(desk, control);
        QTRY_VERIFY(isShown(desk, window) || !desk.boxes.boxes.isEmpty());
        QCOMPARE(isShown(desk, window), refusal.isEmpty());
        if (!refusal.isEmpty())
            QCOMPARE(desk.boxes.onlyText(), refusal);
    }
};

QTEST_MAIN(ProfileActionsTest)
#include "ProfileActionsTest.moc"
