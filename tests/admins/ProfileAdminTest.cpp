#include "support/AddRow.h"
#include "support/Desk.h"

#include "admins/AccountDrafts.h"
#include "client/SelectedProfile.h"
#include "practice/links/Framing.h"

#include <QAbstractItemModel>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QThreadPool>

#include <functional>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

const QString newOne = u"Add New Admin"_s;
const QString edit = u"Edit Profiles"_s;
const QString granted = u"\u00fe"_s;
const ChosenProfile alpha{1, "Alpha", {}, 0};
const ChosenProfile bravo{2, "Bravo", {}, 0};

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
    /// The same at another host.
    bool openAdminsOf(practice::Tracker& other)
    {
        chooseProfile(u"New Profile"_s);
        typeProfile(u"Elsewhere"_s, u"admin"_s, u"admin"_s, other.port());
        Desk::click(u"cmdConnect"_s);
        if (!QTest::qWaitFor(
                [&] { return Desk::control(u"qrvrcProfilesList"_s).isVisible() && grid().rowCount() > 0; }))
            return false;
        clickTab(u"tsSection"_s, u"Server Manager"_s);
        return QTest::qWaitFor([&] { return users().size() == 3; });
    }
    /// Shows the accounts of that profile and does not wait for them.
    void show(const ChosenProfile& profile)
    {
        core().selected.profile = profile;
        clickTab(u"tsSM"_s, u"Admin"_s);
        if (!QTest::qWaitFor([&] { return note().contains(u"profile %1, "_s.arg(profile.id)); }))
            qFatal("profile %d is not shown", profile.id);
    }
    bool loaded(const std::function<void()>& act = [] {}) { return answered("GetProfileAdminPrivis", act); }

    /// Other windows have controls of some of these names too: the window's own ones come first.
    template <typename Control = QWidget>
    Control& control(const QString& name)
    {
        const auto* window = frame().findChild<QWidget*>(u"qrvrcProfileAdmin"_s);
        auto* own = window ? window->findChild<Control*>(name) : nullptr;
        return own ? *own : Desk::control<Control>(name);
    }
    Pane pane() { return in(u"qrvrcProfileAdmin"_s); }
    void click(const QString& name) { pane().click(name); }
    QString text(const QString& name) { return pane().text(name); }
    void fill(const QString& name, const QString& text) { pane().type(name, text); }

    QStringList users(int column = 0) { return pane().column(u"mfgUsers"_s, column); }
    QStringList names() { return pane().column(u"cboUser"_s); }
    QString note() { return text(u"lblNote"_s); }
    QString chosen() { return text(u"cboUser"_s); }
    /// Chooses a name with the keyboard and waits for its privileges.
    void choose(const QString& name)
    {
        if (!loaded([&] { pane().choose(u"cboUser"_s, name); }))
            qFatal("the privileges of %s do not come", qPrintable(name));
    }
    void selectUser(const QString& name) { pane().clickRow(u"mfgUsers"_s, static_cast<int>(users().indexOf(name))); }

    QAbstractItemModel& boxRows() { return *control<QTableView>(u"lstSections"_s).model(); }
    int rowOf(const QString& privilege)
    {
        const qsizetype row = pane().column(u"lstSections"_s, 1).indexOf(privilege);
        if (row < 0)
            qFatal("there is no privilege %s", qPrintable(privilege));
        return static_cast<int>(row);
    }
    bool isGranted(const QString& privilege)
    {
        return boxRows().index(rowOf(privilege), 0).data().toString() == granted;
    }
    void clickCell(int row, int column, Qt::MouseButton button = Qt::LeftButton)
    {
        auto& view = control<QTableView>(u"lstSections"_s);
        const QModelIndex cell = boxRows().index(row, column);
        view.scrollTo(cell);
        QTest::mouseClick(view.viewport(), button, {}, view.visualRect(cell).center());
    }
    void tick(const QString& privilege) { clickCell(rowOf(privilege), 0); }

    /// Types an account and ticks the privilege `edit`.
    void make(const QString& name, const QString& password)
    {
        fill(u"txtUser"_s, name);
        fill(u"txtPass"_s, password);
        tick(edit);
    }
    /// Whether what make() did is there.
    bool holds(const QString& name, const QString& password)
    {
        return text(u"txtUser"_s) == name && text(u"txtPass"_s) == password && isGranted(edit);
    }
    /// Whether the tracker's account may edit profiles.
    bool mayEdit(const QByteArray& account)
    {
        return tracker.world().account(account)->allows("Profiles", "Edit Profiles");
    }
    /// The profile that the newest request of that name is about.
    QByteArray profileOf(const QByteArray& request) const { return lastRequest(request).split('_').value(3); }
};

