#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "updates/InstallUpdates.h"
#include "updates/UpdatesIni.h"

#include <QFile>
#include <QLockFile>
#include <QProcess>
#include <QTemporaryDir>
#include <QTest>

using namespace Qt::StringLiterals;

namespace {

/// What the client says: its arguments, and that nobody holds its lock any more: the pattern matches nothing.
const std::string said = "--say|two words|instance.lo*|";

/// A program folder whose client is a script that says that it was started.
struct House
{
    QTemporaryDir home;
    AppFolder folder{home.path().toStdU16String()};

    House()
    {
        put("\\client", "old");
        std::filesystem::permissions(folder.path("\\client"), std::filesystem::perms::owner_all);
        writeRestartOrder(folder, {folder.path("\\client"), {"--say", "two words"}});
        wait("QRVV3RC.exe", "\\", "#!/bin/sh\nprintf '%s|' \"$@\" instance.lo* > told.tmp && mv told.tmp told\n");
        wait("x.bin", "\\New\\", "x");
    }
    void put(std::string_view name, std::string_view bytes) const { writeBytes(folder.path(name), bytes); }
    std::string get(std::string_view name) const { return readBytesIfPresent(folder.path(name)).value_or(""); }
    void wait(const std::string& name, const std::string& target, std::string_view bytes) const
    {
        put("\\arrived", bytes);
        divert(folder, folder.path("\\arrived"), {name, target});
    }
    void start(QProcess& updater) const
    {
        updater.setWorkingDirectory(home.path());
        updater.start(QStringLiteral(QRVRC_UPDATER), QStringList());
    }
};

} // namespace

class UpdaterProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void itInstallsAndStartsTheClientAgain()
    {
        const House house;
        QProcess updater;
        house.start(updater);
        QVERIFY(updater.waitForFinished());
        QCOMPARE(updater.exitCode(), 0);
        QCOMPARE(updater.readAllStandardError(), QByteArray());
        QTRY_COMPARE(house.get("\\told"), said);
        QCOMPARE(house.get("\\New\\x.bin"), std::string("x"));
        QCOMPARE(house.get("\\Replaced\\QRVV3RC.exe"), std::string("old"));
        QVERIFY(!house.folder.folderExists("\\Updates") && !house.folder.fileExists("\\QRVV3Updater.lock"));
    }

    void itWaitsForTheClientAndWorksAlone()
    {
        const House house;
        QLockFile client(house.home.filePath(u"instance.lock"_s)); // as the client holds it
        QVERIFY(client.tryLock());
        QProcess first;
        house.start(first);
        QTRY_VERIFY(house.folder.fileExists("\\QRVV3Updater.lock"));
        QProcess second;
        house.start(second);
        QVERIFY(second.waitForFinished());
        QCOMPARE(second.exitCode(), 1);
        QVERIFY(second.readAllStandardError().contains("another updater"));
        QVERIFY(first.state() != QProcess::NotRunning);
        QVERIFY(house.folder.fileExists("\\Updates\\x.bin"));
        client.unlock();
        QVERIFY(first.waitForFinished());
        QCOMPARE(first.exitCode(), 0);
        QTRY_VERIFY(house.folder.fileExists("\\told"));
        QCOMPARE(house.get("\\New\\x.bin"), std::string("x"));
    }

    void anUpdaterThatWasKilledIsNobodysHindrance()
    {
        const House house;
        QLockFile client(house.home.filePath(u"instance.lock"_s));
        QVERIFY(client.tryLock());
        QProcess killed;
        house.start(killed);
        QTRY_VERIFY(house.folder.fileExists("\\QRVV3Updater.lock"));
        killed.kill();
        QVERIFY(killed.waitForFinished());
        client.unlock();
        QProcess next;
        house.start(next);
        QVERIFY(next.waitForFinished());
        QCOMPARE(next.exitCode(), 0);
        QTRY_COMPARE(house.get("\\told"), said);
    }

    void whatItCannotDoItSays()
    {
        const House house;
        house.put("\\client", house.get("\\Updates\\QRVV3RC.exe"));
        house.put("\\Updates\\evil", "x");
        house.put("\\Updates\\updates.ini", house.get("\\Updates\\updates.ini") + "evil=\\..\\\r\n");
        QProcess updater;
        house.start(updater);
        QVERIFY(updater.waitForFinished());
        QCOMPARE(updater.exitCode(), 1);
        QVERIFY(updater.readAllStandardError().contains("evil"));
        QVERIFY(house.get(problemsFile).find("evil") != std::string::npos);
        QTRY_COMPARE(house.get("\\told"), said); // the client starts all the same
        QVERIFY(house.folder.fileExists("\\Updates\\x.bin"));
    }

    void aProgramThatDoesNotStartGivesWayToTheOld_data()
    {
        QTest::addColumn<QByteArray>("program");
        QTest::newRow("cannot be run") << "<html>Page not found</html>"_ba;
        QTest::newRow("ends at once") << "#!/bin/sh\nexit 3\n"_ba;
        QTest::newRow("ends by a fault") << "#!/bin/sh\nkill -SEGV $$\n"_ba;
    }
    void aProgramThatDoesNotStartGivesWayToTheOld()
    {
        QFETCH(const QByteArray, program);
        const House house;
        house.put("\\client", house.get("\\Updates\\QRVV3RC.exe"));
        house.wait("QRVV3RC.exe", "\\", program.toStdString());
        QProcess updater;
        house.start(updater);
        QVERIFY(updater.waitForFinished());
        QCOMPARE(updater.exitCode(), 1);
        QTRY_COMPARE(house.get("\\told"), said); // the old one
        QVERIFY(house.get(problemsFile).starts_with("The new program did not start."));
        QVERIFY(!house.folder.fileExists("\\New\\x.bin") && !house.folder.folderExists("\\Updates"));
    }

    void aFolderThatIsNoClientsIsLeftAlone()
    {
        const House house;
        std::filesystem::remove(house.folder.path("\\settings\\restart.ini"));
        QProcess updater;
        house.start(updater);
        QVERIFY(updater.waitForFinished());
        QCOMPARE(updater.exitCode(), 1);
        QVERIFY(updater.readAllStandardError().contains("is a client's"));
        QVERIFY(house.folder.fileExists("\\Updates\\x.bin"));
    }

    void badUsageIsOneLineAndTwo()
    {
        QProcess updater;
        updater.start(QStringLiteral(QRVRC_UPDATER), {u"--nothing"_s});
        QVERIFY(updater.waitForFinished());
        QCOMPARE(updater.exitCode(), 2);
        QCOMPARE(updater.readAllStandardError().count('\n'), 1);
    }
};

QTEST_GUILESS_MAIN(UpdaterProgramTest)
#include "UpdaterProgramTest.moc"
