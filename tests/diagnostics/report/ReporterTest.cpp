#include "app/ClientCore.h"
#include "link/InterfaceLock.h"
#include "platform/system/FileBytes.h"
#include "practice/web/WebSide.h"
#include "support/RecordingDialogs.h"

#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// The reporter with the program's own log and post, beside a maker's web host on loopback.
struct Rig : LockableInterface
{
    QTemporaryDir directory;
    practice::WebSide web;
    RecordingDialogs boxes;
    std::unique_ptr<ClientCore> core;
    RuntimeError error{ErrorNumber::ObjectNotSet};

    Rig()
    {
        if (!web.listen())
            qFatal("the web host has no port");
        core = std::make_unique<ClientCore>(
            Setup{.folder = directory.path().toStdU16String(), .makerHost = web.base(), .version = "3.0.1.17"}, boxes,
            *this, ClientCore::HelpOpener());
    }
    void lockInterface() override {}
    void unlockInterface() override {}

    Reporter& reporter() { return core->reporter; }
    QByteArray log() const
    {
        return QByteArray::fromStdString(readBytesIfPresent(core->folder.path("\\ErrorLog.txt")).value_or(""));
    }
};

} // namespace

class ReporterTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anUnknownKindLogsItsErrorAndShowsNothing()
    {
        Rig rig;
        rig.reporter().ReportMsg(MessageKind(7), u"Sub"_s, &rig.error, 3);
        QVERIFY(rig.boxes.boxes.isEmpty());
        QVERIFY(rig.log().contains("Error No.: 91\r\n"));
    }

    void aTrappedErrorIsLoggedReportedAndShown()
    {
        Rig rig;
        rig.reporter().ReportMsg(MessageKind::Trapped, u"HandleData"_s, &rig.error, 410);
        const QString description = QString::fromStdString(rig.error.description());
        QCOMPARE(rig.boxes.onlyText(),
                 u"Error Line: 410\r\nError 91: %1\r\nFunction/Sub: HandleData"_s.arg(description));
        QCOMPARE(rig.boxes.boxes.constFirst().title, u"QRVRC Error!"_s);

        const QByteArray log = rig.log();
        for (const char* line :
             {"File: QRVV3RC.exe\r\n", "Function: HandleData\r\n", "Error Line: 410\r\n", "Error No.: 91\r\n"})
            QVERIFY2(log.contains(line), line);
        QCOMPARE(log.count("Function: "), 1);

        QTRY_COMPARE(rig.boxes.deliveries, QList{true});
        QCOMPARE(rig.web.reports().size(), 1);
    }

    void onlyAOneFromThePageIsADelivery_data()
    {
        QTest::addColumn<QByteArray>("answer");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("delivered");
        QTest::newRow("one") << "1"_ba << 200 << true;
        QTest::newRow("one among others") << "11"_ba << 200 << false;
        QTest::newRow("zero") << "0"_ba << 200 << false;
        QTest::newRow("nothing") << ""_ba << 200 << false;
        QTest::newRow("a page") << "<html>1</html>"_ba << 200 << false;
        QTest::newRow("a one with a failure") << "1"_ba << 500 << false;
        QTest::newRow("no such page") << "1"_ba << 404 << false;
    }
    void onlyAOneFromThePageIsADelivery()
    {
        QFETCH(const QByteArray, answer);
        QFETCH(const int, status);
        QFETCH(const bool, delivered);
        Rig rig;
        rig.web.setReportAnswer(answer, status);
        rig.reporter().ReportMsg(MessageKind::Trapped, u"x"_s, &rig.error, 1);
        QTRY_COMPARE(rig.boxes.deliveries, QList{delivered});
    }

    void aPageThatDoesNotAnswerHoldsNobodyUp()
    {
        Rig rig;
        rig.web.setReportsUnanswered(true);
        const QSignalSpy taken(&rig.web, &practice::WebSide::reportReceived);
        rig.reporter().ReportMsg(MessageKind::Trapped, u"x"_s, &rig.error, 1);
        QCOMPARE(rig.boxes.boxes.size(), 1); // back already
        QTRY_COMPARE(taken.count(), 1);
        QVERIFY(rig.boxes.deliveries.isEmpty());
        rig.core.reset(); // a program that ends first is not called back
        QVERIFY(rig.boxes.deliveries.isEmpty());
    }

    void aLogThatCannotBeWrittenStillShowsTheError()
    {
        Rig rig;
        std::filesystem::create_directory(rig.core->folder.path("\\ErrorLog.txt"));
        rig.reporter().ReportMsg(MessageKind::Trapped, u"HandleData"_s, &rig.error, 410);
        QVERIFY(rig.boxes.onlyText().startsWith(u"Error Line: 410\r\nError 91: "_s));
        QCOMPARE(rig.boxes.boxes.constFirst().title, u"QRVRC"_s);
    }
};

QTEST_MAIN(ReporterTest)
#include "ReporterTest.moc"