/// The same with the window open for the administrator.
struct OpenDesk : AdminDesk
{
    OpenDesk()
    {
        if (!openAdmins())
            qFatal("the accounts are not shown");
    }
};

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
        QCOMPARE(desk.note(), u"Accounts of profile 2, Bravo"_s);
        QCOMPARE(desk.users(), (QStringList{u"admin"_s, u"moderator"_s, u"guest"_s}));
        QCOMPARE(desk.users(1), desk.users());
        QCOMPARE(desk.users(3).first(), u"Connected"_s);
        QCOMPARE(desk.names(), (QStringList{newOne, u"admin"_s, u"moderator"_s, u"guest"_s}));
        QCOMPARE(desk.chosen(), newOne);
        QVERIFY(desk.control<QListWidget>(u"lstLog"_s).count() >= 2);
        QVERIFY(desk.control(u"cmdAddUser"_s).isVisible() && !desk.control(u"cmdModify"_s).isVisible());
        QCOMPARE(desk.frame().helpSection(), u"Profile Admins"_s);

        desk.click(u"cmdDeleteUser"_s); // nobody is selected
        QVERIFY(desk.settles() && desk.requestCount("DeleteProfileAdmin") == 0);
        desk.show({0, "Zero", {}, 0}); // a number like any other
        QVERIFY(desk.settles());
        QCOMPARE(desk.lastRequest("GetProfileAdmins"), "GetProfileAdmins_admin_VB6_0"_ba);
        const qsizetype sent = desk.tracker.requests().size();
        desk.core().selected.profile.reset();
        desk.clickTab(u"tsSM"_s, u"Admin"_s);
        QTRY_VERIFY(desk.control(u"mfgUsers"_s).accessibleDescription().contains(u"No profile is selected"_s));
        desk.click(u"cmdAddUser"_s);
        desk.click(u"cmdDeleteUser"_s);
        QVERIFY(desk.settles() && !desk.control(u"txtUser"_s).isEnabled());
        QCOMPARE(desk.tracker.requests().size(), sent);
    }

    void anAccountGoesThroughItsWholeLife()
    {
        OpenDesk desk;
        desk.make(u"bob"_s, u"pw \u00e9"_s);
        desk.click(u"cmdAddUser"_s);
        const practice::Account* bob = desk.tracker.world().account("bob");
        QVERIFY(bob && bob->password == "pw \xe9" && desk.mayEdit("bob") && bob->profiles == QList<int>{1});
        QCOMPARE(desk.users().last(), u"bob"_s);
        QVERIFY(desk.text(u"txtUser"_s).isEmpty() && !desk.isGranted(edit));

        desk.choose(u"bob"_s);
        QVERIFY(desk.holds(u"bob"_s, u"pw \u00e9"_s));
        desk.make(u"bobby"_s, u"pw"_s);
        bool wasDisabled = false;
        connect(&desk.tracker, &practice::Tracker::requestReceived, this, [&](const QByteArray& name) {
            wasDisabled = wasDisabled || (name == "ModifyProfileAdmin" && !desk.control(u"cmdModify"_s).isEnabled());
        });
        desk.click(u"cmdModify"_s);
        QVERIFY(wasDisabled && desk.control(u"cmdModify"_s).isEnabled());
        QVERIFY(!desk.tracker.world().account("bob") && !desk.mayEdit("bobby"));
        QCOMPARE(desk.users().last(), u"bobby"_s);
        QCOMPARE(desk.chosen(), newOne);
        QVERIFY(desk.control(u"cmdAddUser"_s).isVisible());

        desk.selectUser(u"bobby"_s);
        desk.click(u"cmdDeleteUser"_s);
        QVERIFY(!desk.tracker.world().account("bobby") && !desk.users().contains(u"bobby"_s));
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void onlyABoxIsToggled()
    {
        OpenDesk desk;
        const auto& view = desk.control<QTableView>(u"lstSections"_s);
        const int row = desk.rowOf(edit);
        const auto box = [&](int at) { return desk.boxRows().index(at, 0); };
        QCOMPARE(box(row).data().toString(), u"q"_s);
        QCOMPARE(box(row).data(Qt::AccessibleTextRole).toString(), u"not granted"_s);
        desk.clickCell(row, 1);
        desk.clickCell(row, 0, Qt::RightButton);
        QCOMPARE(box(row).data().toString(), u"q"_s);
        desk.clickCell(row, 0);
        QCOMPARE(box(row).data().toString(), granted);
        QCOMPARE(box(row).data(Qt::AccessibleTextRole).toString(), u"granted"_s);
        QTest::keyClick(&desk.control(u"lstSections"_s), Qt::Key_Space);
        QCOMPARE(box(row).data().toString(), u"q"_s);
        QCOMPARE(view.columnSpan(0, 0), 2);
        desk.clickCell(0, 0); // a section
        QTest::keyClick(&desk.control(u"lstSections"_s), Qt::Key_Space);
        QCOMPARE(box(0).data().toString(), u"Profiles"_s);

        desk.tick(u"View Options"_s);
        desk.tick(u"Restrict Access"_s);
        QVERIFY(!desk.isGranted(u"View Options"_s));
    }

    void whatCannotBeSentIsSaid()
    {
        OpenDesk desk;
        desk.make(u"bob\u4e00"_s, QString());
        desk.click(u"cmdAddUser"_s);
        desk.fill(u"txtPass"_s, u"pw"_s);
        desk.click(u"cmdAddUser"_s);
        QCOMPARE(desk.boxes.boxes, (QList<RecordingDialogs::Box>{
                                       {u"Error!"_s, u"Password field is empty!"_s},
                                       {u"Error!"_s, u"The character '\u4e00' cannot be sent to the host!"_s}}));
        QCOMPARE(desk.requestCount("AddProfileAdmin"), 0);
        QVERIFY(desk.holds(u"bob\u4e00"_s, u"pw"_s));
    }

    void aQuestionComesFirstWhereOneWantsIt_data()
    {
        addColumns<QString, QByteArray, QString, bool>("button", "request", "question", "answer");
        const QString kick = u"Are you sure you want to kick the account 'guest'?"_s;
        const QString remove = u"Are you sure you want to delete the account 'guest'?"_s;
        addRow("kick", u"cmdKickUser"_s, "KickProfileAdmin"_ba, kick, true);
        addRow("no kick", u"cmdKickUser"_s, "KickProfileAdmin"_ba, kick, false);
        addRow("delete", u"cmdDeleteUser"_s, "DeleteProfileAdmin"_ba, remove, true);
        addRow("no delete", u"cmdDeleteUser"_s, "DeleteProfileAdmin"_ba, remove, false);
    }
    void aQuestionComesFirstWhereOneWantsIt()
    {
        QFETCH(const QString, button);
        QFETCH(const QByteArray, request);
        QFETCH(const bool, answer);
        OpenDesk desk;
        desk.core().preferences.asksBefore = {.kick = true, .deleteAccount = true};
        desk.boxes.answer = answer;
        desk.boxes.whileOpen = [&] { desk.selectUser(u"moderator"_s); }; // who it is about is settled
        desk.selectUser(u"guest"_s);
        desk.click(button);
        QVERIFY(desk.settles());
        QTEST(desk.boxes.onlyText(), "question");
        QCOMPARE(desk.requestCount(request), answer ? 1 : 0);
        QCOMPARE(desk.lastRequest(request).contains("guest"_ba.toBase64()), answer);
    }

    void whatWasTypedSurvivesARefresh()
    {
        OpenDesk desk;
        desk.make(u"bob"_s, u"pw"_s);
        desk.selectUser(u"guest"_s);
        desk.click(u"cmdKickUser"_s);
        desk.tracker.answerNext("GetProfileAdmins", Fault::garbage());
        for (const char* body : {"", "A||\tx1[-]B"}) {
            desk.tracker.answerNextWith("GetProfileAdminPrivis", body);
            QVERIFY(desk.comeBack());
            QVERIFY(desk.holds(u"bob"_s, u"pw"_s));
        }
        desk.fill(u"txtUser"_s, u"guest"_s); // a name that the tracker refuses
        desk.click(u"cmdAddUser"_s);
        QVERIFY(desk.holds(u"guest"_s, u"pw"_s));
        QCOMPARE(desk.note(), u"The tracker did not take 'guest'."_s);

        desk.choose(u"moderator"_s);
        QVERIFY(!desk.isGranted(edit));
        desk.make(u"moderator"_s, u"better"_s);
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.chosen(), u"moderator"_s);
        QVERIFY(desk.holds(u"moderator"_s, u"better"_s));
        desk.tracker.world().accounts.removeIf([](const auto& account) { return account.name == "moderator"; });
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.chosen(), newOne);
    }

    void deniedPrivilegesDisable_data()
    {
        addColumns<QString, QStringList, int>("user", "enabled", "users");
        addRow("all but a few", u"moderator"_s, QStringList{u"cmdKickUser"_s, u"fmeLog"_s, u"lstLog"_s}, 3);
        addRow("none", u"guest"_s, QStringList(), 0);
    }
    void deniedPrivilegesDisable()
    {
        QFETCH(const QString, user);
        QFETCH(const QStringList, enabled);
        QFETCH(const int, users);
        AdminDesk desk;
        QVERIFY(desk.logIn(user));
        // A tracker that tells more than the account may see.
        desk.tracker.answerNextWith("GetProfileAdmins",
                                    practice::envelope("YQ==|YQ==||x[-]Yg==|Yg==||x[-]Yw==|Yw==||x[-][-]line"));
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
        addColumns<QByteArray, QStringList, int, QString>("body", "users", "lines", "error");
        const QStringList all{u"admin"_s, u"moderator"_s, u"guest"_s};
        const QByteArray good = practice::envelope("YQ==|YQ==|1.2.3.4|on[-]Yg==|Yg==||[-][-]line");
        addRow("True", "True"_ba, all, 2, QString());
        addRow("empty", ""_ba, all, 2, QString());
        addRow("good", good, QStringList{u"a"_s, u"b"_s}, 1, QString());
        addRow("no marker", "False"_ba, QStringList(), 0, u"Error 9: "_s);
        addRow("wrong length", "9" + good, QStringList(), 0, u"Error 321: "_s);
        addRow("second account has two fields", practice::envelope("YQ==|YQ==||[-]Yg==|Yg==[-]Yw==|Yw==||[-][-]line"),
               QStringList{u"a"_s}, 1, u"Error 9: "_s);
    }
    void oddListsAreShownAsFarAsTheyGo()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QStringList, users);
        QFETCH(const int, lines);
        QFETCH(const QString, error);
        OpenDesk desk;
        desk.tracker.answerNextWith("GetProfileAdmins", body);
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.users(), users);
        QCOMPARE(desk.control<QListWidget>(u"lstLog"_s).count(), lines);
        QTRY_COMPARE(desk.boxes.count(u"QRVRC Error!"_s), error.isEmpty() ? 0 : 1);
        if (!error.isEmpty())
            QVERIFY2(desk.boxes.onlyText().contains(error), qPrintable(desk.boxes.onlyText()));
        QVERIFY(desk.comeBack());
        QCOMPARE(desk.users().size(), 3);
    }

    void whatIsCutIsSaidBesideTheList_data()
    {
        addColumns<int, bool, bool>("most", "areUsersCut", "isLogCut");
        QTest::newRow("all") << 3 << false << false;
        QTest::newRow("one account too many") << 2 << true << false;
        QTest::newRow("one line too many") << 1 << true << true;
    }
    void whatIsCutIsSaidBesideTheList()
    {
        QFETCH(const int, most);
        AdminDesk desk;
        desk.bounds.listRows = static_cast<std::size_t>(most);
        QVERIFY(desk.openAdmins());
        QCOMPARE(desk.users().size(), most);
        QTEST(desk.control(u"lblUsersCut"_s).isVisible(), "areUsersCut");
        QTEST(desk.control(u"lblLogCut"_s).isVisible(), "isLogCut");
    }

    void aLongListIsReadBesideTheWindow_data()
    {
        QTest::addColumn<bool>("isDropped");
        QTest::newRow("shown") << false;
        QTest::newRow("the link goes first") << true;
    }
    void aLongListIsReadBesideTheWindow()
    {
        QFETCH(const bool, isDropped);
        constexpr int many = 6000;
        OpenDesk desk;
        desk.tracker.answerNextWith("GetProfileAdmins",
                                    practice::envelope(QByteArray("YQ==|YQ==||[-]").repeated(many)));
        // In the turn of the answer, before any result can be taken.
        const qsizetype asked = desk.requestCount("GetProfileAdmins");
        connect(&desk.link(), &clsWinSock::replyHandled, &desk.frame(), [&] {
            if (isDropped && desk.requestCount("GetProfileAdmins") > asked)
                desk.core().wsMain.close();
        });
        QVERIFY(desk.answered("GetProfileAdmins", [&] {
            desk.clickTab(u"tsSection"_s, u"Profile Manager"_s);
            desk.clickTab(u"tsSection"_s, u"Server Manager"_s);
        }));
        if (!isDropped)
            QTRY_COMPARE(desk.users().size(), many);
        QThreadPool::globalInstance()->waitForDone();
        QCoreApplication::processEvents();
        QCOMPARE(desk.users().size(), isDropped ? 0 : many);
        QCOMPARE(desk.boxes.count(u"QRVRC Error!"_s), 0);
    }

    void nothingIsSavedWithoutItsOwnPrivileges_data()
    {
        addColumns<QString, QByteArray, int, bool>("account", "body", "rows", "isSent");
        for (const QString& account : {u"guest"_s, newOne}) {
            const QByteArray name = account.toLatin1();
            QTest::addRow("%s, empty", name.data()) << account << ""_ba << 0 << false;
            QTest::addRow("%s, an envelope", name.data()) << account << "1[-]Quorvane[-]x"_ba << 0 << false;
            QTest::addRow("%s, damaged", name.data()) << account << "A||\tx1[-]B"_ba << 3 << false;
            QTest::addRow("%s, good", name.data()) << account << "A||\tx1"_ba << 3 << true;
        }
    }
    void nothingIsSavedWithoutItsOwnPrivileges()
    {
        QFETCH(const QString, account);
        QFETCH(const QByteArray, body);
        QFETCH(const int, rows);
        QFETCH(const bool, isSent);
        AdminDesk desk;
        const bool isNew = account == newOne;
        if (isNew)
            desk.tracker.answerNextWith("GetProfileAdminPrivis", body);
        QVERIFY(desk.openAdmins());
        if (!isNew) {
            desk.tracker.answerNextWith("GetProfileAdminPrivis", body);
            desk.choose(account);
        }
        QCOMPARE(desk.chosen(), account);
        QCOMPARE(desk.boxRows().rowCount(), rows);
        desk.boxes.boxes.clear();
        desk.fill(u"txtUser"_s, u"bob"_s);
        desk.fill(u"txtPass"_s, u"pw"_s);
        desk.click(isNew ? u"cmdAddUser"_s : u"cmdModify"_s);
        QVERIFY(desk.settles());
        QCOMPARE(desk.requestCount(isNew ? "AddProfileAdmin" : "ModifyProfileAdmin"), isSent ? 1 : 0);
        QCOMPARE(desk.boxes.count(u"Error!"_s), isSent ? 0 : 1);
        QCOMPARE(desk.text(u"txtUser"_s).isEmpty(), isSent);
    }

    void walkingThroughTheNamesEndsWithTheLastOne()
    {
        OpenDesk desk;
        auto& list = desk.control<QComboBox>(u"cboUser"_s);
        list.setFocus();
        desk.beforeAnswer("GetProfileAdminPrivis", [&] { // the one for the first name
            QTest::keyClick(&list, Qt::Key_Down);
            QTest::keyClick(&list, Qt::Key_Up);
            QCOMPARE(desk.boxRows().rowCount(), 0); // nobody else's boxes stand beside the name
        });
        QTest::keyClick(&list, Qt::Key_Down);
        QTRY_VERIFY(desk.boxRows().rowCount() > 0 && desk.settles());
        QCOMPARE(desk.chosen(), u"admin"_s);
        QVERIFY(desk.isGranted(edit)); // a super account has them all
        QCOMPARE(desk.text(u"txtUser"_s), u"admin"_s);
    }

    void whatWasTypedStaysWhereItWasTyped_data()
    {
        QTest::addColumn<QString>("elsewhere");
        for (const char* elsewhere : {"another profile", "another user", "another host"})
            QTest::newRow(elsewhere) << QString::fromLatin1(elsewhere);
    }
    void whatWasTypedStaysWhereItWasTyped()
    {
        QFETCH(const QString, elsewhere);
        AdminDesk desk;
        practice::Tracker other(practice::World::small());
        QVERIFY(other.listen());
        QVERIFY(desk.openAdmins());
        desk.choose(u"moderator"_s);
        desk.make(u"moderator"_s, u"better \u4e00"_s); // what cannot be sent is kept too

        const bool isSameLink = elsewhere == u"another profile"_s;
        if (isSameLink) {
            desk.show(bravo);
        } else {
            desk.tracker.closeLinks();
            QTRY_VERIFY(!desk.link().isConnected());
            QVERIFY(elsewhere == u"another user"_s ? desk.openAdmins(u"guest"_s) : desk.openAdminsOf(other));
        }
        QTRY_VERIFY(desk.settles() && desk.boxRows().rowCount() > 0);
        QCOMPARE(desk.chosen(), newOne);
        QVERIFY(desk.text(u"txtPass"_s).isEmpty() && !desk.isGranted(edit));

        if (isSameLink) {
            desk.choose(u"moderator"_s);
            desk.click(u"cmdModify"_s);
            QVERIFY(desk.profileOf("ModifyProfileAdmin") == "2" && !desk.mayEdit("moderator"));
            desk.show(alpha);
        } else {
            desk.link().close();
            QVERIFY(desk.openAdmins());
        }
        QVERIFY(desk.settles() && desk.chosen() == u"moderator"_s);
        QVERIFY(desk.holds(u"moderator"_s, u"better \u4e00"_s));
        desk.fill(u"txtPass"_s, u"better"_s);
        desk.click(u"cmdModify"_s);
        QVERIFY(desk.profileOf("ModifyProfileAdmin") == "1" && desk.mayEdit("moderator"));
    }

    void anAnswerFillsNoOtherProfile_data()
    {
        QTest::addColumn<QByteArray>("request");
        QTest::newRow("accounts") << "GetProfileAdmins"_ba;
        QTest::newRow("privileges") << "GetProfileAdminPrivis"_ba;
    }
    void anAnswerFillsNoOtherProfile()
    {
        QFETCH(const QByteArray, request);
        OpenDesk desk;
        const qsizetype asked = desk.requestCount(request);
        bool isSeen = false;
        connect(&desk.tracker, &practice::Tracker::requestReceived, this, [&](const QByteArray& name) {
            if (name != request || desk.requestCount(request) != asked + 2)
                return;
            isSeen = true; // the answer for the profile before has been handled, the one for this one is owed
            QVERIFY(request == "GetProfileAdmins" ? desk.users().isEmpty() : desk.boxRows().rowCount() == 0);
        });
        desk.beforeAnswer(request, [&] { desk.show(bravo); });
        desk.clickTab(u"tsSM"_s, u"Admin"_s);
        QTRY_VERIFY(isSeen && desk.settles());
        QTRY_COMPARE(desk.users().size(), 3);
        QTRY_VERIFY(desk.boxRows().rowCount() > 0);
    }

    void aClickMeansWhatIsShownThen()
    {
        OpenDesk desk;
        desk.choose(u"moderator"_s);
        desk.fill(u"txtPass"_s, u"better"_s);
        desk.selectUser(u"guest"_s);
        desk.beforeAnswer("ModifyProfileAdmin", [&] {
            desk.click(u"cmdKickUser"_s);
            desk.show(bravo);
            desk.fill(u"txtUser"_s, u"bob"_s);
        });
        desk.click(u"cmdModify"_s);
        QCOMPARE(desk.tracker.world().account("moderator")->password, "better"_ba);
        QCOMPARE(desk.profileOf("ModifyProfileAdmin"), "1"_ba);
        QCOMPARE(desk.lastRequest("KickProfileAdmin"), "KickProfileAdmin_admin_VB6_1_" + "guest"_ba.toBase64());
        QCOMPARE(desk.text(u"txtUser"_s), u"bob"_s);

        desk.make(u"bob"_s, u"pw"_s);
        desk.beforeAnswer("AddProfileAdmin", [&] { desk.fill(u"txtUser"_s, u"carl"_s); });
        desk.click(u"cmdAddUser"_s);
        QVERIFY(desk.mayEdit("bob") && !desk.tracker.world().account("carl"));
        QVERIFY(desk.holds(u"carl"_s, u"pw"_s));
        desk.show(alpha);
        QVERIFY(desk.settles());
        QCOMPARE(desk.chosen(), newOne); // it has been saved, so there is nothing to go back to
        QVERIFY(desk.text(u"txtUser"_s).isEmpty());
    }

    void theOldestDraftGoesFirst()
    {
        AccountDrafts drafts;
        const auto home = [](int id) { return AccountHome{{}, {id, {}, {}, 0}}; };
        const auto draft = [](int id) { return AccountDraft{.name = QString::number(id)}; };
        const int most = static_cast<int>(AccountDrafts::most);
        for (int id = 0; id <= most; ++id)
            drafts.keep(home(id), draft(id));
        drafts.forgetSaved(home(2), draft(9)); // changed since it was saved
        drafts.forgetSaved(home(3), draft(3));
        QVERIFY(!drafts.take(home(0)) && drafts.take(home(1)) == draft(1) && !drafts.take(home(1)));
        QVERIFY(drafts.take(home(2)) == draft(2) && !drafts.take(home(3)) && drafts.take(home(most)) == draft(most));
    }

    void aDropLosesNothingThatWasTyped_data()
    {
        addColumns<QByteArray, Fault>("request", "fault");
        QTest::newRow("cut off") << "AddProfileAdmin"_ba << Fault::cutOffAfter(9);
        QTest::newRow("never") << "GetProfileAdmins"_ba << Fault::never();
    }
    void aDropLosesNothingThatWasTyped()
    {
        QFETCH(const QByteArray, request);
        QFETCH(const Fault, fault);
        OpenDesk desk;
        desk.make(u"guest"_s, u"pw"_s); // refused, so that only the screen keeps what was typed
        desk.tracker.answerNext(request, fault);
        desk.link().replyLimit = fault == Fault::never() ? 30ms : 60s;
        desk.click(u"cmdAddUser"_s);
        QTRY_VERIFY(!desk.link().isConnected());
        QVERIFY(desk.users().isEmpty());
        QTRY_COMPARE(desk.boxes.boxes.size(), fault == Fault::never() ? 1 : 0);
        desk.link().replyLimit = 60s;
        QVERIFY(desk.openAdmins());
        QVERIFY(desk.holds(u"guest"_s, u"pw"_s));
        QVERIFY(desk.control(u"cmdAddUser"_s).isEnabled());
    }
};

QTEST_MAIN(ProfileAdminTest)
#include "ProfileAdminTest.moc"
