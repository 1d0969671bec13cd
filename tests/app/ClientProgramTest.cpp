#include "platform/system/FileLock.h"
#include "practice/links/Tracker.h"
#include "support/AddRow.h"
#include "updates/InstallUpdates.h"

#include <QFile>
#include <QProcess>
#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

/// The program on a folder of its own; ended with this object.
struct Program
{
    QTemporaryDir runtime; ///< a session has one; without it Qt grumbles on standard error
    QProcess process;

    explicit Program(const QStringList& arguments)
    {
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        environment.insert(u"XDG_RUNTIME_DIR"_s, runtime.path());
        process.setProcessEnvironment(environment);
        process.start(QStringLiteral(QRVRC_PROGRAM), arguments);
    }
    ~Program()
    {
        process.kill();
        process.waitForFinished();
    }
};

QStringList onFolder(const QString& folder, const QStringList& more = {})
{
    return QStringList{u"--app-folder"_s, folder, u"--maker-host"_s, u"http://127.0.0.1:1"_s} + more;
}

} // namespace

class ClientProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void questionsAreAnsweredOnStandardOutput_data()
    {
        addColumns<QString, QByteArray>("option", "output");
        QTest::newRow("version") << u"--version"_s << QByteArray("qrvv3rc " QRVRC_VERSION "\n");
        QTest::newRow("help") << u"--help"_s << "Usage: qrvv3rc [options]\n"_ba;
    }
    void questionsAreAnsweredOnStandardOutput()
    {
        QFETCH(const QString, option);
        QFETCH(const QByteArray, output);
        Program program({option});
        QVERIFY(program.process.waitForFinished());
        QCOMPARE(program.process.exitCode(), 0);
        QVERIFY(program.process.readAllStandardOutput().startsWith(output));
        QVERIFY(program.process.readAllStandardError().isEmpty());
    }

    void badUsageIsOneLineAndTwo_data()
    {
        addColumns<QStringList, QByteArray>("arguments", "says");
        QTest::newRow("unknown option") << QStringList{u"--nothing"_s} << "'nothing'"_ba;
        QTest::newRow("no value") << QStringList{u"--connect"_s} << "Missing value after '--connect'"_ba;
        QTest::newRow("a maker host that is no address")
            << QStringList{u"--maker-host"_s, u"ftp://x"_s} << "no http or https address"_ba;
    }
    void badUsageIsOneLineAndTwo()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const QByteArray, says);
        Program program(arguments);
        QVERIFY(program.process.waitForFinished());
        QCOMPARE(program.process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.process.exitCode(), 2);
        QVERIFY(program.process.readAllStandardOutput().isEmpty());
        const QByteArray errors = program.process.readAllStandardError();
        QVERIFY2(errors.startsWith("qrvv3rc: ") && errors.contains(says), errors);
        QCOMPARE(errors.count('\n'), 1);
    }

    void aFolderThatCannotBeIsToldInAWindow()
    {
        Program program({u"--app-folder"_s, u"/dev/null/x"_s});
        QVERIFY(program.process.waitForStarted());
        QByteArray said;
        QTRY_VERIFY((said += program.process.readAllStandardError()).contains("cannot be written to"));
        QVERIFY(!program.process.waitForFinished(100)); // nobody has closed the window yet
    }

    void aStartWhileAnUpdateIsInstalledSaysSo()
    {
        QTemporaryDir folder;
        std::error_code fault;
        const auto lock = FileLock::take(folder.filePath(u"instance.lock"_s).toStdU16String(), updaterLockText, fault);
        QVERIFY(lock);
        Program program(onFolder(folder.path()));
        QVERIFY(program.process.waitForStarted());
        QByteArray says;
        QTRY_VERIFY((says += program.process.readAllStandardError()).contains("update is being installed"));
    }

    void onlyTheSystemsLockDecides_data()
    {
        QTest::addColumn<QByteArray>("lockFile");
        QTest::newRow("none") << QByteArray();
        QTest::newRow("empty") << ""_ba;
        QTest::newRow("damaged") << "\xff\0x\n\n"_ba;
        QTest::newRow("of a process that runs, on another machine") << "1\nqrvv3rc\nelsewhere\n"_ba;
        QTest::newRow("of a process that runs") << "1\nqrvv3rc\n"_ba + QSysInfo::machineHostName().toUtf8() + '\n';
    }
    void onlyTheSystemsLockDecides()
    {
        QFETCH(const QByteArray, lockFile);
        QTemporaryDir folder;
        QFile lock(folder.filePath(u"instance.lock"_s));
        if (!lockFile.isNull())
            QVERIFY(lock.open(QFile::WriteOnly) && lock.write(lockFile) == lockFile.size());
        lock.close();
        const auto owner = [&lock] {
            const bool opened = lock.open(QFile::ReadOnly);
            const QByteArray process = opened ? lock.readLine().trimmed() : QByteArray();
            lock.close();
            return process.toLongLong();
        };
        Program first(onFolder(folder.path()));
        QVERIFY(first.process.waitForStarted());
        QTRY_COMPARE(owner(), first.process.processId());
        Program second(onFolder(folder.path()));
        QVERIFY(second.process.waitForFinished());
        QCOMPARE(second.process.exitStatus(), QProcess::NormalExit);
        QCOMPARE(second.process.exitCode(), 0);
        QCOMPARE(second.process.readAllStandardError(), QByteArray());
        QCOMPARE(first.process.state(), QProcess::Running);
        first.process.kill(); // leaves its lock behind, which is nobody's then
        QVERIFY(first.process.waitForFinished());
        Program third(onFolder(folder.path()));
        QVERIFY(third.process.waitForStarted());
        QTRY_COMPARE(owner(), third.process.processId());
    }

    void aStartWithAProfileConnects()
    {
        practice::Tracker tracker(practice::World::small());
        QVERIFY(tracker.listen());
        QTemporaryDir folder;
        QFile profiles(folder.filePath(u"profiles.ini"_s));
        QVERIFY(profiles.open(QFile::WriteOnly));
        profiles.write("[My Home]\nHost=127.0.0.1\nPort=" + QByteArray::number(tracker.port()) +
                       "\nUser=admin\nPass=admin\n");
        profiles.close();
        Program program(onFolder(folder.path(), {u"--connect=My Home"_s}));
        QTRY_COMPARE(tracker.requests().size(), 3);
        QCOMPARE(tracker.requests()[0], "login_admin_admin_" QRVRC_VERSION "_VB6_");
        QCOMPARE(tracker.requests()[1], "GetStatus_admin_VB6_");
        QCOMPARE(tracker.requests()[2], "GetProfiles_admin__VB6_");
        QVERIFY(QFile::exists(folder.filePath(u"imgs/butup.gif"_s)));
        program.process.kill();
        QTRY_COMPARE(tracker.links(), 0);
    }
};

QTEST_GUILESS_MAIN(ClientProgramTest)
#include "ClientProgramTest.moc"
