#include "support/Desk.h"

#include "navigation/SelectedProfile.h"
#include "practice/Framing.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QTest>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

const QString newAdmin = u"Add New Admin"_s;
const QString granted = u"\u00fe"_s;

/// The window of the accounts, reached from the profile list as a user does.
class AdminDesk : public Desk
{
public:
    using Desk::Desk;

    bool openAdmins(const QString& user = u"admin"_s)
    {
        if (!logIn(user))
            return false;
        clickTab(u"tsSection"_s, u"Server Manager"_s);
        return loaded();
    }
    /// Leaves the window for the profile list and comes back.
    bool comeBack()
    {
        clickTab(u"tsSection"_s, u"Profile Manager"_s);
        clickTab(u"tsSection"_s, u"Server Manager"_s);
        return loaded();
    }
    bool loaded()
    {
        const qsizetype asked = requestCount("GetProfileAdminPrivis");
        return QTest::qWaitFor([&] { return requestCount("GetProfileAdminPrivis") > asked; }) && settles();
    }

    /// Other windows have controls of some of these names too: the window's own ones come first.
    template <typename Control = QWidget>
    Control& control(const QString& name)
    {
        const auto* window = frame().findChild<QWidget*>(u"qrvrcProfileAdmin"_s);
        auto* own = window ? window->findChild<Control*>(name) : nullptr;
        return own ? *own : Desk::control<Control>(name);
    }
    void click(const QString& name) { QTest::mouseClick(&control(name), Qt::LeftButton); }
    QString text(const QString& name) { return control<QLineEdit>(name).text(); }
    void fill(const QString& name, const QString& text)
    {
        auto& field = control<QLineEdit>(name);
        field.selectAll();
        QTest::keyClick(&field, Qt::Key_Delete);
        field.insert(text);
    }

    QStringList users(int column = 0)
    {
        const auto& model = *control<QTableView>(u"mfgUsers"_s).model();
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row)
            texts += model.index(row, column).data().toString();
        return texts;
    }
    QStringList names()
    {
        const auto& list = control<QComboBox>(u"cboUser"_s);
        QStringList texts;
        for (int index = 0; index < list.count(); ++index)
            texts += list.itemText(index);
        return texts;
    }
    QString chosen() { return control<QComboBox>(u"cboUser"_s).currentText(); }
    /// Chooses a name with the keyboard and waits for its privileges.
    void choose(const QString& name)
    {
        auto& list = control<QComboBox>(u"cboUser"_s);
        const qsizetype asked = requestCount("GetProfileAdminPrivis");
        QTest::keyClick(&list, Qt::Key_Home);
        for (int step = 1; step < list.count() && list.currentText() != name; ++step)
            QTest::keyClick(&list, Qt::Key_Down);
        const bool hasAsked = QTest::qWaitFor([&] { return requestCount("GetProfileAdminPrivis") > asked; });
        if (!hasAsked || !settles())
            qFatal("the privileges of %s do not come", qPrintable(name));
    }
    void selectUser(const QString& name)
    {
        auto& view = control<QTableView>(u"mfgUsers"_s);
        const QModelIndex cell = view.model()->index(static_cast<int>(users().indexOf(name)), 0);
        QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualRect(cell).center());
    }

    QAbstractItemModel& boxRows() { return *control<QTableView>(u"lstSections"_s).model(); }
    /// The row of a privilege behind that section row.
    int rowOf(const QString& section, const QString& privilege)
    {
        bool inSection = false;
        for (int row = 0; row < boxRows().rowCount(); ++row) {
            const QString first = boxRows().index(row, 0).data().toString();
            const QString name = boxRows().index(row, 1).data().toString();
            if (first == section)
                inSection = true;
            else if (inSection && name == privilege)
                return row;
        }
        qFatal("there is no privilege %s", qPrintable(privilege));
    }
    bool isGranted(const QString& section, const QString& privilege)
    {
        return boxRows().index(rowOf(section, privilege), 0).data().toString() == granted;
    }
    void clickCell(int row, int column, Qt::MouseButton button = Qt::LeftButton)
    {
        auto& view = control<QTableView>(u"lstSections"_s);
        const QModelIndex cell = boxRows().index(row, column);
        view.scrollTo(cell);
        QTest::mouseClick(view.viewport(), button, {}, view.visualRect(cell).center());
    }
    void tick(const QString& section, const QString& privilege) { clickCell(rowOf(section, privilege), 0); }
};

