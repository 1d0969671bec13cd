#include "profiles/editor/EditorUser.h"

#include "support/AddRow.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

const QString noSystem = u"Please select a Stats System"_s;

QByteArray replyOf(const QList<QByteArray>& elements)
{
    QByteArray body = "Profile";
    for (const QByteArray& element : elements)
        body += '_' + element.toBase64();
    return body;
}

} // namespace

class ModifyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aProfileIsReadChangedAndSaved()
    {
        Editor editor;
        editor.desk.tracker.world().profile(2)->settings = {.scripts = {"http://a:1"},
                                                            .hostName = "Br\xE4vo",
                                                            .connectOnStart = true,
                                                            .announceRanks = false,
                                                            .leftLeaning = 2,
                                                            .reportToMaster = true,
                                                            .antiPadding = false,
                                                            .padMinutes = "12",
                                                            .padPlayers = "three",
                                                            .statsSystem = "Unlisted"};
        QVERIFY(editor.open());
        QCOMPARE(editor.desk.lastRequest("GetProfile"), "GetProfile_admin_VB6_2"_ba);
        QCOMPARE(editor.text(u"txtName"_s), u"Bravo"_s);
        QCOMPARE(editor.entries(), QStringList{u"http://a:1"_s});
        QCOMPARE(editor.text(u"txtSrHost"_s), u"Brävo"_s);
        QCOMPARE(editor.text(u"cboLL"_s), u"Kill!"_s);
        QCOMPARE(editor.text(u"txtPadtime"_s), u"12"_s);
        QCOMPARE(editor.text(u"txtPadnum"_s), u"three"_s);
        QCOMPARE(editor.in<QComboBox>(u"cboStats"_s).itemText(0), noSystem);
        QCOMPARE(editor.text(u"cboStats"_s), u"Unlisted"_s);
        QVERIFY(editor.in<QCheckBox>(u"chkAcs"_s).isChecked() && editor.in<QCheckBox>(u"chkRbm"_s).isChecked());
        QVERIFY(!editor.in<QCheckBox>(u"chkAra"_s).isChecked());

        editor.in<QCheckBox>(u"chkAra"_s).click();
        editor.in<QCheckBox>(u"chkAcs"_s).click();
        editor.in<QComboBox>(u"cboLL"_s).setCurrentIndex(1);
        editor.type(u"txtPadtime"_s, u"7"_s);
        editor.type(u"txtSrHost"_s, u"Zoë"_s);
        editor.desk.control<QTableView>(u"fgProfiles"_s).selectRow(Charlie); // saving goes to what was read
        const practice::ProfileSettings other = editor.desk.tracker.world().profile(3)->settings;
        editor.click(u"cmdModify"_s);
        QCOMPARE(editor.desk.boxes.onlyText(), u"Profile Modified"_s);
        QCOMPARE(editor.kept().hostName, "Zo\xEB"_ba);
        QVERIFY(editor.kept().announceRanks && !editor.kept().connectOnStart && editor.kept().reportToMaster);
        QCOMPARE(editor.kept().leftLeaning, 1);
        QCOMPARE(editor.kept().padMinutes, "7"_ba);
        QCOMPARE(editor.kept().padPlayers, "three"_ba);
        QCOMPARE(editor.kept().statsSystem, "Unlisted"_ba);
        QCOMPARE(editor.desk.tracker.world().profile(3)->settings.hostName, other.hostName);
        QTRY_VERIFY(!editor.window());
        QVERIFY(editor.desk.control(u"qrvrcProfilesList"_s).isVisible());
    }

    void whatIsNotTouchedGoesBackAsItCame()
    {
        Editor editor;
        QVERIFY(editor.desk.logIn());
        editor.desk.clickRow(Bravo);
        editor.desk.tracker.answerNextWith(
            "GetProfile", replyOf({"N", "a||b", "two\nlines", "2", "0", "7", "-1", "0", "many", " ", "", "S", "", ""}));
        QVERIFY(editor.openAgain());
        editor.click(u"cmdModify"_s);
        const QByteArray sent = editor.desk.lastRequest("SetProfile").mid(qstrlen("SetProfile_admin_VB6_2_"));
        QList<QByteArray> fields;
        for (const QByteArray& field : QByteArray::fromBase64(sent).split('_'))
            fields += QByteArray::fromBase64(field);
        QCOMPARE(fields, (QList<QByteArray>{"a||b", "two\nlines", "2", "7", "0", "-1", "0", "many", " ", "S"}));
    }

    void badInputIsNamedBeforeItIsSent_data()
    {
        addColumns<QString, QString, QString>("field", "text", "box");
        const QString players = u"'Minimum number of players' must be a number!"_s;
        const QString minutes = u"'Minimum number of minutes' must be a number!"_s;
        QTest::newRow("letters") << u"txtPadnum"_s << u"4x"_s << players;
        QTest::newRow("nothing") << u"txtPadnum"_s << QString() << players;
        QTest::newRow("negative") << u"txtPadtime"_s << u"-1"_s << minutes;
        QTest::newRow("too large") << u"txtPadtime"_s << u"99999999999"_s << minutes;
        QTest::newRow("foreign") << u"txtSrHost"_s << u"Ω"_s << u"The character 'Ω' cannot be sent to the host!"_s;
        QTest::newRow("no system") << QString() << QString() << u"You have not selected a Stats System!"_s;
    }
    void badInputIsNamedBeforeItIsSent()
    {
        QFETCH(const QString, field);
        QFETCH(const QString, text);
        QFETCH(const QString, box);
        Editor editor;
        QVERIFY(editor.open());
        if (field.isEmpty())
            editor.choose(noSystem);
        else
            editor.type(field, text);
        editor.click(u"cmdModify"_s);
        QCOMPARE(editor.desk.boxes.onlyText(), box);
        QCOMPARE(editor.desk.requestCount("SetProfile"), 0);
        QVERIFY(editor.isShown() && editor.isUsable());
        QCOMPARE(QApplication::focusWidget()->objectName(), field.isEmpty() ? u"cboStats"_s : field);
    }

    void aSaveThatFailsLosesNothing_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QByteArray>("body"); // instead of a fault
        QTest::newRow("cut off") << Fault::cutOffAfter(9) << QByteArray();
        QTest::newRow("never answered") << Fault::never() << QByteArray();
        QTest::newRow("refused") << Fault::none() << "False"_ba;
    }
    void aSaveThatFailsLosesNothing()
    {
        QFETCH(const Fault, fault);
        QFETCH(const QByteArray, body);
        Editor editor;
        Desk& desk = editor.desk;
        QVERIFY(editor.open());
        editor.type(u"txtSrHost"_s, u"Kept"_s);
        if (!body.isEmpty())
            desk.tracker.answerNextWith("SetProfile", body);
        else
            desk.tracker.answerNext("SetProfile", fault);
        if (fault == Fault::never())
            desk.link().replyLimit = 30ms;
        editor.click(u"cmdModify"_s);
        QVERIFY(desk.boxes.count(u"Failed!"_s) >= 1);
        QCOMPARE(desk.boxes.count(u"Success"_s), 0);
        QVERIFY(editor.isUsable());
        QCOMPARE(editor.isShown(), !body.isEmpty()); // a lost link leads to the login window

        desk.link().replyLimit = 60s;
        if (body.isEmpty()) {
            desk.boxes.answer = false;
            QVERIFY(desk.logIn(u"admin"_s));
            desk.clickRow(Bravo);
            QVERIFY(editor.openAgain()); // asks whether to discard what was typed
        }
        QCOMPARE(editor.text(u"txtSrHost"_s), u"Kept"_s);
        editor.click(u"cmdModify"_s);
        QCOMPARE(desk.boxes.count(u"Success"_s), 1);
        QCOMPARE(editor.kept().hostName, "Kept"_ba);
    }

    void openingAnewAsksForWhatWasNotSaved_data()
    {
        addColumns<QString, bool>("changed", "discards");
        QTest::newRow("nothing") << QString() << true;
        QTest::newRow("a field, kept") << u"txtSrHost"_s << false;
        QTest::newRow("a field, discarded") << u"txtSrHost"_s << true;
        QTest::newRow("an address half typed") << u"txtUrl"_s << false;
    }
    void openingAnewAsksForWhatWasNotSaved()
    {
        QFETCH(const QString, changed);
        QFETCH(const bool, discards);
        Editor editor;
        editor.desk.tracker.world().profile(3)->leaveGame();
        QVERIFY(editor.open());
        if (!changed.isEmpty())
            editor.type(changed, u"Typed"_s);
        editor.desk.clickTab(u"tsMain"_s, u"Profile List"_s);
        QVERIFY(editor.desk.settles());
        QVERIFY(!editor.isShown());
        editor.desk.clickRow(Charlie);
        editor.desk.boxes.answer = discards;
        QVERIFY(editor.openAgain());
        QCOMPARE(editor.desk.boxes.count(u"Confirmation Required!"_s), changed.isEmpty() ? 0 : 1);
        QCOMPARE(editor.text(u"txtName"_s), discards ? u"Charlie"_s : u"Bravo"_s);
        if (!discards) {
            QCOMPARE(editor.text(changed), u"Typed"_s);
            editor.click(u"cmdModify"_s); // to the profile that is shown
            QVERIFY(editor.desk.lastRequest("SetProfile").startsWith("SetProfile_admin_VB6_2_"));
        }
    }

    void anotherHostIsNotGivenTheSettingsUnasked()
    {
        Editor editor;
        QVERIFY(editor.open());
        editor.type(u"txtSrHost"_s, u"Typed"_s);
        practice::Tracker elsewhere(practice::World::small());
        QVERIFY(elsewhere.listen());
        editor.desk.tracker.resetLinks();
        QTRY_VERIFY(!editor.isShown());
        editor.desk.boxes.answer = false;
        editor.desk.chooseProfile(u"New Profile"_s);
        editor.desk.typeProfile(u"Elsewhere"_s, u"admin"_s, u"admin"_s, elsewhere.port());
        editor.desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(editor.desk.control(u"qrvrcProfilesList"_s).isVisible());
        QTRY_COMPARE(editor.desk.grid().rowCount(), 3);
        editor.desk.clickRow(Bravo);
        QVERIFY(!editor.openAgain()); // neither discarded nor shown here
        QVERIFY(editor.desk.boxes.onlyText().contains(u"'Bravo' of 127.0.0.1:"_s));
        QVERIFY(editor.desk.control(u"qrvrcProfilesList"_s).isVisible());

        elsewhere.resetLinks();
        QTRY_VERIFY(editor.desk.control(u"qrvrcLogin"_s).isVisible());
        QVERIFY(editor.desk.logIn());
        editor.desk.clickRow(Bravo);
        QVERIFY(editor.openAgain());
        QCOMPARE(editor.text(u"txtSrHost"_s), u"Typed"_s);
        for (const QByteArray& request : elsewhere.requests())
            QVERIFY(!request.startsWith("GetProfile_") && !request.startsWith("SetProfile_"));
    }

    void theProfileIsTheOneThatItWasOpenedFor_data()
    {
        addColumns<int, Fault>("id", "fault");
        QTest::newRow("answered late") << 2 << Fault::none();
        QTest::newRow("news in front") << 2 << Fault::newsFirst();
        QTest::newRow("number 0") << 0 << Fault::none();
    }
    void theProfileIsTheOneThatItWasOpenedFor()
    {
        QFETCH(const int, id);
        QFETCH(const Fault, fault);
        Editor editor;
        Desk& desk = editor.desk;
        desk.tracker.world().profile(2)->id = id;
        QVERIFY(desk.logIn());
        desk.clickRow(Bravo);
        const auto moveOn = [&desk] { desk.control<QTableView>(u"fgProfiles"_s).selectRow(Charlie); };
        desk.tracker.answerNext("GetProfile", fault);
        desk.beforeAnswer("GetProfile", moveOn);
        QVERIFY(editor.openAgain());
        QCOMPARE(editor.text(u"txtName"_s), u"Bravo"_s);
        editor.type(u"txtSrHost"_s, u"Typed"_s);
        desk.tracker.answerNext("SetProfile", fault);
        desk.beforeAnswer("SetProfile", moveOn);
        editor.click(u"cmdModify"_s);
        QCOMPARE(desk.tracker.world().profile(id)->settings.hostName, "Typed"_ba);
        QCOMPARE(desk.tracker.world().profile(3)->settings.hostName, "Charlie"_ba);
    }

    void aReplyThatCannotBeReadIsNeverSaved_data()
    {
        QTest::addColumn<Fault>("fault");
        QTest::addColumn<QString>("name"); // as far as it was read
        QTest::newRow("garbage") << Fault::garbage() << QString();
        QTest::newRow("empty") << Fault::emptyBody() << QString();
        QTest::newRow("garbage in the last element") << Fault::garbageInElement(14) << u"Bravo"_s;
    }
    void aReplyThatCannotBeReadIsNeverSaved()
    {
        QFETCH(const Fault, fault);
        Editor editor;
        QVERIFY(editor.desk.logIn());
        editor.desk.clickRow(Bravo);
        editor.desk.tracker.answerNext("GetProfile", fault);
        QVERIFY(editor.openAgain());
        QTRY_COMPARE(editor.desk.boxes.count(u"QRVRC Error!"_s), 1);
        QCOMPARE(editor.desk.boxes.boxes.size(), 1);
        QTEST(editor.text(u"txtName"_s), "name");
        QVERIFY(!editor.in(u"cmdModify"_s).isEnabled());
        QVERIFY(editor.isUsable());

        editor.click(u"cmdCancel"_s);
        QTRY_VERIFY(!editor.window());
        QVERIFY(editor.desk.settles());
        editor.desk.clickRow(Bravo);
        QVERIFY(editor.openAgain());
        QVERIFY(editor.in(u"cmdModify"_s).isEnabled());
    }
};

QTEST_MAIN(ModifyTest)
#include "ModifyTest.moc"
