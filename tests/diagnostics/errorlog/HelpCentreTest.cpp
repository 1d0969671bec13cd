#include "diagnostics/errorlog/qrvrcHelp.h"

#include "platform/system/FileBytes.h"
#include "practice/web/WebSide.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"
#include "store/ErrorLogText.h"
#include "support/ClientRig.h"
#include "support/Pane.h"

#include <QDialog>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The help centre beside a maker's web host, whose page gets as long as `limit` for each report.
struct Rig : ClientRig
{
    practice::WebSide web;
    QWidget page;
    std::filesystem::path manual;
    std::unique_ptr<qrvrcHelp> help;

    explicit Rig(std::chrono::milliseconds limit = 20s)
    {
        if (!web.listen())
            qFatal("the web host has no port");
        page.resize(757, 440);
        help = std::make_unique<qrvrcHelp>(
            client,
            HelpHooks{.showManual = [this](const std::filesystem::path& file) { manual = file; },
                      .openSupport = [] {},
                      .page = {QUrl(web.base().toString() + u"/quorbeta/ErrorReports.php"_s), limit}},
            &page);
        help->setGeometry(page.rect());
        page.show();
        if (!QTest::qWaitForWindowActive(&page))
            qFatal("the help centre does not come up");
    }

    Pane pane() { return Pane(*help); }
    QWidget& control(const QString& name) { return pane().control(name); }
    void click(const QString& name) { pane().click(name); }
    QString shown()
    {
        const TextPane& log = pane().control<TextPane>(u"txtErrLog"_s);
        return log.characters(0, log.text()->size()).replace(u"\r\n"_s, u"\n"_s);
    }
    void logError(const char* detail)
    {
        store.LogError("QRVV3RC.exe", "HandleData", RuntimeError(ErrorNumber::TypeMismatch, detail), 410);
    }
    std::string file() const { return readBytesIfPresent(folder.path("\\ErrorLog.txt")).value_or("(none)"); }
    bool isDone()
    {
        return QTest::qWaitFor([this] { return !control(u"cmdStopErrors"_s).isVisible(); }, 20'000);
    }
    static QString description(const QByteArray& report)
    {
        return QString::fromLatin1(report).split(u"|*|*|"_s).value(6).section(u": "_s, -1);
    }
};

} // namespace

class HelpCentreTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRowsOpenTheirTools()
    {
        Rig rig;
        rig.help->Form_Activate();
        QCOMPARE(rig.help->helpSection(), u"Help"_s);
        rig.click(u"cmdShowHelp"_s);
        QCOMPARE(rig.manual, rig.folder.path("\\help.chm"));
        rig.click(u"cmdRecovConsole"_s); // unknown here: nothing opens
        QVERIFY(!rig.control(u"fmeErrors"_s).isVisible());
        QTest::mousePress(&rig.control(u"cmdViewErrors"_s), Qt::LeftButton);
        QVERIFY(rig.control(u"fmeErrors"_s).isVisible());
        QVERIFY(!rig.control(u"cmdSendErrors"_s).isEnabled()); // there is no log
        QVERIFY(rig.boxes.boxes.isEmpty());
        rig.click(u"cmdCloseErrors"_s);
        QVERIFY(!rig.control(u"fmeErrors"_s).isVisible());
    }

    void deliveredBlocksLeaveAndTheRefusedOneStays()
    {
        Rig rig;
        for (const char* detail : {"one", "two"})
            rig.logError(detail);
        const std::string log = rig.file();
        rig.click(u"cmdViewErrors"_s);
        QCOMPARE(rig.shown(), QString::fromStdString(log).replace(u"\r\n"_s, u"\n"_s));
        QVERIFY(rig.control(u"cmdSendErrors"_s).isEnabled());
        bool wasDisabled = true;
        QObject::connect(&rig.web, &practice::WebSide::reportReceived, rig.help.get(), [&] {
            wasDisabled = wasDisabled && !rig.control(u"cmdSendErrors"_s).isEnabled();
            rig.web.setReportAnswer("0"); // for the second
        });
        rig.click(u"cmdSendErrors"_s);
        QVERIFY(rig.isDone());
        QVERIFY(wasDisabled);
        QCOMPARE(rig.web.reports().size(), 2);
        for (const QByteArray& report : rig.web.reports()) {
            QVERIFY(report.startsWith("Report="));
            QCOMPARE(report.count("|*|*|"), 14);
        }
        QCOMPARE(rig.web.reportTypes().constFirst(), "application/x-www-form-urlencoded"_ba);
        QCOMPARE(rig.shown().count(u"Error Start"_s), 1);
        QVERIFY(rig.shown().contains(u": two\n"_s));
        QCOMPARE(rig.file(), log);
        QVERIFY(rig.pane().text(u"lblErrLog"_s).startsWith(u"1 report delivered. "_s));

        rig.web.disconnect(rig.help.get());
        rig.web.setReportAnswer("1");
        rig.click(u"cmdSendErrors"_s); // of what is left only
        QVERIFY(rig.isDone());
        QCOMPARE(rig.web.reports().size(), 3);
        QCOMPARE(Rig::description(rig.web.reports().last()), u"two"_s);
        QCOMPARE(rig.shown(), QString());
        QCOMPARE(rig.file(), std::string("(none)"));
        QVERIFY(!rig.control(u"cmdSendErrors"_s).isEnabled());
    }

    void pathsInAnOlderLogStayHere()
    {
        Rig rig;
        ErrorLogBlock block;
        block.description = "bad: " + (rig.folder.root() / "a/b.dll").string();
        appendBytes(rig.folder.path("\\ErrorLog.txt"), formatErrorLogBlock(block));
        rig.click(u"cmdViewErrors"_s);
        rig.click(u"cmdSendErrors"_s);
        QVERIFY(rig.isDone());
        QCOMPARE(Rig::description(rig.web.reports().constFirst()), u"\\a\\b.dll"_s);
    }

    void whatIsLoggedDuringASendIsKept()
    {
        Rig rig;
        rig.logError("one");
        rig.click(u"cmdViewErrors"_s);
        QObject::connect(&rig.web, &practice::WebSide::reportReceived, rig.help.get(), [&] { rig.logError("late"); });
        rig.click(u"cmdSendErrors"_s);
        QVERIFY(rig.isDone());
        QCOMPARE(rig.web.reports().size(), 1);
        QVERIFY(readErrorLogBlock(rig.file()).description.ends_with("late"));
        QCOMPARE(rig.shown(), QString::fromStdString(rig.file()).replace(u"\r\n"_s, u"\n"_s));
        QVERIFY(rig.control(u"cmdSendErrors"_s).isEnabled());
    }

    void aPageThatNeverAnswersIsGivenUp()
    {
        Rig rig(100ms);
        for (const char* detail : {"one", "two", "three"})
            rig.logError(detail);
        const std::string log = rig.file();
        rig.web.setReportsUnanswered(true);
        rig.click(u"cmdViewErrors"_s);
        rig.click(u"cmdSendErrors"_s);
        QVERIFY(rig.isDone());
        QCOMPARE(rig.web.reports().size(), 2);
        QVERIFY(rig.pane().text(u"lblErrLog"_s).contains(u"does not answer"_s));
        QCOMPARE(rig.shown().count(u"Error Start"_s), 3);
        QCOMPARE(rig.file(), log);
        QVERIFY(rig.control(u"cmdSendErrors"_s).isEnabled());
        QVERIFY(rig.boxes.boxes.isEmpty());
    }

    void aSendCanBeEndedInEveryWay_data()
    {
        QTest::addColumn<QString>("button"); // empty for the end of the window
        QTest::newRow("stopped") << u"cmdStopErrors"_s;
        QTest::newRow("panel closed") << u"cmdCloseErrors"_s;
        QTest::newRow("window gone") << QString();
    }
    void aSendCanBeEndedInEveryWay()
    {
        QFETCH(const QString, button);
        Rig rig;
        rig.logError("one");
        const std::string log = rig.file();
        rig.web.setReportsUnanswered(true);
        rig.click(u"cmdViewErrors"_s);
        rig.click(u"cmdSendErrors"_s);
        QTRY_COMPARE(rig.web.reports().size(), 1);
        rig.click(u"cmdViewErrors"_s); // the log under way is not read again
        QVERIFY(!rig.control(u"cmdSendErrors"_s).isEnabled());
        if (button.isEmpty()) {
            rig.help.reset();
        } else {
            rig.click(button);
            QVERIFY(rig.isDone());
            rig.click(u"cmdViewErrors"_s);
            QVERIFY(rig.control(u"cmdSendErrors"_s).isEnabled());
        }
        QCOMPARE(rig.file(), log);
    }

    void clearingEmptiesFileAndPanel()
    {
        Rig rig;
        rig.logError("one");
        rig.click(u"cmdViewErrors"_s);
        rig.click(u"cmdClearErrors"_s);
        QCOMPARE(rig.file(), std::string());
        QCOMPARE(rig.shown(), QString());
        QVERIFY(!rig.control(u"cmdSendErrors"_s).isEnabled());
    }

    void theReportsCanBeReadBeforeTheyGoOut()
    {
        Rig rig;
        rig.logError("caf\xE9");
        appendBytes(rig.folder.path("\\ErrorLog.txt"), "\r\na note");
        rig.logError("two");
        rig.click(u"cmdViewErrors"_s);
        rig.click(u"cmdShowReport"_s);
        auto* preview = rig.page.findChild<QDialog*>(u"qrvrcReportPreview"_s);
        QVERIFY(preview && preview->isVisible() && preview->isModal());
        const Pane report(*preview);
        const QString identity = QString::fromStdString(rig.store.GetUIDStr());
        QVERIFY(report.text(u"txtReport"_s).contains(u"Installation that logged it: "_s + identity));
        QVERIFY(report.text(u"txtReport"_s).contains(u"Type mismatch: café\n"_s));
        QVERIFY(report.text(u"txtReport"_s).contains(u"\nReport=20"_s));
        QVERIFY(report.text(u"lblReport"_s).startsWith(u"Report 1 of 2"_s));
        report.click(u"cmdNext"_s);
        QVERIFY(report.text(u"txtReport"_s).contains(u"Type mismatch: two\n"_s));
        QVERIFY(!report.control(u"cmdNext"_s).isEnabled());
        QVERIFY(rig.web.reports().isEmpty());

        preview->close();
        rig.click(u"cmdSendErrors"_s);
        QVERIFY(rig.isDone());
        QCOMPARE(rig.web.reports().size(), 2);
        QCOMPARE(rig.shown().trimmed(), u"a note"_s);
        QVERIFY(rig.file().find("a note") != std::string::npos);
    }
};

QTEST_MAIN(HelpCentreTest)
#include "HelpCentreTest.moc"