QByteArray reply(const QByteArray& text)
{
    return practice::envelope(text);
}

} // namespace

class ProfileAdminTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theAccountsOfTheSelectedProfileAreShown()
    {
        AdminDesk desk;
        QVERIFY(desk.logIn());
        desk.clickRow(1);
        desk.clickTab(u"tsSection"_s, u"Server Manager"_s);
        QVERIFY(desk.loaded());
        QCOMPARE(desk.lastRequest("GetProfileAdmins"), "GetProfileAdmins_admin_VB6_2"_ba);
        QCOMPARE(desk.users(), (QStringList{u"admin"_s, u"moderator"_s, u"guest"_s}));
        QCOMPARE(desk.users(1), desk.users());
        QCOMPARE(desk.users(3).first(), u"Connected"_s);
        QCOMPARE(desk.names(), (QStringList{newAdmin, u"admin"_s, u"moderator"_s, u"guest"_s}));
        QCOMPARE(desk.chosen(), newAdmin);
        QVERIFY(desk.control<QListWidget>(u"lstLog"_s).count() >= 2);
        QVERIFY(desk.control(u"cmdAddUser"_s).isVisible() && !desk.control(u"cmdModify"_s).isVisible());
        QCOMPARE(desk.core().helpSection, u"Profile Admins"_s);
    }

    void anAccountGoesThroughItsWholeLife()
    {
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.fill(u"txtUser"_s, u"bob"_s);
        desk.fill(u"txtPass"_s, u"pw \u00e9"_s);
        desk.tick(u"Profiles"_s, u"Edit Profiles"_s);
        desk.click(u"cmdAddUser"_s);
        const practice::Account* bob = desk.tracker.world().account("bob");
        QVERIFY(bob && bob->password == "pw \xe9" && bob->allows("Profiles", "Edit Profiles"));
        QVERIFY(!bob->allows("Profiles", "Attach Profiles to Games") && bob->profiles == QList<int>{1});
        QCOMPARE(desk.users().last(), u"bob"_s);
        QVERIFY(desk.text(u"txtUser"_s).isEmpty() && !desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));

        desk.choose(u"bob"_s);
        QCOMPARE(desk.text(u"txtPass"_s), u"pw \u00e9"_s);
        QVERIFY(desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));
        QVERIFY(desk.control(u"cmdModify"_s).isVisible() && !desk.control(u"cmdAddUser"_s).isVisible());
        desk.fill(u"txtUser"_s, u"bobby"_s);
        desk.tick(u"Profiles"_s, u"Edit Profiles"_s);
        desk.tick(u"Options"_s, u"View Options"_s);
        bool wasDisabled = false;
        connect(&desk.tracker, &practice::Tracker::requestReceived, this, [&](const QByteArray& name) {
            wasDisabled = wasDisabled || (name == "ModifyProfileAdmin" && !desk.control(u"cmdModify"_s).isEnabled());
        });
        desk.click(u"cmdModify"_s);
        QVERIFY(wasDisabled && desk.control(u"cmdModify"_s).isEnabled());
        QVERIFY(!desk.tracker.world().account("bob"));
        QVERIFY(desk.tracker.world().account("bobby")->allows("Options", "View Options"));
        QVERIFY(!desk.tracker.world().account("bobby")->allows("Profiles", "Edit Profiles"));
        QCOMPARE(desk.users().last(), u"bobby"_s);
        QCOMPARE(desk.chosen(), newAdmin);
        QVERIFY(desk.control(u"cmdAddUser"_s).isVisible());

        desk.selectUser(u"bobby"_s);
        desk.click(u"cmdDeleteUser"_s);
        QVERIFY(!desk.tracker.world().account("bobby") && !desk.users().contains(u"bobby"_s));
        desk.selectUser(u"guest"_s);
        desk.click(u"cmdKickUser"_s);
        QCOMPARE(desk.lastRequest("KickProfileAdmin"), "KickProfileAdmin_admin_VB6_1_" + "guest"_ba.toBase64());
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void onlyABoxIsToggled()
    {
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        const auto& view = desk.control<QTableView>(u"lstSections"_s);
        const int edit = desk.rowOf(u"Profiles"_s, u"Edit Profiles"_s);
        const auto box = [&](int row) { return desk.boxRows().index(row, 0); };
        QCOMPARE(box(edit).data().toString(), u"q"_s);
        QCOMPARE(box(edit).data(Qt::AccessibleTextRole).toString(), u"not granted"_s);
        desk.clickCell(edit, 1);
        desk.clickCell(edit, 0, Qt::RightButton);
        QCOMPARE(box(edit).data().toString(), u"q"_s);
        desk.clickCell(edit, 0);
        QCOMPARE(box(edit).data().toString(), granted);
        QCOMPARE(box(edit).data(Qt::AccessibleTextRole).toString(), u"granted"_s);
        QTest::keyClick(&desk.control(u"lstSections"_s), Qt::Key_Space);
        QCOMPARE(box(edit).data().toString(), u"q"_s);
        QCOMPARE(view.columnSpan(0, 0), 2);
        desk.clickCell(0, 0); // a section
        QTest::keyClick(&desk.control(u"lstSections"_s), Qt::Key_Space);
        QCOMPARE(box(0).data().toString(), u"Profiles"_s);

        desk.tick(u"Options"_s, u"View Options"_s);
        desk.tick(u"Profile Admins"_s, u"Kick User"_s);
        desk.tick(u"Options"_s, u"Restrict Access"_s);
        QVERIFY(!desk.isGranted(u"Options"_s, u"View Options"_s));
        QVERIFY(desk.isGranted(u"Profile Admins"_s, u"Kick User"_s));
        desk.tick(u"Options"_s, u"Change Options"_s);
        QVERIFY(!desk.isGranted(u"Options"_s, u"Restrict Access"_s));
    }

    void whatIsMissingIsSaidAndNothingIsSent_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QString>("box");
        QTest::newRow("name") << QString() << u"pw"_s << u"Username field is empty!"_s;
        QTest::newRow("password") << u"bob"_s << QString() << u"Password field is empty!"_s;
        QTest::newRow("foreign character")
            << u"bob\u4e00"_s << u"pw"_s << u"The character '\u4e00' cannot be sent to the host!"_s;
    }
    void whatIsMissingIsSaidAndNothingIsSent()
    {
        QFETCH(const QString, name);
        QFETCH(const QString, password);
        QFETCH(const QString, box);
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.fill(u"txtUser"_s, name);
        desk.fill(u"txtPass"_s, password);
        desk.click(u"cmdAddUser"_s);
        QCOMPARE(desk.boxes.boxes, (QList<RecordingDialogs::Box>{{u"Error!"_s, box}}));
        QCOMPARE(desk.requestCount("AddProfileAdmin"), 0);
        QCOMPARE(desk.text(u"txtUser"_s), name);
    }

    void nobodySelectedIsNobodyDeleted()
    {
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.click(u"cmdDeleteUser"_s);
        QVERIFY(desk.settles());
        QCOMPARE(desk.requestCount("DeleteProfileAdmin"), 0);
        QCOMPARE(desk.users().size(), 3);
    }

    void whatWasTypedSurvivesARefresh()
    {
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.fill(u"txtUser"_s, u"bob"_s);
        desk.fill(u"txtPass"_s, u"pw"_s);
        desk.tick(u"Profiles"_s, u"Edit Profiles"_s);
        QVERIFY(desk.comeBack());
        desk.selectUser(u"guest"_s);
        desk.click(u"cmdKickUser"_s);
        desk.tracker.answerNext("GetProfileAdmins", Fault::garbage());
        QVERIFY(desk.comeBack());
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.text(u"txtUser"_s), u"bob"_s);
        QCOMPARE(desk.text(u"txtPass"_s), u"pw"_s);
        QVERIFY(desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));

        desk.fill(u"txtUser"_s, u"guest"_s); // a name that the tracker refuses
        desk.click(u"cmdAddUser"_s);
        QCOMPARE(desk.text(u"txtPass"_s), u"pw"_s);
        QVERIFY(desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));

        desk.choose(u"moderator"_s);
        QVERIFY(!desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));
        desk.tick(u"Profiles"_s, u"Edit Profiles"_s);
        desk.fill(u"txtPass"_s, u"better"_s);
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.chosen(), u"moderator"_s);
        QCOMPARE(desk.text(u"txtPass"_s), u"better"_s);
        QVERIFY(desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));
        desk.tracker.world().accounts.removeIf([](const auto& account) { return account.name == "moderator"; });
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.chosen(), newAdmin);
    }

    void deniedPrivilegesDisable_data()
    {
        QTest::addColumn<QString>("user");
        QTest::addColumn<QStringList>("enabled");
        QTest::addColumn<int>("users");
        QTest::newRow("all but a few") << u"moderator"_s << QStringList{u"cmdKickUser"_s, u"fmeLog"_s, u"lstLog"_s}
                                       << 3;
        QTest::newRow("none") << u"guest"_s << QStringList() << 0;
    }
    void deniedPrivilegesDisable()
    {
        QFETCH(const QString, user);
        QFETCH(const QStringList, enabled);
        QFETCH(const int, users);
        AdminDesk desk;
        QVERIFY(desk.logIn(user));
        // A tracker that tells more than the account may see.
        desk.tracker.answerNextWith("GetProfileAdmins", reply("YQ==|YQ==||x[-]Yg==|Yg==||x[-]Yw==|Yw==||x[-][-]line"));
        desk.clickTab(u"tsSection"_s, u"Server Manager"_s);
        QVERIFY(desk.loaded());
        for (const QString& name :
             {u"cmdAddUser"_s, u"cmdModify"_s, u"cmdDeleteUser"_s, u"cmdKickUser"_s, u"fmeLog"_s, u"lstLog"_s})
            QCOMPARE(desk.control(name).isEnabled(), enabled.contains(name));
        QCOMPARE(desk.users().size(), users);
        QCOMPARE(desk.names().size(), users + 1);
        QCOMPARE(desk.control<QListWidget>(u"lstLog"_s).count(), users == 0 ? 0 : 1);
        QCOMPARE(desk.control(u"mfgUsers"_s).accessibleDescription() == u"You may not view the accounts."_s,
                 users == 0);
    }

    void oddListsAreShownAsFarAsTheyGo_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QStringList>("users");
        QTest::addColumn<int>("lines");
        QTest::addColumn<QString>("error");
        const QStringList all{u"admin"_s, u"moderator"_s, u"guest"_s};
        const QByteArray good = reply("YQ==|YQ==|1.2.3.4|on[-]Yg==|Yg==||[-][-]line");
        QTest::newRow("True") << "True"_ba << all << 2 << QString();
        QTest::newRow("empty") << ""_ba << all << 2 << QString();
        QTest::newRow("good") << good << QStringList{u"a"_s, u"b"_s} << 1 << QString();
        QTest::newRow("no log part") << reply("YQ==|YQ==||") << QStringList{u"a"_s} << 0 << QString();
        QTest::newRow("empty text") << reply("") << QStringList() << 0 << QString();
        QTest::newRow("no marker") << "False"_ba << QStringList() << 0 << u"Error 9: "_s;
        QTest::newRow("no length") << "x[-]Quorvane[-]y"_ba << QStringList() << 0 << u"Error 13: "_s;
        QTest::newRow("wrong length") << "9" + good << QStringList() << 0 << u"Error 321: "_s;
        QTest::newRow("cut off") << good.chopped(9) << QStringList() << 0 << u"Error 321: "_s;
        QTest::newRow("second account has two fields")
            << reply("YQ==|YQ==||[-]Yg==|Yg==[-]Yw==|Yw==||[-][-]line") << QStringList{u"a"_s} << 1 << u"Error 9: "_s;
        QTest::newRow("second account is no Base64")
            << reply("YQ==|YQ==||[-]%%%%|Yg==||[-][-]line") << QStringList{u"a"_s} << 1 << u"Error 13: "_s;
    }
    void oddListsAreShownAsFarAsTheyGo()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QStringList, users);
        QFETCH(const int, lines);
        QFETCH(const QString, error);
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.tracker.answerNextWith("GetProfileAdmins", body);
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.users(), users);
        QCOMPARE(desk.control<QListWidget>(u"lstLog"_s).count(), lines);
        QCOMPARE(desk.boxes.count(u"QRVRC Error!"_s), error.isEmpty() ? 0 : 1);
        if (!error.isEmpty())
            QVERIFY2(desk.boxes.onlyText().contains(error), qPrintable(desk.boxes.onlyText()));
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.users().size(), 3);
    }

    void nobodyIsSavedWithBoxesOfSomebodyElse_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("rows");
        QTest::addColumn<bool>("isSent");
        QTest::newRow("no privileges") << ""_ba << 0 << true;
        QTest::newRow("an envelope") << "1[-]Quorvane[-]x"_ba << 0 << false;
        QTest::newRow("second section is cut off") << "A||\tx1[-]B"_ba << 3 << false;
        QTest::newRow("good") << "A||\tx1"_ba << 3 << true;
    }
    void nobodyIsSavedWithBoxesOfSomebodyElse()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const int, rows);
        QFETCH(const bool, isSent);
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.tracker.answerNextWith("GetProfileAdminPrivis", body);
        desk.choose(u"guest"_s);
        QCOMPARE(desk.chosen(), u"guest"_s);
        QCOMPARE(desk.boxRows().rowCount(), rows);
        desk.boxes.boxes.clear();
        desk.click(u"cmdModify"_s);
        QVERIFY(desk.settles());
        QCOMPARE(desk.requestCount("ModifyProfileAdmin"), isSent ? 1 : 0);
        QCOMPARE(desk.boxes.count(u"Error!"_s), isSent ? 0 : 1);
    }

    void walkingThroughTheNamesEndsWithTheLastOne()
    {
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        auto& list = desk.control<QComboBox>(u"cboUser"_s);
        list.setFocus();
        desk.tracker.answerNext("GetProfileAdminPrivis", Fault::late(50ms));
        // While the answer for the first name is owed, the user goes on to the last.
        QTimer::singleShot(0, &list, [&list] {
            QTest::keyClick(&list, Qt::Key_Down);
            QTest::keyClick(&list, Qt::Key_Up);
        });
        QTest::keyClick(&list, Qt::Key_Down);
        QTRY_COMPARE(desk.chosen(), u"admin"_s);
        QTRY_VERIFY(desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s)); // a super account has them all
        QVERIFY(desk.settles());
        QCOMPARE(desk.text(u"txtUser"_s), u"admin"_s);
    }

    void aDropLosesNothingThatWasTyped_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::addColumn<Fault>("fault");
        for (const char* request : {"AddProfileAdmin", "GetProfileAdmins"}) {
            QTest::addRow("%s, cut off", request) << QByteArray(request) << Fault::cutOffAfter(9);
            QTest::addRow("%s, never", request) << QByteArray(request) << Fault::never();
        }
    }
    void aDropLosesNothingThatWasTyped()
    {
        QFETCH(const QByteArray, request);
        QFETCH(const Fault, fault);
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.fill(u"txtUser"_s, u"guest"_s); // refused, so that only the screen keeps what was typed
        desk.fill(u"txtPass"_s, u"pw"_s);
        desk.tick(u"Profiles"_s, u"Edit Profiles"_s);
        desk.tracker.answerNext(request, fault);
        desk.link().replyLimit = fault == Fault::never() ? 30ms : 60s;
        desk.click(u"cmdAddUser"_s);
        QTRY_VERIFY(!desk.link().isConnected());
        QVERIFY(desk.users().isEmpty());
        QTRY_COMPARE(desk.boxes.boxes.size(), fault == Fault::never() ? 1 : 0);
        desk.link().replyLimit = 60s;
        QVERIFY(desk.openAdmins());
        QCOMPARE(desk.text(u"txtUser"_s), u"guest"_s);
        QCOMPARE(desk.text(u"txtPass"_s), u"pw"_s);
        QVERIFY(desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));
        QVERIFY(desk.control(u"cmdAddUser"_s).isEnabled());
        desk.tracker.closeLinks();
        QTRY_VERIFY(!desk.link().isConnected());
        QVERIFY(desk.openAdmins(u"moderator"_s)); // somebody else
        QVERIFY(desk.text(u"txtUser"_s).isEmpty() && !desk.isGranted(u"Profiles"_s, u"Edit Profiles"_s));
    }

    void withoutAProfileNothingIsSent()
    {
        AdminDesk desk;
        QVERIFY(desk.openAdmins());
        desk.core().selected.id = 0;
        const qsizetype sent = desk.requestCount("GetProfileAdmins");
        desk.clickTab(u"tsSM"_s, u"Admin"_s);
        QTRY_VERIFY(desk.users().isEmpty());
        QVERIFY(desk.control(u"mfgUsers"_s).accessibleDescription().contains(u"No profile is selected"_s));
        desk.fill(u"txtUser"_s, u"bob"_s);
        desk.fill(u"txtPass"_s, u"pw"_s);
        desk.click(u"cmdAddUser"_s);
        QCOMPARE(desk.boxes.count(u"Action Required!"_s), 1);
        QCOMPARE(desk.requestCount("GetProfileAdmins"), sent);
        QCOMPARE(desk.requestCount("AddProfileAdmin"), 0);
    }
};

QTEST_MAIN(ProfileAdminTest)
#include "ProfileAdminTest.moc"
