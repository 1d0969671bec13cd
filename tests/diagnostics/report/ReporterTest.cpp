#include "app/ClientCore.h"
#include "diagnostics/report/TrappedError.h"
#include "link/InterfaceLock.h"
#include "platform/system/FileBytes.h"
#include "practice/web/WebSide.h"
#include "support/AddRow.h"
#include "support/RecordingDialogs.h"

#include <QSignalSpy>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// The reporter with the program's own log and post, beside a maker's web host on loopback.
struct Rig : LockableInterface
{
    QTemporaryDir directory;
    practice::WebSide web;
    RecordingDialogs boxes;
    std::unique_ptr<ClientCore> core;
    RuntimeError error{ErrorNumber::ObjectNotSet};

    explicit Rig(const Bounds& bounds = {})
    {
        if (!web.listen())
            qFatal("the web host has no port");
        core = std::make_unique<ClientCore>(Setup{.folder = directory.path().toStdU16String(),
                                                  .makerHost = web.base(),
                                                  .version = "3.0.1.17",
                                                  .bounds = bounds},
                                            boxes, *this, ClientCore::HelpOpener());
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
        addColumns<QByteArray, int, bool>("answer", "status", "delivered");
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

    void howManyAndHowOften_data()
    {
        // different: errors, while a box is open
        // times: of each
        addColumns<int, int, int, int>("different", "times", "boxes", "reports");
        QTest::newRow("equal ones") << 1 << 100 << 1 << 1;
        QTest::newRow("all reports of a minute") << 5 << 3 << 5 << 5;
        QTest::newRow("one report more") << 6 << 1 << 6 << 5;
        QTest::newRow("a full line") << 9 << 2 << 9 << 5;
        QTest::newRow("one box more, and the sum") << 10 << 1 << 10 << 5;
        QTest::newRow("far too many") << 500 << 2 << 10 << 5;
    }
    void howManyAndHowOften()
    {
        QFETCH(const int, different);
        QFETCH(const int, times);
        Rig rig;
        int depth = 0;
        rig.boxes.whileOpen = [&] {
            QCOMPARE(++depth, 1);
            if (rig.boxes.boxes.size() == 1) {
                for (int count = 1; count < times * different; ++count)
                    rig.reporter().ReportMsg(MessageKind::Trapped, u"P%1"_s.arg(count % different), &rig.error, 1);
                if (different <= 9)
                    QCOMPARE(rig.boxes.trapped.constFirst()->outcome().startsWith(u"%1 times\r\n"_s.arg(times)),
                             times > 1);
            }
            --depth;
        };
        rig.reporter().ReportMsg(MessageKind::Trapped, u"P0"_s, &rig.error, 1);
        QTEST(static_cast<int>(rig.boxes.boxes.size()), "boxes");
        QCOMPARE(rig.log().count("Function: "), different);
        QFETCH(const int, reports);
        QTRY_COMPARE(rig.boxes.deliveries.size(), reports);
        QCOMPARE(rig.web.reports().size(), reports);
    }

    void equalErrorsAreLoggedAgainWithTheirNumberWhenTheTimeIsOver()
    {
        const Bounds bounds;
        ErrorBrake brake(bounds);
        const ErrorKey error{"HandleData", 13, "x"};
        const ErrorBrake::Time start;
        const auto at = [&](std::chrono::seconds later) { return brake.admitError(error, start + later); };
        using Count = std::optional<std::size_t>;
        QCOMPARE(at(0s), Count(0));
        QCOMPARE(at(1s), Count());
        QCOMPARE(at(599s), Count());
        QCOMPARE(at(600s), Count(2));
        QCOMPARE(at(601s), Count());
        QCOMPARE(brake.admitError({"HandleData", 13, "y"}, start), Count(0));
        for (int report = 0; report < 5; ++report)
            brake.admitReport(start);
        QCOMPARE(brake.admitReport(start + 59s), Count());
        QCOMPARE(brake.admitReport(start + 60s), Count(1));
    }

    void reportsGoOutAsTheUserWants()
    {
        Rig rig;
        rig.reporter().reports = ReportMode::Never;
        rig.reporter().ReportMsg(MessageKind::Trapped, u"never"_s, &rig.error, 1);
        rig.reporter().reports = ReportMode::AskedFor;
        rig.reporter().ReportMsg(MessageKind::Trapped, u"asked"_s, &rig.error, 1);
        QCOMPARE(rig.log().count("Function: "), 2);
        rig.boxes.trapped.last()->sendOffered();
        QTRY_COMPARE(rig.boxes.deliveries, QList{true});
        QCOMPARE(rig.web.reports().size(), 1);
        QVERIFY(rig.web.reports().constFirst().contains("|*|*|asked|*|*|"));
    }

    void messagesThatAreHeldComeBehind()
    {
        Rig rig;
        {
            const BoxHold held(rig.core->boxes);
            rig.reporter().ReportMsg(MessageKind::Failed, u"one"_s);
            for (int time = 0; time < 1000; ++time)
                rig.reporter().ReportMsg(MessageKind::Failed, u"two"_s);
            rig.reporter().ReportMsg(MessageKind::Success, u"two"_s);
            QVERIFY(rig.boxes.boxes.isEmpty());
        }
        QTRY_COMPARE(rig.boxes.boxes.size(), 3);
        QCOMPARE(rig.boxes.boxes.constFirst().text, u"one"_s);
        QCOMPARE(rig.boxes.boxes[1].text, u"two\r\n\r\n1000 times"_s);
        QCOMPARE(rig.boxes.boxes.constLast().text, u"two"_s);
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
