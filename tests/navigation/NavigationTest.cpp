#include "support/LoggedIn.h"
#include "support/RecordingComponent.h"

#include <QTabBar>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

const QStringList loggedOut{u"Login"_s, u"Options"_s, u"Plugins"_s, u"Update"_s, u"Help"_s, u"About"_s};
const QStringList managers{u"Profile Manager"_s, u"Server Manager"_s};

QString shownWindow(Desk& desk)
{
    QStringList shown;
    for (const auto* name : {u"qrvrcLogin", u"qrvrcProfilesList", u"qrvrcOptions", u"qrvrcPlugins", u"qrvrcUpdate",
                             u"qrvrcHelp", u"qrvrcAbout", u"qrvrcProfileAdmin"}) {
        const auto* window = desk.frame().findChild<QWidget*>(QString::fromUtf16(name));
        if (window && window->isVisible())
            shown += window->objectName();
    }
    return shown.join(u'+');
}

QString chosenTab(Desk& desk, const QString& strip)
{
    const auto& bar = desk.control<QTabBar>(strip);
    return bar.tabText(bar.currentIndex());
}

} // namespace

class NavigationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aDropResetsTheStripsAtOnce_data()
    {
        QTest::addColumn<QString>("manager");
        QTest::newRow("from the profile list") << managers[0];
        QTest::newRow("from the server manager") << managers[1];
    }
    void aDropResetsTheStripsAtOnce()
    {
        QFETCH(const QString, manager);
        LoggedIn<Desk> desk;
        desk.clickTab(u"tsSection"_s, manager);
        QVERIFY(desk.settles());
        desk.control<QTimer>(u"Timer1"_s).stop(); // the poll is not needed for it
        desk.tracker.closeLinks();
        QTRY_COMPARE(desk.tabs(u"tsMain"_s), loggedOut);
        QVERIFY(desk.tabs(u"tsSection"_s).isEmpty() && desk.tabs(u"tsSM"_s).isEmpty());
        QCOMPARE(chosenTab(desk, u"tsMain"_s), u"Login"_s);
        QVERIFY(desk.control(u"tsMain"_s).isVisible());
        QCOMPARE(shownWindow(desk), u"qrvrcLogin"_s);
        QVERIFY(desk.control(u"cmdConnect"_s).isEnabled());
    }

    void aTabBringsItsWindowToTheFront()
    {
        LoggedIn<Desk> desk;
        auto& strip = desk.control<QTabBar>(u"tsMain"_s);
        for (const QString& caption : {u"About"_s, u"Help"_s, u"Update"_s, u"Plugins"_s, u"Options"_s, u"Login"_s}) {
            desk.clickTab(u"tsMain"_s, caption);
            QCOMPARE(shownWindow(desk), u"qrvrc"_s + caption);
            QVERIFY(strip.isEnabled());
        }
        const qsizetype asked = desk.requestCount("GetProfiles");
        desk.clickTab(u"tsMain"_s, u"Profile List"_s);
        QCOMPARE(shownWindow(desk), u"qrvrcProfilesList"_s);
        QTRY_COMPARE(desk.requestCount("GetProfiles"), asked + 1);
        QVERIFY(desk.settles());
        desk.clickTab(u"tsMain"_s, u"Profile List"_s); // the tab in front activates its window anew
        QTRY_COMPARE(desk.requestCount("GetProfiles"), asked + 2);
        QVERIFY(desk.settles());
    }

    void theStripsAreReachedAndUsedByKeyboard()
    {
        LoggedIn<Desk> desk;
        auto& strip = desk.control<QTabBar>(u"tsMain"_s);
        strip.setFocus();
        QTest::keyClick(&strip, Qt::Key_Right);
        QCOMPARE(shownWindow(desk), u"qrvrcOptions"_s);
        QVERIFY(strip.hasFocus()); // so that the next key goes on
        QTest::keyClick(&strip, Qt::Key_Right);
        QCOMPARE(shownWindow(desk), u"qrvrcPlugins"_s);
    }

    void theServerManagerNeedsAProfile()
    {
        practice::World world = practice::World::small();
        world.profiles.clear();
        LoggedIn<Desk> desk(world);
        desk.clickTab(u"tsSection"_s, managers[1]);
        QCOMPARE(desk.boxes.onlyText(), u"You must have atleast 1 profile created to access the 'Server Manager'!"_s);
        QCOMPARE(desk.boxes.boxes.constFirst().title, u"Error!"_s);
        QCOMPARE(chosenTab(desk, u"tsSection"_s), managers[0]);
        QVERIFY(desk.tabs(u"tsSM"_s).isEmpty());
        QCOMPARE(shownWindow(desk), u"qrvrcProfilesList"_s);
        QVERIFY(desk.control(u"tsSection"_s).isEnabled());
    }

    void aPluginsSectionNeedsAnActiveProfile_data()
    {
        QTest::addColumn<int>("row");
        QTest::addColumn<bool>("isActive");
        QTest::newRow("hosting") << 0 << true;
        QTest::newRow("not active") << 1 << false;
        QTest::newRow("hosting as a squad") << 2 << true;
    }
    void aPluginsSectionNeedsAnActiveProfile()
    {
        QFETCH(const int, row);
        QFETCH(const bool, isActive);
        LoggedIn<Desk> desk;
        const auto component = addPlugin(desk);
        desk.clickRow(row);
        desk.clickTab(u"tsSection"_s, managers[1]);
        desk.clickTab(u"tsSM"_s, u"Ranks"_s);
        QCOMPARE(desk.boxes.boxes.size(), isActive ? 0 : 1);
        QCOMPARE(chosenTab(desk, u"tsSM"_s), isActive ? u"Ranks"_s : u"Admin"_s);
        QCOMPARE(component->calls, isActive
                                       ? QStringList({u"SetPrivis"_s, u"LoadInterface for profile %1"_s.arg(row + 1)})
                                       : QStringList());
        QCOMPARE(desk.frame().helpSection(), isActive ? u"stats.html"_s : u"Profile Admins"_s);
        if (!isActive) {
            const RecordingDialogs::Box box{
                u"Action Required!"_s,
                u"You must select an active profile before you can use this section of the Server Manager!"_s};
            QVERIFY(desk.boxes.boxes.constFirst() == box);
        }
    }

    void aTabClickedWhileTheTrackerIsSlowIsNotLost()
    {
        LoggedIn<Desk> desk;
        const auto component = addPlugin(desk);
        desk.tracker.hold("GetProfileAdmins");
        bool isOver = false;
        QTimer look;
        connect(&look, &QTimer::timeout, this, [&] {
            if (desk.tracker.held("GetProfileAdmins") == 0)
                return;
            look.stop();
            desk.clickTab(u"tsSM"_s, u"Ranks"_s);
            isOver = true;
            desk.tracker.releaseAll();
        });
        look.start(1);
        desk.clickTab(u"tsSection"_s, managers[1]);
        QTRY_VERIFY(isOver);
        QVERIFY(desk.settles());
        QCOMPARE(chosenTab(desk, u"tsSM"_s), u"Ranks"_s);
        QCOMPARE(component->calls.constLast(), u"LoadInterface for profile 1"_s);
        QCOMPARE(desk.frame().helpSection(), u"stats.html"_s);
    }

    void theLastClickOnALockedStripIsHeldBack()
    {
        LoggedIn<Desk> desk;
        QWidget& menu = desk.control(u"qrvrcMenu"_s);
        menu.setEnabled(false);
        desk.clickTab(u"tsMain"_s, u"Help"_s);
        desk.clickTab(u"tsMain"_s, u"Options"_s);
        QCOMPARE(shownWindow(desk), u"qrvrcProfilesList"_s);
        menu.setEnabled(true);
        QTRY_COMPARE(shownWindow(desk), u"qrvrcOptions"_s);
        QCOMPARE(chosenTab(desk, u"tsMain"_s), u"Options"_s);
    }

    void aClientThatQuitsReactsToNoClick()
    {
        LoggedIn<Desk> desk;
        desk.core().quitting = true;
        desk.clickTab(u"tsMain"_s, u"Options"_s);
        desk.clickTab(u"tsSection"_s, managers[1]);
        QCOMPARE(shownWindow(desk), u"qrvrcProfilesList"_s);
        QVERIFY(desk.tabs(u"tsSM"_s).isEmpty());
    }
};

QTEST_MAIN(NavigationTest)
#include "NavigationTest.moc"
