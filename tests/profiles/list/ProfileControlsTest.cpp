#include "profiles/list/ActionUser.h"

#include "support/AddRow.h"

using namespace Qt::StringLiterals;

namespace {

/// Alpha hosts and Bravo does not, both of the startable version; Charlie hosts and Delta does not, of another one.
practice::World fourProfiles()
{
    practice::World world = practice::World::small();
    practice::Profile delta = world.profiles[1];
    delta.id = 4;
    delta.name = "Delta";
    delta.gameVersion = practice::jointOperations;
    world.profiles += delta;
    return world;
}

/// The controls as the selected row leaves them, a letter each: Attach, Detach, Start, sTop, Modify, and in the menu
/// also tracKing mode. Buttons: capital when enabled, small when shown only, "-" when hidden; entries of the menu:
/// capital when enabled, small when not.
QString stateOf(Desk& desk)
{
    const QList<std::pair<QString, QChar>> actions{
        {u"Attach"_s, u'A'}, {u"Detach"_s, u'D'}, {u"Start"_s, u'S'}, {u"Stop"_s, u'T'}, {u"Modify"_s, u'M'}};
    QString buttons;
    QString entries;
    for (const auto& [action, letter] : actions) {
        const QWidget& button = desk.control(u"cmd"_s + action);
        const QWidget& face = desk.control(u"cmd"_s + action + u"Img"_s);
        if (face.isVisible() != button.isVisible() || face.isEnabled() != button.isEnabled())
            buttons += u'?'; // the two halves of a button never part
        buttons += !button.isVisible() ? QChar(u'-') : button.isEnabled() ? letter : letter.toLower();
        entries += desk.control<QAction>(u"mnu"_s + action).isEnabled() ? letter : letter.toLower();
    }
    entries += desk.control<QAction>(u"mnuMode"_s).isEnabled() ? u'K' : u'k';
    return buttons + u' ' + entries;
}

/// Logs in with these privileges instead of the tracker's own.
bool logInWith(Desk& desk, const QByteArray& privileges, const QString& user = u"admin"_s)
{
    desk.tracker.answerNextWith("Login", "Success_a_b_" + privileges.toBase64() + "_8000");
    return desk.logIn(user);
}

} // namespace

class ProfileControlsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void controlsFollowAccountRowAndPlugin_data()
    {
        // states: of Alpha, Bravo, Charlie and Delta
        addColumns<QString, bool, QString>("user", "plugin", "states");
        addRow("super", u"admin"_s, false, u"-D--M aDstMk|A---M AdstMk|-D--M aDstMk|A---M AdstMk"_s);
        addRow("super, game-start plugin", u"admin"_s, true, u"-D-TM aDsTMk|A-S-M AdStMk|-D-tM aDstMk|A-s-M AdstMk"_s);
        addRow("moderator", u"moderator"_s, false, u"-D--m aDstmk|A---m Adstmk|-D--m aDstmk|A---m Adstmk"_s);
        addRow("moderator, game-start plugin", u"moderator"_s, true,
               u"-D-tm aDstmk|A-S-m AdStmk|-D-tm aDstmk|A-s-m Adstmk"_s);
        addRow("guest", u"guest"_s, false, u"-d--m adstmk|a---m adstmk|-d--m adstmk|a---m adstmk"_s);
        addRow("guest, game-start plugin", u"guest"_s, true, u"-d-tm adstmk|a-s-m adstmk|-d-tm adstmk|a-s-m adstmk"_s);
    }
    void controlsFollowAccountRowAndPlugin()
    {
        QFETCH(const QString, user);
        QFETCH(const bool, plugin);
        Desk desk(fourProfiles());
        QVERIFY(desk.logIn(user));
        if (plugin)
            pretendStartPlugin(desk);
        QStringList states;
        for (int row : {3, 2, 1, 0}) {
            desk.clickRow(row);
            states.prepend(stateOf(desk));
        }
        QTEST(states.join(u'|'), "states");
    }

    void oddPrivilegesAreTakenAsWritten_data()
    {
        addColumns<QByteArray, QString>("privileges", "state");
        addRow("no section for profiles", "User|Options|View Options=1"_ba, u"a---m adstmk"_s);
        addRow("no privileges at all", "User"_ba, u"a---m adstmk"_s);
        addRow("a value that is neither 0 nor 1", "User|Profiles|Attach Profiles to Games=2|Edit Profiles=7"_ba,
               u"A---M AdstMk"_s);
        addRow("a privilege of another section", "User|Profiles|Options|Attach Profiles to Games=1|Edit Profiles=1"_ba,
               u"a---m adstmk"_s);
        addRow("the tracking mode alone", "User|Profiles|Change Profile Tracking Mode=1"_ba, u"a---m adstmK"_s);
    }
    void oddPrivilegesAreTakenAsWritten()
    {
        QFETCH(const QByteArray, privileges);
        Desk desk(fourProfiles());
        QVERIFY(logInWith(desk, privileges));
        for (int row : {1, 0, 1}) { // not hosting, hosting and back
            desk.clickRow(row);
            QTEST(stateOf(desk), "state");
        }
    }

    void oneLoginLeavesNothingToTheNext()
    {
        Desk desk(fourProfiles());
        QVERIFY(desk.logIn());
        desk.clickRow(0);
        QCOMPARE(stateOf(desk), u"-D--M aDstMk"_s);
        desk.clickTab(u"tsMain"_s, u"Login"_s);
        desk.click(u"cmdDisconnect"_s);
        QVERIFY(logInWith(desk, "User", u"guest"_s));
        QCOMPARE(stateOf(desk), u"a---m adstmk"_s);
    }
};

QTEST_MAIN(ProfileControlsTest)
#include "ProfileControlsTest.moc"
