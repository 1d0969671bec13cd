#include "app/Leftovers.h"
#include "app/ShippedFiles.h"
#include "link/Ask.h"
#include "link/Request.h"
#include "platform/system/FileBytes.h"
#include "support/AddRow.h"
#include "support/Desk.h"

#include <QLabel>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

constexpr QSize frameSize(760, 495); // 11400 by 7425 twips

} // namespace

class FrameTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFrameKeepsItsSize()
    {
        Desk desk;
        QVERIFY(desk.open());
        QCOMPARE(desk.frame().size(), frameSize);
        desk.frame().resize(1000, 900);
        QCOMPARE(desk.frame().size(), frameSize);
        desk.frame().showMaximized();
        QTRY_VERIFY(!desk.frame().isMaximized());
        QTRY_COMPARE(desk.frame().size(), frameSize);
        desk.frame().showMinimized(); // left alone
        QTRY_VERIFY(desk.frame().isMinimized());
        QVERIFY(!desk.frame().windowFlags().testFlag(Qt::WindowMaximizeButtonHint));
    }

    void noToTheQuestionKeepsTheProgramRunning()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        auto& poll = desk.control<QTimer>(u"Timer1"_s);
        bool polledMeanwhile = true;
        desk.boxes.answer = false;
        desk.boxes.whileOpen = [&] { polledMeanwhile = poll.isActive(); };
        QVERIFY(!desk.frame().close());
        const RecordingDialogs::Box question{u"Quit"_s, u"Are you sure you want to quit?"_s};
        QVERIFY(desk.boxes.boxes == QList{question});
        QVERIFY(!polledMeanwhile);
        QVERIFY(poll.isActive());
        QVERIFY(desk.frame().isVisible());
        QVERIFY(!desk.core().quitting);
        QVERIFY(desk.link().isConnected());
    }

    void yesEndsTheWaitsAndSilencesTheReporter()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        desk.link().replyLimit = 10min;
        desk.tracker.answerAll(Fault::never());
        connect(
            &desk.tracker, &practice::Tracker::requestReceived, &desk.tracker, [&] { desk.frame().close(); },
            Qt::QueuedConnection);
        QCOMPARE(ask(desk.link(), getStatusRequest("admin")), WaitEnd::Broken);
        QVERIFY(desk.core().quitting);
        QVERIFY(!desk.frame().isVisible());
        QCOMPARE(desk.boxes.boxes.size(), 1); // the question
        desk.core().reporter.ReportMsg(MessageKind::Failed, u"x"_s);
        QVERIFY(!desk.core().reporter.trap("x", [] { throw RuntimeError(ErrorNumber::Overflow); }));
        QCOMPARE(desk.boxes.boxes.size(), 1);
        QVERIFY(!desk.exists("\\ErrorLog.txt"));
        desk.frame().close(); // asks nobody again
        QCOMPARE(desk.boxes.boxes.size(), 1);
    }

    void undoingAnUpdateAsksNoSecondTime()
    {
        Desk desk;
        QVERIFY(desk.open());
        desk.boxes.answer = false;
        QVERIFY(!desk.core().updates.undoUpdate() && !desk.core().quitting); // there is no updater
        desk.put("\\QRVV3Updater.exe", "#!/bin/sh\n");
        std::filesystem::permissions(desk.path("\\QRVV3Updater.exe"), std::filesystem::perms::owner_all);
        QVERIFY(desk.core().updates.undoUpdate());
        QVERIFY(desk.core().quitting && !desk.frame().isVisible() && desk.boxes.boxes.isEmpty());
    }

    void theQuestionMayComeTwiceAtOnce()
    {
        Desk desk;
        QVERIFY(desk.open());
        int depth = 0;
        desk.boxes.whileOpen = [&] {
            if (++depth == 1)
                desk.frame().close(); // a second close request while the first question is open
        };
        desk.frame().close();
        QVERIFY(desk.core().quitting);
        QVERIFY(!desk.frame().isVisible());
    }

    void anUpdaterThatDoesNotReportBackLocksNobodyOut()
    {
        Desk desk;
        for (const char* file : {"\\Updates\\updates.ini", "\\Updates\\new.dll", "\\QRVV3Updater.exe"})
            desk.put(file, "#!/bin/sh\n");
        std::filesystem::permissions(desk.path("\\QRVV3Updater.exe"), std::filesystem::perms::owner_all);
        QVERIFY(!desk.open()); // handed over
        for (const qsizetype told : {1, 1}) {
            QVERIFY(desk.open());
            QCOMPARE(desk.boxes.boxes.size(), told);
            QVERIFY(desk.boxes.boxes[0].text.contains(u"'QRVV3Updater.exe', which was started for it, has not"_s));
            QVERIFY(desk.exists("\\Updates\\new.dll"));
        }
    }

    void leftoversAreSwept()
    {
        const Desk desk;
        for (const char* file :
             {"\\.a.dll.download", "\\Plugins\\.b.123.tmp", "\\c.tmp", "\\.profiles", "\\Updates\\d.download"})
            desk.put(file, "x");
        sweepLeftovers(desk.path("\\"));
        QVERIFY(!desk.exists("\\.a.dll.download") && !desk.exists("\\Plugins\\.b.123.tmp"));
        QVERIFY(desk.exists("\\c.tmp") && desk.exists("\\.profiles") && desk.exists("\\Updates\\d.download"));
    }

    void waitingUpdatesAreHandedOver_data()
    {
        addColumns<QStringList, bool, bool, bool, int>("files", "updater", "goesOn", "folderStays", "boxes");
        const QString plan = u"updates.ini"_s;
        QTest::newRow("no file") << QStringList() << true << true << false << 0;
        QTest::newRow("the list of updates alone") << QStringList{plan} << true << true << false << 0;
        QTest::newRow("one other file") << QStringList{u"part.dll"_s} << true << true << false << 0;
        QTest::newRow("two files") << QStringList{plan, u"new.dll"_s} << true << false << true << 0;
        QTest::newRow("two files, no updater") << QStringList{plan, u"new.dll"_s} << false << true << true << 1;
    }
    void waitingUpdatesAreHandedOver()
    {
        QFETCH(const QStringList, files);
        QFETCH(const bool, updater);
        QFETCH(const bool, goesOn);
        Desk desk;
        std::filesystem::create_directory(desk.path("\\Updates"));
        for (const QString& file : files)
            desk.put(("\\Updates\\" + file.toStdString()).c_str(), "x");
        if (updater) {
            desk.put("\\QRVV3Updater.exe", "#!/bin/sh\npwd > told.tmp && mv told.tmp told\n");
            std::filesystem::permissions(desk.path("\\QRVV3Updater.exe"), std::filesystem::perms::owner_all);
        }
        QCOMPARE(desk.open(), goesOn);
        QTEST(desk.exists("\\Updates"), "folderStays");
        QTEST(int(desk.boxes.boxes.size()), "boxes");
        if (goesOn) {
            QVERIFY(desk.control(u"qrvrcLogin"_s).isVisible());
            QVERIFY(!desk.exists("\\told"));
        } else {
            QTRY_VERIFY(desk.exists("\\told"));
            QCOMPARE(QString::fromLocal8Bit(desk.bytesOf("\\told").trimmed()),
                     QString::fromStdString(std::filesystem::canonical(desk.path("")).string()));
        }
    }

    void aStartMakesTheFoldersThatAreMissing()
    {
        Desk desk;
        std::filesystem::remove_all(desk.path("\\imgs"));
        QVERIFY(desk.open());
        QVERIFY(desk.exists("\\imgs") && desk.exists("\\settings"));
    }

    void aFolderIsFilledWithWhatItLacks()
    {
        Desk desk; // filled already
        desk.put("\\hosting.gif", "mine");
        std::filesystem::remove(desk.path("\\scoring.gif"));
        std::filesystem::remove_all(desk.path("\\imgs"));
        fillAppFolder(AppFolder(desk.path("")), QRVRC_SHIPPED_DIR);
        QCOMPARE(desk.bytesOf("\\hosting.gif"), "mine");
        QVERIFY(desk.exists("\\scoring.gif") && desk.exists("\\imgs\\butup.gif") && desk.exists("\\help.chm"));
        std::filesystem::remove(desk.path("\\scoring.gif"));
        fillAppFolder(AppFolder(desk.path("")), desk.path("\\imgs")); // an installation that has nothing
        QVERIFY(!desk.exists("\\scoring.gif"));
    }

    void copiesFollowTheInstallation()
    {
        const QTemporaryDir place;
        const std::filesystem::path root = place.path().toStdU16String();
        const auto put = [&](const char* folder, const char* name, std::string_view bytes) {
            std::filesystem::create_directories(root / folder);
            writeBytes(root / folder / name, bytes);
        };
        const auto start = [&] { fillAppFolder(AppFolder(root / "state"), root / "installed"); };
        const auto copyOf = [&](const char* name) { return readBytes(root / "state" / name); };
        for (const char* name : {"hosting.gif", "scoring.gif", "help.chm"})
            put("installed", name, "first");
        std::filesystem::create_directory(root / "state");
        start();
        put("state", "scoring.gif", "mine");
        for (const char* name : {"hosting.gif", "scoring.gif"})
            put("installed", name, "the second");
        start();
        QCOMPARE(copyOf("hosting.gif"), std::string("the second"));
        QCOMPARE(copyOf("scoring.gif"), std::string("mine"));
        QCOMPARE(copyOf("help.chm"), std::string("first"));
        put("state/settings", "shipped.ini", "\xff\xfe"); // then nothing is known to be a copy
        put("installed", "hosting.gif", "a third one");
        start();
        QCOMPARE(copyOf("hosting.gif"), std::string("the second"));
    }

    void theFolderIsTheExecutablesOwnOnlyWhenItHoldsThePictures()
    {
        Desk desk;
        QCOMPARE(chooseAppFolder(desk.path(""), "/user"), desk.path(""));
        QCOMPARE(installationFolder(desk.path("")), desk.path(""));
        QCOMPARE(chooseAppFolder(desk.path("\\imgs"), "/user"), std::filesystem::path("/user"));
        QCOMPARE(installationFolder(desk.path("\\imgs")), desk.path("") / "share" / "qrvv3rc");
    }

    void updatesMakeTheStatusBarBlink()
    {
        Desk desk;
        QVERIFY(desk.open());
        auto& label = *desk.control(u"sbMain"_s).findChild<QLabel*>(u"lblStatus"_s);
        auto& clock = desk.control<QTimer>(u"tmrGarbageCollection"_s);
        QCOMPARE(clock.interval(), 1000);
        clock.setInterval(1);
        const auto looks = [&] {
            return u"%1 %2 %3"_s.arg(label.text(), label.palette().color(QPalette::WindowText).name())
                .arg(label.font().bold());
        };
        desk.core().updatesAvailable = true;
        QTRY_COMPARE(looks(), u"Updates Available #ff0000 1"_s);
        QTRY_COMPARE(looks(), u"Updates Available #000000 0"_s);
        QTRY_COMPARE(looks(), u"Updates Available #ff0000 1"_s);
        desk.core().updatesAvailable = false;
        QTRY_COMPARE(looks(), u" #000000 0"_s);
    }

    void aMissingPictureIsToldOnce()
    {
        Desk desk;
        std::filesystem::remove(desk.path("\\nothosting.gif"));
        QVERIFY(desk.logIn());
        QTRY_COMPARE(desk.boxes.onlyText(), u"The picture '\\nothosting.gif' is missing or damaged."_s);
    }
};

QTEST_MAIN(FrameTest)
#include "FrameTest.moc"
