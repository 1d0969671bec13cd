#include "base/LinedText.h"
#include "practice/Framing.h"
#include "profiles/TextExpander.h"
#include "profiles/qrvrcFileManager.h"
#include "profiles/qrvrcNotePad.h"
#include "support/Desk.h"
#include "ui/Grid.h"
#include "ui/TextPane.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QTest>

using namespace Qt::StringLiterals;
using practice::Fault;

namespace {

const QDate today(2009, 11, 29); // of the small world

/// Logged in, with the remote file viewer of the profile "Alpha" in front.
struct Files
{
    Desk desk;

    bool open()
    {
        if (!desk.logIn())
            return false;
        desk.clickRow(0);
        desk.frame().showWindow(u"qrvrcFileManager"_s);
        setDates(today, today);
        return room() != nullptr;
    }
    qrvrcFileManager* room()
    {
        return static_cast<qrvrcFileManager*>(desk.core().windows.existing(u"qrvrcFileManager"_s));
    }
    GridView& grid() { return desk.control<GridView>(u"mfgFM"_s); }
    QString state() { return desk.control<QLabel>(u"lblState"_s).text(); }
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
        const qsizetype asked = desk.requestCount("GetFileList");
        desk.click(u"cmdGetFiles"_s);
        return QTest::qWaitFor([&] { return desk.requestCount("GetFileList") > asked; }) && desk.settles();
    }
    QStringList row(int at)
    {
        QStringList cells;
        for (int column = 0; column < grid().rows().columnCount(); ++column)
            cells += grid().rows().text(at, column);
        return cells;
    }
    void doubleClick(int at)
    {
        const QPoint place = grid().visualRect(grid().rows().index(at, 1)).center();
        QTest::mouseClick(grid().viewport(), Qt::LeftButton, {}, place); // without it the double click is a click
        QTest::mouseDClick(grid().viewport(), Qt::LeftButton, {}, place);
    }
    /// @param key  instead of a double click
    bool view(int at, std::optional<Qt::Key> key = {})
    {
        const qsizetype asked = desk.requestCount("GetRemFile");
        grid().setFocus();
        grid().selectRow(at);
        if (key)
            QTest::keyClick(&grid(), *key);
        else
            doubleClick(at);
        return QTest::qWaitFor([&] { return desk.requestCount("GetRemFile") > asked; }) && desk.settles();
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
        QVERIFY(files.open());
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

    void datesInTheWrongOrderAreRefused()
    {
        Files files;
        QVERIFY(files.open());
        files.setDates(today, today.addDays(-1));
        files.desk.click(u"cmdGetFiles"_s);
        QCOMPARE(files.desk.boxes.onlyText(), u"The 'Date From' field cannot be greater than the 'Date To' field!"_s);
        QCOMPARE(files.desk.boxes.count(u"Error!"_s), 1);
        QCoreApplication::processEvents();
        QCOMPARE(files.desk.requestCount("GetFileList"), 0);
    }

    void aFileIsShownAsItCame_data()
    {
        QTest::addColumn<QString>("type");
        QTest::addColumn<bool>("byKey");
        QTest::newRow("a log") << u"Chat Logs"_s << false;
        QTest::newRow("lone CR") << u"Status Logs"_s << true;
        QTest::newRow("bytes that are no text") << u"Backup Files"_s << true;
    }
    void aFileIsShownAsItCame()
    {
        QFETCH(const QString, type);
        QFETCH(const bool, byKey);
        Files files;
        QVERIFY(files.open());
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
        QVERIFY(files.open());
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

    void brokenListsAreToldOnce_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("rows");
        QTest::addColumn<int>("boxes");
        QTest::addColumn<QString>("says");
        const QString unread = u"could not be read"_s;
        QTest::newRow("no marker") << "12"_ba << 0 << 1 << unread;
        QTest::newRow("length is no number") << "x[-]Quorvane[-]abc"_ba << 0 << 1 << unread;
        QTest::newRow("length does not fit") << practice::envelope("a|1|2").replace("5[-]", "6[-]") << 0 << 1 << unread;
        QTest::newRow("negative length") << "-5[-]Quorvane[-]abc"_ba << 0 << 1 << unread;
        QTest::newRow("second entry too short") << practice::envelope("a|1|2||b||c|1|2") << 1 << 1 << unread;
        QTest::newRow("no entries") << practice::envelope("||||") << 0 << 0 << u"no files"_s;
        QTest::newRow("empty reply changes nothing") << ""_ba << 2 << 0 << u"no files"_s;
    }
    void brokenListsAreToldOnce()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QString, says);
        Files files;
        QVERIFY(files.open());
        files.setDates(today.addDays(-5), today);
        QVERIFY(files.getFiles());
        QCOMPARE(files.grid().rows().rowCount(), 2);
        files.desk.tracker.answerNextWith("GetFileList", body);
        QVERIFY(files.getFiles());
        QTEST(files.grid().rows().rowCount(), "rows");
        QTEST(static_cast<int>(files.desk.boxes.boxes.size()), "boxes");
        QVERIFY2(files.grid().emptyText().contains(says), qPrintable(files.grid().emptyText()));
        QVERIFY(files.getFiles()); // and it goes on working
        QCOMPARE(files.grid().rows().rowCount(), 2);
    }

    void theLinkIsLostWhileItAsks()
    {
        Files files;
        QVERIFY(files.open());
        QVERIFY(files.getFiles());
        files.desk.tracker.answerNext("GetRemFile", Fault::reset());
        QVERIFY(files.view(0));
        QTRY_VERIFY(!files.room()); // nobody is logged in any more
        QVERIFY(files.desk.control(u"qrvrcLogin"_s).isVisible());
        QVERIFY(!files.text());
        QCOMPARE(files.desk.boxes.boxes.size(), 0);
    }

    void aSilentTrackerIsGivenUp()
    {
        Files files;
        QVERIFY(files.open());
        files.desk.link().replyLimit = std::chrono::milliseconds(50);
        files.desk.tracker.answerNext("GetFileList", Fault::never());
        files.desk.click(u"cmdGetFiles"_s);
        QTRY_VERIFY(!files.room());
        QTRY_COMPARE(files.desk.boxes.count(u"Failed!"_s), 1);
    }

    void anotherWindowTakesItsPlaceWhileItAsks()
    {
        Files files;
        QVERIFY(files.open());
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
        QVERIFY(files.open());
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
