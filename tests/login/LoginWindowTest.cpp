#include "live/support/SupportDesk.h"
#include "support/AddRow.h"
#include "support/Desk.h"

#include <QCheckBox>

using namespace Qt::StringLiterals;

namespace {

constexpr const char* store = "\\profiles.ini";

using Lines = std::vector<std::string>;

Lines section(Desk& desk, const char* name)
{
    return desk.core().store.GetIniSection(name, desk.path(store));
}

QStringList profileNames(Desk& desk)
{
    return desk.in(u"qrvrcLogin"_s).column(u"cboProfile"_s);
}

QStringList fieldTexts(Desk& desk)
{
    return {desk.text(u"txtProfile"_s), desk.text(u"txtHost"_s), desk.text(u"txtPort"_s), desk.text(u"txtUser"_s),
            desk.text(u"txtPass"_s)};
}

std::string portOf(const Desk& desk)
{
    return "Port=" + std::to_string(desk.tracker.port());
}

} // namespace

class LoginWindowTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatCannotBeConnectedIsToldAndKept_data()
    {
        addColumns<QString, QString, QString, bool>("field", "text", "message", "saved");
        QTest::newRow("no user name") << u"txtUser"_s << QString() << u"Username field is empty!"_s << false;
        QTest::newRow("port too high") << u"txtPort"_s << u"65536"_s << u"Invalid Port format!"_s << true;
        QTest::newRow("impossible host") << u"txtHost"_s << u"no such host"_s << u"Invalid IP format!"_s << true;
        QTest::newRow("brackets in the name")
            << u"txtProfile"_s << u"a]b"_s << u"The Profile Name cannot hold brackets or line breaks!"_s << false;
        QTest::newRow("a letter that the host does not know")
            << u"txtPass"_s << u"pa\u0416"_s << u"The character '\u0416' cannot be sent to the host!"_s << false;
    }
    void whatCannotBeConnectedIsToldAndKept()
    {
        QFETCH(const QString, field);
        QFETCH(const QString, text);
        QFETCH(const bool, saved);
        Desk desk;
        QVERIFY(desk.open());
        desk.typeProfile(u"Home"_s, u"u"_s, u"p"_s, 1);
        desk.type(field, text);
        const QStringList typed = fieldTexts(desk);
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(!desk.boxes.boxes.isEmpty());
        QTEST(desk.boxes.onlyText(), "message");
        QCOMPARE(desk.exists(store), saved);
        QTRY_VERIFY(desk.control(u"cmdConnect"_s).isEnabled()); // the next poll gives it back
        QCOMPARE(fieldTexts(desk), typed);
        QCOMPARE(desk.link().state(), SocketState::Closed);
    }

    void aNewProfileIsSavedAndChosen()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        QVERIFY(desk.boxes.boxes.isEmpty());
        QCOMPARE(section(desk, "Home of admin"), (Lines{"Host=127.0.0.1", portOf(desk), "User=admin", "Pass=admin"}));
        QCOMPARE(profileNames(desk), (QStringList{u"New Profile"_s, u"Home of admin"_s}));
        QCOMPARE(desk.text(u"cboProfile"_s), u"Home of admin"_s);
        QVERIFY(!desk.control(u"txtProfile"_s).isEnabled());
        QVERIFY(!desk.control(u"cmdConnect"_s).isEnabled());
        QCOMPARE(std::filesystem::status(desk.path(store)).permissions(),
                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
        QTRY_COMPARE(desk.linkStatus(), u"Connected"_s);
    }

    void aPasswordThatIsNotRememberedIsAskedFor()
    {
        Desk desk;
        QVERIFY(desk.open());
        desk.typeProfile(u"Home"_s, u"admin"_s, u"admin"_s, desk.tracker.port());
        auto& remember = desk.control<QCheckBox>(u"chkRemember"_s);
        QVERIFY(remember.isChecked());
        remember.click();
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(desk.link().isLoggedIn());
        QVERIFY(desk.settles());
        QCOMPARE(section(desk, "Home").back(), "Pass=");
        desk.clickTab(u"tsMain"_s, u"Login"_s);
        desk.click(u"cmdDisconnect"_s);
        desk.chooseProfile(u"Home"_s);
        QCOMPARE(desk.text(u"txtPass"_s), u"admin"_s); // kept for the run
        QVERIFY(!remember.isChecked());

        QVERIFY(desk.open()); // the next one
        QTRY_COMPARE(profileNames(desk).size(), 2);
        desk.chooseProfile(u"Home"_s);
        QCOMPARE(desk.text(u"txtPass"_s), QString());
        QVERIFY(!desk.control(u"txtHost"_s).isEnabled());
        desk.click(u"cmdConnect"_s);
        QCOMPARE(desk.boxes.onlyText(), u"Password field is empty!"_s);
        QVERIFY(desk.control(u"txtPass"_s).hasFocus());
        desk.type(u"txtPass"_s, u"admin"_s);
        desk.control<QCheckBox>(u"chkRemember"_s).click();
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(desk.link().isLoggedIn());
        QVERIFY(desk.settles());
        QCOMPARE(section(desk, "Home").back(), "Pass=admin");
    }

    void aStoreThatOthersCanReadIsTightened()
    {
        Desk desk;
        desk.put(store, "[Home]\nHost=h\nPort=1\nUser=u\nPass=p\n");
        using std::filesystem::perms;
        const perms own = perms::owner_read | perms::owner_write;
        const auto rights = [&desk] { return std::filesystem::status(desk.path(store)).permissions(); };
        std::filesystem::permissions(desk.path(store), own | perms::group_read | perms::others_read);
        QVERIFY(desk.open());
        QTRY_COMPARE(rights(), own);
        std::filesystem::permissions(desk.path(store), own | perms::others_read);
        desk.core().store.WriteIniKey("Home", "Pass", "q", desk.path(store));
        QCOMPARE(rights(), own);
    }

    void aTypedNameThatExistsUpdatesItsProfile()
    {
        Desk desk;
        desk.put(store,
                 "; mine\r\n[Home]\r\nHost=old\r\nPort=1\r\nUser=u\r\nPass=p\r\n[Other]\r\nHost=x\r\nPort=2\r\n");
        QVERIFY(desk.open());
        QTRY_COMPARE(profileNames(desk).size(), 3);
        desk.typeProfile(u" home "_s, u"guest"_s, u"guest"_s, desk.tracker.port());
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(desk.link().isLoggedIn());
        QCOMPARE(profileNames(desk), (QStringList{u"New Profile"_s, u"Home"_s, u"Other"_s}));
        QCOMPARE(section(desk, "Home"), (Lines{"Host=127.0.0.1", portOf(desk), "User=guest", "Pass=guest"}));
        QVERIFY(desk.bytesOf(store).startsWith("; mine\r\n[Home]"));
        QVERIFY(desk.settles());
    }

    void aSavedProfileFillsTheFieldsByPosition()
    {
        Desk desk;
        desk.put(store, "[\xC4rger]\nServer=host.example\nx=17\ny=\xFC\nz=p=q\n[Short]\nHost=h\n");
        QVERIFY(desk.open());
        QTRY_COMPARE(profileNames(desk), (QStringList{u"New Profile"_s, u"Ärger"_s, u"Short"_s}));
        desk.chooseProfile(u"Ärger"_s);
        QCOMPARE(fieldTexts(desk), (QStringList{u"Ärger"_s, u"host.example"_s, u"17"_s, u"ü"_s, u"p=q"_s}));
        for (const auto* field : {u"txtProfile", u"txtHost", u"txtPort", u"txtUser", u"txtPass"})
            QVERIFY(!desk.control(QString::fromUtf16(field)).isEnabled());
        desk.chooseProfile(u"Short"_s); // has too little to be loaded
        QCOMPARE(fieldTexts(desk), (QStringList{u"Short"_s, {}, {}, {}, {}}));
        desk.chooseProfile(u"New Profile"_s);
        QCOMPARE(fieldTexts(desk).join(QString()), QString());
        QVERIFY(desk.control(u"txtProfile"_s).isEnabled());
        QVERIFY(desk.control(u"txtHost"_s).isEnabled());
    }

    void aDeletedProfileIsGone()
    {
        Desk desk;
        desk.put(store, "[A]\nHost=a\nPort=1\n[B]\nHost=b\nPort=2\n[A]\nUser=again\n[C]\nHost=c\n");
        QVERIFY(desk.open());
        QTRY_COMPARE(profileNames(desk).size(), 4);
        desk.click(u"cmdDelete"_s);
        QCOMPARE(desk.boxes.onlyText(), u"No Profiles Selected!"_s);
        desk.chooseProfile(u"B"_s);
        desk.chooseProfile(u"C"_s); // shows no more than its name
        desk.click(u"cmdDelete"_s);
        desk.chooseProfile(u"A"_s);
        desk.click(u"cmdDelete"_s);
        QCOMPARE(desk.bytesOf(store), "[B]\nHost=b\nPort=2\n");
        QCOMPARE(profileNames(desk), (QStringList{u"New Profile"_s, u"B"_s}));
        QCOMPARE(desk.text(u"cboProfile"_s), u"New Profile"_s);
        QCOMPARE(fieldTexts(desk).join(QString()), QString());
        QVERIFY(desk.control(u"txtProfile"_s).isEnabled());
        QCOMPARE(desk.boxes.boxes.size(), 1);
    }

    void aStoreThatCannotBeUsedIsToldAndStopsNobody_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("too large") << QByteArray((4 << 20) + 1, '\n');
        QTest::newRow("a folder") << QByteArray();
    }
    void aStoreThatCannotBeUsedIsToldAndStopsNobody()
    {
        QFETCH(const QByteArray, bytes);
        Desk desk;
        if (bytes.isEmpty())
            std::filesystem::create_directory(desk.path(store));
        else
            desk.put(store, bytes);
        QVERIFY(desk.open());
        QTRY_COMPARE(desk.boxes.boxes.size(), 1);
        QVERIFY(desk.boxes.onlyText().endsWith(u"Function/Sub: Login_FormLoad"_s));
        desk.boxes.boxes.clear();
        QVERIFY(desk.logIn());
        QVERIFY(desk.boxes.onlyText().endsWith(u"Function/Sub: cmdConnect_Click"_s));
        QCOMPARE(desk.bytesOf(store), bytes);
        QCOMPARE(profileNames(desk), QStringList{u"New Profile"_s});
        QCOMPARE(desk.text(u"txtProfile"_s), u"Home of admin"_s);

        std::filesystem::remove(desk.path(store));
        desk.clickTab(u"tsMain"_s, u"Login"_s);
        desk.click(u"cmdDisconnect"_s);
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(desk.link().isLoggedIn());
        QVERIFY(desk.settles());
        QCOMPARE(section(desk, "Home of admin").size(), 4U);
        QCOMPARE(profileNames(desk), (QStringList{u"New Profile"_s, u"Home of admin"_s}));
        QCOMPARE(desk.boxes.boxes.size(), 1);
    }

    void whatConnectMeantHolds_data()
    {
        addColumns<QString, LinkPhase>("host", "phase");
        QTest::newRow("while the host is looked up") << u"localhost"_s << LinkPhase::Resolving;
        QTest::newRow("while it connects") << u"127.0.0.1"_s << LinkPhase::Connecting;
        QTest::newRow("before the login is answered") << u"127.0.0.1"_s << LinkPhase::LoggingIn;
        QTest::newRow("after the login") << u"127.0.0.1"_s << LinkPhase::LoggedIn;
    }
    /// Another profile is chosen at that moment.
    void whatConnectMeantHolds()
    {
        QFETCH(const QString, host);
        QFETCH(const LinkPhase, phase);
        Desk desk;
        desk.put(store, "[Other]\nHost=127.0.0.2\nPort=1\nUser=moderator\nPass=moderator's\n");
        QVERIFY(desk.open());
        QTRY_COMPARE(profileNames(desk).size(), 2);
        desk.typeProfile(u"Home"_s, u"admin"_s, u"admin"_s, desk.tracker.port());
        desk.type(u"txtHost"_s, host);
        const auto chooseOther = [&desk, phase] {
            QCOMPARE(desk.link().phase(), phase);
            desk.chooseProfile(u"Other"_s);
            QCOMPARE(desk.text(u"txtUser"_s), u"moderator"_s);
        };
        if (phase == LinkPhase::LoggingIn)
            desk.beforeAnswer("Login", chooseOther);
        desk.click(u"cmdConnect"_s);
        if (phase < LinkPhase::LoggingIn)
            chooseOther();
        QTRY_COMPARE(desk.requestCount("GetProfiles"), 1);
        QVERIFY(desk.settles());
        desk.clickTab(u"tsMain"_s, u"Login"_s);
        if (phase == LinkPhase::LoggedIn)
            chooseOther();
        QCOMPARE(desk.text(u"txtUser"_s), u"moderator"_s);
        desk.clickTab(u"tsMain"_s, u"Profile List"_s);
        QTRY_COMPARE(desk.requestCount("GetProfiles"), 2);
        QVERIFY(desk.settles());
        desk.frame().supportDesk().open();

        QTRY_COMPARE(desk.operatorSide.texts().size(), 1);
        QVERIFY(desk.operatorSide.texts().constFirst().startsWith("Announce_" + "admin"_ba.toBase64()));
        QCOMPARE(desk.link().user(), std::string("admin"));
        QCOMPARE(desk.link().connection().profile, u"Home"_s);
        QVERIFY(desk.lastRequest("login").startsWith("login_admin_admin_"));
        QVERIFY(desk.lastRequest("GetStatus").startsWith("GetStatus_admin_"));
        QVERIFY(desk.lastRequest("GetProfiles").startsWith("GetProfiles_admin_"));
        QVERIFY(!desk.tracker.requests().join().contains("moderator"));
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void aSecondReturnPressesNothing_data()
    {
        QTest::addColumn<QString>("control");
        QTest::newRow("on the button") << u"cmdConnect"_s;
        QTest::newRow("in the last field") << u"txtPass"_s;
        QTest::newRow("in the first field") << u"txtProfile"_s;
    }
    void aSecondReturnPressesNothing()
    {
        QFETCH(const QString, control);
        Desk desk;
        QVERIFY(desk.open());
        desk.typeProfile(u"Home"_s, u"admin"_s, u"admin"_s, desk.tracker.port());
        desk.control(control).setFocus();
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(desk.link().phase(), LinkPhase::Connecting);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
        QCOMPARE(desk.link().phase(), LinkPhase::Connecting);
        QCOMPARE(QApplication::activePopupWidget(), nullptr);
        QTRY_VERIFY(desk.link().isLoggedIn());
        QVERIFY(desk.settles());
    }

    void afterADropTheFieldsCanBeChangedAndAreStored()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        desk.tracker.closeLinks();
        QTRY_VERIFY(desk.control(u"qrvrcLogin"_s).isVisible());
        QCOMPARE(desk.linkStatus(), u"Not Connected"_s);
        QVERIFY(desk.control(u"txtUser"_s).isEnabled());
        desk.type(u"txtUser"_s, u"moderator"_s);
        desk.type(u"txtPass"_s, u"moderator"_s);
        desk.click(u"cmdConnect"_s);
        QTRY_COMPARE(desk.link().user(), std::string("moderator"));
        QVERIFY(desk.settles());
        QCOMPARE(section(desk, "Home of admin"),
                 (Lines{"Host=127.0.0.1", portOf(desk), "User=moderator", "Pass=moderator"}));
        QCOMPARE(profileNames(desk).size(), 2);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void aProfileNamedAtTheStartIsConnected()
    {
        Desk desk;
        desk.put(store, "[Ho]me]\nHost=127.0.0.1\nPort=" + QByteArray::number(desk.tracker.port()) +
                            "\nUser=admin\nPass=admin\n");
        QVERIFY(desk.open());
        desk.frame().connectProfile(u"Nowhere"_s);
        QCOMPARE(desk.boxes.onlyText(), u"There is no connection profile named 'Nowhere'."_s);
        desk.frame().connectProfile(u"Ho]me"_s); // an older file may hold such a name
        QTRY_VERIFY(desk.link().isLoggedIn());
        QCOMPARE(desk.boxes.boxes.size(), 1);
        QVERIFY(desk.settles());
    }
};

QTEST_MAIN(LoginWindowTest)
#include "LoginWindowTest.moc"
