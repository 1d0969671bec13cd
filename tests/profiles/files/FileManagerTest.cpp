#include "practice/links/Framing.h"
#include "profiles/files/qrvrcFileManager.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextExpander.h"
#include "profiles/viewer/TextPane.h"
#include "profiles/viewer/qrvrcNotePad.h"
#include "support/AddRow.h"
#include "support/Desk.h"
#include "ui/Grid.h"

#include <QAction>
#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QTableView>

using namespace Qt::StringLiterals;
using practice::Fault;

namespace {

const QDate today(2009, 11, 29); // of the small world

/// Logged in, with the remote file viewer of the profile "Alpha" in front.
struct Files
{
    Desk desk;

    Files()
    {
        if (!desk.logIn())
            qFatal("the profile list is not reached");
        desk.clickRow(0);
        desk.control<QAction>(u"mnuFileManager"_s).trigger();
        if (!QTest::qWaitFor([this] { return room() != nullptr; }))
            qFatal("the viewer does not open");
        setDates(today, today);
    }
    qrvrcFileManager* room()
    {
        return static_cast<qrvrcFileManager*>(desk.core().windows.existing(u"qrvrcFileManager"_s));
    }
    GridView& grid() { return desk.control<GridView>(u"mfgFM"_s); }
    QString state() { return desk.text(u"lblState"_s); }
    TextPane* text()
    {
        QWidget* pad = desk.core().windows.existing(u"qrvrcNotePad"_s);
        return pad ? pad->findChild<TextPane*>(u"Text1"_s) : nullptr;
    }
    std::string shown() { return text() ? text()->text()->bytes() : std::string(); }

    void setDates(const QDate& from, const QDate& to)
    {
        desk.control<QDateEdit>(u"dtpFrom"_s).setDate(from);
        desk.control<QDateEdit>(u"dtpTo"_s).setDate(to);
    }
    void choose(const QString& type) { desk.control<QComboBox>(u"cboFileType"_s).setCurrentText(type); }
    /// Presses the button and waits for the answer.
    bool getFiles()
    {
        return desk.answered("GetFileList", [this] { desk.click(u"cmdGetFiles"_s); });
    }
    QStringList row(int at) { return desk.in(u"qrvrcFileManager"_s).cells(u"mfgFM"_s, at); }
    void doubleClick(int at)
    {
        const QPoint place = grid().visualRect(grid().rows().index(at, 1)).center();
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, place); // without it the double click is a click
        QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, place);
    }
    /// @param key  instead of a double click
    bool view(int at, std::optional<Qt::Key> key = {})
    {
        grid().setFocus();
        grid().selectRow(at);
        return desk.answered("GetRemFile", [&] { key ? QTest::keyClick(&grid(), *key) : doubleClick(at); });
    }
};

} // namespace

class FileManagerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesAreListedByTypeAndDate()
    {
        Files files;
        QCOMPARE(files.desk.control<QComboBox>(u"cboFileType"_s).currentText(), u"Admin Logs"_s);
        QVERIFY(files.grid().emptyText().contains(u"Get Files"_s));
        QVERIFY(files.getFiles());
        QCOMPARE(files.desk.lastRequest("GetFileList"), "GetFileList_admin_VB6_1|Admin Logs|29/11/2009|29/11/2009"_ba);
        QCOMPARE(files.grid().rows().rowCount(), 1);
        files.setDates(today.addDays(-5), today);
        QVERIFY(files.getFiles());
        QCOMPARE(files.grid().rows().rowCount(), 2);
        QCOMPARE(files.row(1).mid(0, 4),
                 (QStringList{u"2"_s, u"admin-20091129.txt"_s, u"29/11/2009"_s, u"Text Document"_s}));
        files.choose(u"Backup Files"_s);
        QCOMPARE(files.grid().rows().rowCount(), 0);
        QVERIFY(files.getFiles());
        QCOMPARE(files.row(1).mid(0, 5),
                 (QStringList{u"2"_s, u"backup-20091129.bma"_s, u"Coop"_s, u"29/11/2009"_s, u"Archived File"_s}));
        files.setDates(today.addDays(1), today.addDays(1));
        QVERIFY(files.getFiles());
        QCOMPARE(files.grid().rows().rowCount(), 0);
        QVERIFY(files.grid().emptyText().contains(u"no files"_s));
    }

    void aListIsOneOfWhatIsChosenStill_data()
    {
        // first: of the files; empty when there are none
        addColumns<QString, QString, QString>("meanwhile", "first", "state");
        const QString log = u"admin-20091129.txt"_s;
        const QString changed = u"The type or the dates were changed meanwhile. Get Files asks again."_s;
        QTest::newRow("nothing") << QString() << log << QString();
        QTest::newRow("news") << QString() << log << QString();
        QTest::newRow("another profile") << QString() << log << QString();
        QTest::newRow("another type") << u"Backup Files"_s << QString() << changed;
        QTest::newRow("another type and back") << u"Backup Files, Admin Logs"_s << QString() << changed;
        QTest::newRow("another day") << u"day"_s << QString() << changed;
        QTest::newRow("another type is asked for") << u"Backup Files, ask"_s << u"backup-20091129.bma"_s << QString();
        QTest::newRow("the same is asked for") << u"ask"_s << log << QString();
    }
    void aListIsOneOfWhatIsChosenStill()
    {
        QFETCH(const QString, meanwhile);
        QFETCH(const QString, first);
        QFETCH(const QString, state);
        Files files;
        const QByteArray variant = QTest::currentDataTag();
        QCOMPARE(files.desk.in(u"qrvrcFileManager"_s).text(u"lblTitle"_s), u"Files of Alpha"_s);
        if (variant == "news")
            files.desk.tracker.answerNext("GetFileList", Fault::newsFirst());
        files.desk.beforeAnswer("GetFileList", [&] {
            if (variant == "another profile")
                files.desk.control<QTableView>(u"fgProfiles"_s).selectRow(2);
            for (const QString& step : meanwhile.split(u", "_s, Qt::SkipEmptyParts)) {
                if (step == u"ask"_s)
                    files.desk.click(u"cmdGetFiles"_s);
                else if (step == u"day"_s)
                    files.setDates(today.addDays(-1), today);
                else
                    files.choose(step);
            }
        });
        files.desk.click(u"cmdGetFiles"_s);
        QTRY_VERIFY(files.desk.requestCount("GetFileList") > 0);
        QTRY_COMPARE(files.state(), state);
        QTRY_COMPARE(files.grid().rows().rowCount() > 0 ? files.row(0).at(1) : QString(), first);
        QVERIFY(files.desk.settles());
        QVERIFY(files.desk.lastRequest("GetFileList").startsWith("GetFileList_admin_VB6_1|"));
        QCOMPARE(files.desk.requestCount("GetFileList"), variant == "another type is asked for" ? 2 : 1);
    }

    void datesInTheWrongOrderAreRefused()
    {
        Files files;
        files.setDates(today, today.addDays(-1));
        files.desk.click(u"cmdGetFiles"_s);
        QCOMPARE(files.desk.boxes.onlyText(), u"The 'Date From' field cannot be greater than the 'Date To' field!"_s);
        QCOMPARE(files.desk.boxes.count(u"Error!"_s), 1);
        QCoreApplication::processEvents();
        QCOMPARE(files.desk.requestCount("GetFileList"), 0);
    }

    void aFileIsShownAsItCame_data()
    {
        addColumns<QString, bool>("type", "byKey");
        QTest::newRow("a log") << u"Chat Logs"_s << false;
        for (const QString& type : {u"Server Message Logs"_s, u"Player Logs"_s, u"Import Logs"_s})
            QTest::addRow("%s", qPrintable(type)) << type << false;
        QTest::newRow("lone CR") << u"Status Logs"_s << true;
        QTest::newRow("bytes that are no text") << u"Backup Files"_s << true;
    }
    void aFileIsShownAsItCame()
    {
        QFETCH(const QString, type);
        QFETCH(const bool, byKey);
        Files files;
        files.choose(type);
        QVERIFY(files.getFiles());
        QVERIFY(files.view(0, byKey ? std::optional(Qt::Key_Return) : std::nullopt));
        std::string content;
        for (const practice::LogFile& file : files.desk.tracker.world().files) {
            if (file.profile == 1 && file.type == type.toLatin1() && file.date == today)
                content = file.content.toStdString();
        }
        QVERIFY(!content.empty());
        QVERIFY(files.shown() == content);
        QVERIFY(files.text()->window()->isVisible());
        QVERIFY(files.room()); // the viewer in front does not close it
        QCOMPARE(files.desk.boxes.boxes.size(), 0);
    }

    void aFileIsTheOneThatWasClicked()
    {
        Files files;
        files.setDates(today.addDays(-5), today);
        QVERIFY(files.getFiles());
        files.doubleClick(1);
        files.choose(u"Chat Logs"_s); // its rows go before the request does
        QTRY_COMPARE(files.desk.requestCount("GetRemFile"), 1);
        QCOMPARE(files.desk.lastRequest("GetRemFile"),
                 "GetRemFile_admin_VB6_1|" + QByteArray("\\adminlogs\\admin-20091129.txt").toBase64());
        QVERIFY(files.desk.settles());
    }

    void aLargeFileIsExpandedBesideTheWindow_data()
    {
        QTest::addColumn<bool>("damaged");
        QTest::newRow("whole") << false;
        QTest::newRow("damaged") << true;
    }
    void aLargeFileIsExpandedBesideTheWindow()
    {
        QFETCH(const bool, damaged);
        Files files;
        QVERIFY(files.getFiles());
        QVERIFY(files.view(0));
        const std::string before = files.shown();
        const QByteArray content(TextExpander::maxDirectBytes + 1, 'x');
        QByteArray body = practice::envelope(content);
        if (damaged)
            body.chop(20);
        files.desk.tracker.answerNextWith("GetRemFile", body);
        QVERIFY(files.view(0));
        if (damaged) {
            QTRY_COMPARE(files.desk.boxes.boxes.size(), 1);
            QVERIFY(files.desk.boxes.boxes[0].text.contains(u"HandleData"_s));
            QVERIFY(files.shown() == before);
        } else {
            QTRY_VERIFY(files.shown() == content.toStdString());
            QCOMPARE(files.desk.boxes.boxes.size(), 0);
        }
    }

    void aLongListIsReadBesideTheWindow_data()
    {
        addColumns<QString, int>("meanwhile", "rows");
        QTest::newRow("nothing") << QString() << 6000;
        QTest::newRow("another type") << u"Backup Files"_s << 0;
    }
    void aLongListIsReadBesideTheWindow()
    {
        QFETCH(const QString, meanwhile);
        QFETCH(const int, rows);
        Files files;
        files.desk.tracker.answerNextWith("GetFileList",
                                          practice::envelope(QByteArray("a.txt|29/11|1||").repeated(6000)));
        // The type changes in the turn of the answer, before any result can be taken.
        const auto once = connect(&files.desk.link(), &clsWinSock::replyHandled, this, [&] {
            if (!meanwhile.isEmpty())
                files.choose(meanwhile);
        });
        QVERIFY(files.getFiles());
        disconnect(once);
        QTRY_VERIFY(!files.state().contains(u"Reading"_s));
        QCOMPARE(files.grid().rows().rowCount(), rows);
        QCOMPARE(files.state().contains(u"changed meanwhile"_s), rows == 0);
        QVERIFY(!files.desk.control(u"lblCut"_s).isVisible());
    }

    void brokenListsAreToldOnce_data()
    {
        addColumns<QByteArray, int, int, QString>("body", "rows", "boxes", "says");
        const QString unread = u"could not be read"_s;
        QTest::newRow("no marker") << "12"_ba << 0 << 1 << unread;
        QTest::newRow("length does not fit") << practice::envelope("a|1|2").replace("5[-]", "6[-]") << 0 << 1 << unread;
        QTest::newRow("second entry too short") << practice::envelope("a|1|2||b||c|1|2") << 1 << 1 << unread;
        QTest::newRow("no entries") << practice::envelope("||||") << 0 << 0 << u"no files"_s;
        QTest::newRow("empty reply changes nothing") << ""_ba << 2 << 0 << u"no files"_s;
    }
    void brokenListsAreToldOnce()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QString, says);
        Files files;
        files.setDates(today.addDays(-5), today);
        QVERIFY(files.getFiles());
        QCOMPARE(files.grid().rows().rowCount(), 2);
        files.desk.tracker.answerNextWith("GetFileList", body);
        QVERIFY(files.getFiles());
        QTEST(files.grid().rows().rowCount(), "rows");
        QFETCH(const int, boxes);
        QTRY_COMPARE(files.desk.boxes.boxes.size(), boxes);
        QVERIFY2(files.grid().emptyText().contains(says), qPrintable(files.grid().emptyText()));
        QVERIFY(files.getFiles()); // and it goes on working
        QCOMPARE(files.grid().rows().rowCount(), 2);
    }

    void theLinkIsLostWhileItAsks()
    {
        Files files;
        QVERIFY(files.getFiles());
        files.desk.tracker.answerNext("GetRemFile", Fault::reset());
        QVERIFY(files.view(0));
        QTRY_VERIFY(!files.room()); // nobody is logged in any more
        QVERIFY(files.desk.control(u"qrvrcLogin"_s).isVisible());
        QVERIFY(!files.text());
        QCOMPARE(files.desk.boxes.boxes.size(), 0);
    }

    void anotherWindowTakesItsPlaceWhileItAsks()
    {
        Files files;
        files.desk.tracker.answerNext("GetFileList", Fault::late(std::chrono::milliseconds(50)));
        files.desk.click(u"cmdGetFiles"_s);
        QTRY_COMPARE(files.desk.requestCount("GetFileList"), 1);
        files.desk.clickTab(u"tsMain"_s, u"Profile List"_s);
        QVERIFY(!files.room());
        QVERIFY(files.desk.settles());
        QTRY_COMPARE(files.desk.grid().rowCount(), 3);
        QCOMPARE(files.desk.boxes.boxes.size(), 0);
    }

    void namesOfTheHostAreData()
    {
        Files files;
        files.choose(u"Player Logs"_s);
        files.desk.tracker.answerNextWith("GetFileList", practice::envelope("..\\..\\x<b>.txt|29/11/2009|1 KB"));
        QVERIFY(files.getFiles());
        QCOMPARE(files.row(0).at(1), u"..\\..\\x<b>.txt"_s);
        files.desk.tracker.answerNextWith("GetRemFile", practice::envelope("content"));
        QVERIFY(files.view(0));
        QCOMPARE(files.desk.lastRequest("GetRemFile"),
                 "GetRemFile_admin_VB6_1|" + QByteArray("\\misclogs\\..\\..\\x<b>.txt").toBase64());
        QVERIFY(files.shown() == "content");
    }
};

QTEST_MAIN(FileManagerTest)
#include "FileManagerTest.moc"
