#include "profiles/list/ActionUser.h"
#include "support/LoggedIn.h"
#include "support/RecordingComponent.h"

#include <QTabBar>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Alpha and Charlie host and can be stopped, Bravo can be started.
practice::World threeProfiles()
{
    practice::World world = practice::World::small();
    world.profiles[Charlie].gameVersion = practice::deltaForce;
    return world;
}

} // namespace

class AimTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    /// The user chooses a row and goes for a control of it; the list that was asked for before comes before he lets go.
    void aimedAtARowAnsweredLate_data()
    {
        QTest::addColumn<QString>("control");
        QTest::addColumn<int>("row");
        QTest::addColumn<QList<QByteArray>>("requests"); // how they begin
        const QList<QByteArray> attach{"Attach_admin_VB6_2", "Attach_admin_VB6_2_200"};
        QTest::newRow("detach") << u"cmdDetach"_s << int{Charlie} << QList{"Detach_admin_VB6_3"_ba};
        QTest::newRow("detach by menu") << u"mnuDetach"_s << int{Charlie} << QList{"Detach_admin_VB6_3"_ba};
        QTest::newRow("stop") << u"cmdStop"_s << int{Charlie} << QList{"StopGame_admin_VB6_3"_ba};
        QTest::newRow("start") << u"cmdStart"_s << int{Bravo} << QList{"Plugin_qrvBHDGS_Start_2_admin"_ba} + attach;
        QTest::newRow("attach") << u"cmdAttach"_s << int{Bravo} << attach;
        QTest::newRow("attach by menu") << u"mnuAttach"_s << int{Bravo} << attach;
        QTest::newRow("modify") << u"cmdModify"_s << int{Bravo} << QList{"GetProfile_admin_VB6_2"_ba};
        QTest::newRow("modify by menu") << u"mnuModify"_s << int{Bravo} << QList{"GetProfile_admin_VB6_2"_ba};
        QTest::newRow("delete") << u"Delete"_s << int{Bravo} << QList{"DeleteProfile_admin_Bravo_VB6_"_ba};
        QTest::newRow("delete by menu") << u"mnuDelete"_s << int{Bravo} << QList{"DeleteProfile_admin_Bravo_VB6_"_ba};
        QTest::newRow("statistics") << u"mnuPlayers"_s << int{Charlie} << QList{"GetPlayerStats_admin_VB6_3"_ba};
        QTest::newRow("files") << u"mnuFileManager"_s << int{Bravo} << QList{"GetFileList_admin_VB6_2|"_ba};
        QTest::newRow("accounts") << u"Server Manager"_s << int{Charlie} << QList{"GetProfileAdmins_admin_VB6_3"_ba};
    }
    void aimedAtARowAnsweredLate()
    {
        QFETCH(const QString, control);
        QFETCH(const int, row);
        QFETCH(const QList<QByteArray>, requests);
        Desk desk(threeProfiles());
        addStartPlugin(desk);
        QVERIFY(desk.logIn());
        PickerUser user(choosing(u"200"_s));
        const bool isButton = control.startsWith(u"cmd"_s);
        const auto aim = [&] {
            if (control.startsWith(u"mnu"_s))
                openMenu(desk, row);
            else
                desk.clickRow(row);
            if (isButton)
                QTest::mousePress(&desk.control(control), Qt::LeftButton);
            letCome(desk);
        };
        QVERIFY(whenHeld(
            desk, "GetProfiles", [&] { askForList(desk); }, aim));
        if (isButton)
            QTest::mouseRelease(&desk.control(control), Qt::LeftButton);
        else if (control == u"Delete"_s)
            pressDelete(desk);
        else if (control == u"Server Manager"_s)
            desk.clickTab(u"tsSection"_s, control);
        else
            chooseEntry(desk, control);
        if (control == u"mnuFileManager"_s) {
            QTRY_VERIFY(desk.frame().findChild<QWidget*>(u"cmdGetFiles"_s));
            desk.click(u"cmdGetFiles"_s);
        }
        for (const QByteArray& request : requests) {
            const auto begins = [&](const QByteArray& sent) { return sent.startsWith(request); };
            QTRY_VERIFY2_WITH_TIMEOUT(
                std::any_of(desk.tracker.requests().begin(), desk.tracker.requests().end(), begins),
                (request + " is not in " + desk.tracker.requests().join(' ')).constData(), patience);
        }
        QTRY_VERIFY_WITH_TIMEOUT(isUsable(desk), patience);
        QVERIFY(desk.settles());
    }

    void aPluginIsOpenedForTheProfileThatItWasChosenFor_data()
    {
        QTest::addColumn<bool>("byMenu");
        QTest::newRow("an entry of the menu") << true;
        QTest::newRow("a tab of the server manager") << false;
    }
    void aPluginIsOpenedForTheProfileThatItWasChosenFor()
    {
        QFETCH(const bool, byMenu);
        LoggedIn<Desk> desk(threeProfiles());
        const auto component = addPlugin(desk);
        const auto aim = [&] {
            if (byMenu) {
                openMenu(desk, Charlie);
            } else {
                desk.clickRow(Charlie);
                desk.clickTab(u"tsSection"_s, u"Server Manager"_s);
            }
            letCome(desk);
        };
        QVERIFY(whenHeld(
            desk, "GetProfiles", [&] { askForList(desk); }, aim));
        if (byMenu) {
            auto& menu = desk.control<QMenu>(u"mnuMain"_s);
            QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(menu.actions().constLast()).center());
        } else {
            desk.clickTab(u"tsSM"_s, u"Ranks"_s);
        }
        QTRY_VERIFY(component->calls.contains(u"LoadInterface for profile 3"_s));
    }

    void actionsChosenMeanwhileFollowEachOnce()
    {
        LoggedIn<Desk> desk(threeProfiles());
        desk.clickRow(Alpha);
        const auto more = [&] {
            desk.click(u"cmdDetach"_s); // the same again
            desk.clickRow(Bravo);
            pressDelete(desk);
            desk.clickRow(Charlie);
            desk.click(u"cmdDetach"_s);
            desk.tracker.releaseAll();
        };
        QVERIFY(whenHeld(
            desk, "Detach", [&] { desk.click(u"cmdDetach"_s); }, more));
        QVERIFY(desk.tracker.requests().contains("Detach_admin_VB6_1"));
        QCOMPARE(desk.lastRequest("DeleteProfile"), "DeleteProfile_admin_Bravo_VB6_");
        QTRY_COMPARE(desk.lastRequest("Detach"), "Detach_admin_VB6_3");
        QCOMPARE(actionsSent(desk), 3);
        QCOMPARE(desk.core().selected.profile->id, 3);
        QVERIFY(isUsable(desk));
    }

    void aProfileThatIsGoneIsLeftAlone_data()
    {
        QTest::addColumn<QString>("control");
        for (const auto* control : {"cmdAttach", "Delete", "mnuPlayers", "mnuFileManager"})
            QTest::newRow(control) << QString::fromLatin1(control);
    }
    void aProfileThatIsGoneIsLeftAlone()
    {
        QFETCH(const QString, control);
        LoggedIn<Desk> desk(threeProfiles());
        desk.tracker.world().profiles.removeAt(Bravo);
        const auto act = [&] {
            if (control.startsWith(u"mnu"_s)) {
                openMenu(desk, Bravo);
                letCome(desk);
                chooseEntry(desk, control);
            } else {
                desk.clickRow(Bravo);
                QTimer::singleShot(0, &desk.tracker, [&] { desk.tracker.releaseAll(); });
                use(desk, control);
            }
        };
        QVERIFY(whenHeld(
            desk, "GetProfiles", [&] { askForList(desk); }, act));
        const bool isDelete = control == u"Delete"_s; // which asks first
        QTRY_COMPARE(desk.boxes.boxes.size(), isDelete ? 2 : 1);
        QCOMPARE(desk.boxes.boxes.constLast(),
                 (RecordingDialogs::Box{u"Failed!"_s, u"The profile 'Bravo' is no longer there."_s}));
        QCOMPARE(actionsSent(desk), 0);
        QVERIFY(desk.settles());
        QVERIFY(isUsable(desk));
    }

    void whatWasAskedOnALostLinkIsNotSentOnTheNext()
    {
        LoggedIn<Desk> desk(threeProfiles());
        desk.clickRow(Charlie);
        bool isBack = false;
        desk.boxes.whileOpen = [&] {
            if (desk.boxes.boxes.size() > 1)
                return; // what the loss has to say
            desk.tracker.resetLinks();
            isBack = QTest::qWaitFor([&] { return !desk.link().isConnected(); }, patience) && desk.logIn();
        };
        pressDelete(desk);
        QVERIFY(isBack);
        QVERIFY(desk.settles());
        QCOMPARE(desk.requestCount("DeleteProfile"), 0);
        desk.clickRow(Charlie);
        pressDelete(desk);
        QCOMPARE(desk.requestCount("DeleteProfile"), 1);
    }

    void theProfileIsChosenAgainBehindWhatWasDoneWithIt_data()
    {
        QTest::addColumn<QString>("control");
        QTest::newRow("detach") << u"cmdDetach"_s;
        QTest::newRow("statistics") << u"mnuPlayers"_s;
        QTest::newRow("files") << u"mnuFileManager"_s;
    }
    void theProfileIsChosenAgainBehindWhatWasDoneWithIt()
    {
        QFETCH(const QString, control);
        LoggedIn<Desk> desk(threeProfiles());
        desk.clickRow(Charlie);
        use(desk, control);
        if (control != u"cmdDetach"_s) {
            QTRY_VERIFY(!desk.control(u"qrvrcProfilesList"_s).isVisible());
            QVERIFY(desk.settles());
            desk.clickTab(u"tsMain"_s, u"Profile List"_s);
            const qsizetype asked = desk.requestCount("GetProfiles");
            QTRY_VERIFY(desk.requestCount("GetProfiles") > asked);
        }
        QVERIFY(desk.settles());
        QCOMPARE(desk.core().selected.profile->id, 3);
        desk.clickTab(u"tsMain"_s, u"Profile List"_s);
        QTRY_COMPARE(desk.core().selected.profile->id, 1); // nothing was done since
    }
};

QTEST_MAIN(AimTest)
#include "AimTest.moc"
