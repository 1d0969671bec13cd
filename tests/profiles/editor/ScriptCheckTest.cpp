#include "profiles/editor/EditorUser.h"

#include "platform/net/Inet.h"
#include "platform/system/CodePage.h"
#include "profiles/editor/ScriptCheck.h"
#include "support/AddRow.h"

#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class ScriptCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void scriptsAreCheckedBeforeTheyJoin_data()
    {
        using Asked = QList<QByteArray>;
        const QByteArray script = "/stats/stats_import.php";
        // boxes: title and beginning of each
        addColumns<QString, QString, QString, bool, QStringList, Asked>("folder", "id", "system", "validates", "boxes",
                                                                        "asked");
        const QString classic = u"Quorvane Classic"_s;
        const QString alpha = u"Quorvane Alpha"_s;
        const QString question = u"Link Validated: The URL you entered is valid and the Quorvane Serverside Scripts "
                                 "were found!\r\n\r\nWould you like to validate the Server ID Code?"_s;
        const QString missing =
            u"Failed!: The URL you entered is valid, but the Quorvane Serverside Scripts were not found!"_s;
        const QString good = u"Success: Server ID Validated Successfully."_s;
        const QString bad = u"Failed!: Server ID Validation Failed!"_s;
        addRow("validated", u"stats"_s, u"7"_s, classic, true, QStringList{question, good},
               Asked{script, script + "?serverid=7&data=TestData"});
        addRow("validated by the request page", u"stats/"_s, u" 7 "_s, alpha, true, QStringList{question, good},
               Asked{"/stats/request.php?Request=Exists", "/stats/request.php?Request=ValidateID&Data=7"});
        addRow("not validated", u"stats"_s, u"no such"_s, u"Please select a Stats System"_s, false,
               QStringList{question}, Asked{script});
        addRow("id unknown", u"stats"_s, u"7&x=é"_s, classic, true, QStringList{question, bad},
               Asked{script, script + "?serverid=7%26x%3D%E9&data=TestData"});
        addRow("id unknown to the request page", u"stats"_s, u"8"_s, alpha, true, QStringList{question, bad},
               Asked{"/stats/request.php?Request=Exists", "/stats/request.php?Request=ValidateID&Data=8"});
        addRow("slow", u"slow"_s, u"7"_s, classic, false, QStringList{question}, Asked{"/slow/stats_import.php"});
        for (const char* folder : {"failing", "empty", "none"})
            addRow(folder, QString::fromLatin1(folder), u"7"_s, classic, true, QStringList{missing},
                   Asked{QByteArray("/") + folder + "/stats_import.php"});
        const auto refused = [&](const char* name, const QString& folder, const QString& id, const QString& said) {
            addRow(name, folder, id, classic, true, QStringList{said}, Asked());
        };
        refused("no id", u"stats"_s, u"  "_s, u"Action Required!: You have not entered a Server ID Code!"_s);
        refused("separator in the id", u"stats"_s, u"7|8"_s,
                u"Action Required!: The Server ID Code must not contain '|'!"_s);
        refused("separator in the address", u"a|b"_s, u"7"_s, u"Error!: The URL you entered is invalid!"_s);
        refused("foreign character", u"stats"_s, u"Ω"_s, u"Failed!: The character 'Ω' cannot be sent to the host!"_s);
    }
    void scriptsAreCheckedBeforeTheyJoin()
    {
        QFETCH(const QString, folder);
        QFETCH(const QString, id);
        QFETCH(const QString, system);
        QFETCH(const bool, validates);
        QFETCH(const QStringList, boxes);
        Editor editor;
        editor.web.scripts().slowness = 50ms;
        QVERIFY(editor.open());
        editor.choose(system);
        editor.desk.boxes.answer = validates;
        const QString typed = editor.web.base().toString() + u'/' + folder;
        editor.add(folder, id);

        QStringList shown;
        for (const RecordingDialogs::Box& box : editor.desk.boxes.boxes)
            shown += box.title + u": "_s + box.text;
        QCOMPARE(shown, boxes);
        QTEST(editor.web.scripts().requests(), "asked");
        const bool isAdded = boxes.constLast().startsWith(validates ? u"Success"_s : u"Link"_s);
        QCOMPARE(editor.entries().size(), isAdded ? 3 : 2);
        QCOMPARE(editor.text(u"txtUrl"_s), isAdded ? u"http://"_s : typed);
        QCOMPARE(editor.text(u"txtServerid"_s), isAdded ? QString() : id);
        if (isAdded)
            QCOMPARE(editor.entries().constLast(),
                     editor.web.base().toString() + u'/' + folder.section(u'/', 0, 0) + u':' + id.trimmed());
        QVERIFY(editor.isUsable());
    }

    void scriptsThatStaySilentAreMissing()
    {
        practice::WebSide web;
        QVERIFY(web.listen());
        Inet inet;
        RecordingDialogs boxes;
        const CodePage codePage;
        ScriptCheck check(inet, boxes, codePage, 100ms);
        const QSignalSpy told(&check, &ScriptCheck::told);
        const std::string address = web.base().toString().toStdString() + "/silent";
        QCOMPARE(check.run({"Quorvane Classic", address, "7"}), ScriptFinding::Missing);
        QVERIFY(!check.isFetching());
        QCOMPARE(told.constLast().constFirst().toString(), u"There was no answer from:"_s);
        QVERIFY(boxes.boxes.isEmpty());
    }

    void aCheckEndsWithItsUser_data()
    {
        QTest::addColumn<QString>("way");
        for (const char* way : {"Stop", "Escape", "Cancel", "another tab", "the link is lost"})
            addRow(way, QString::fromLatin1(way));
    }
    void aCheckEndsWithItsUser()
    {
        QFETCH(const QString, way);
        Editor editor;
        QVERIFY(editor.open());
        bool wasBusy = false;
        QObject::connect(&editor.web.scripts(), &practice::ScriptPages::requested, editor.window(), [&] {
            wasBusy = !editor.in(u"cmdAddurl"_s).isEnabled() && !editor.in(u"cmdModify"_s).isEnabled() &&
                      editor.in(u"pbCheck"_s).isVisible() && editor.window()->cursor().shape() == Qt::BusyCursor &&
                      editor.text(u"lblCheck"_s).startsWith(u"Looking for the scripts:"_s);
            if (way == u"Stop"_s)
                editor.click(u"cmdStopCheck"_s);
            else if (way == u"Escape"_s)
                QTest::keyClick(QApplication::focusWidget(), Qt::Key_Escape);
            else if (way == u"Cancel"_s)
                editor.click(u"cmdCancel"_s);
            else if (way == u"another tab"_s)
                editor.desk.clickTab(u"tsMain"_s, u"Options"_s);
            else
                editor.desk.tracker.resetLinks();
        });
        editor.add(u"silent"_s, u"7"_s);
        QVERIFY(wasBusy);
        QCOMPARE(editor.desk.boxes.count(u"Failed!"_s) + editor.desk.boxes.count(u"Link Validated"_s), 0);
        if (way == u"Cancel"_s) {
            QTRY_VERIFY(!editor.window());
            return;
        }
        QCOMPARE(editor.text(u"txtServerid"_s), u"7"_s);
        QVERIFY(editor.isUsable());
        QCOMPARE(editor.isShown(), way == u"Stop"_s || way == u"Escape"_s);
    }

    void entriesAreRemoved_data()
    {
        QTest::addColumn<bool>("byKey");
        addRow("Delete", true);
        addRow("menu", false);
    }
    void entriesAreRemoved()
    {
        QFETCH(const bool, byKey);
        Editor editor;
        QVERIFY(editor.open());
        auto& list = editor.in<QListWidget>(u"lstUrls"_s);
        QVERIFY(!editor.in<QAction>(u"mnuRemove"_s).isEnabled());
        QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(0)).center());
        if (byKey)
            QTest::keyClick(&list, Qt::Key_Delete);
        else
            editor.in<QAction>(u"mnuRemove"_s).trigger();
        QCOMPARE(editor.entries(), QStringList{u"http://b:2"_s});
        editor.click(u"cmdModify"_s);
        QCOMPARE(editor.kept().scripts, QList<QByteArray>{"http://b:2"});
    }
};

QTEST_MAIN(ScriptCheckTest)
#include "ScriptCheckTest.moc"
