#include <QProcess>
#include <QTcpSocket>
#include <QTest>
#include <QUrl>

using namespace Qt::StringLiterals;

class ProgramTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void badUsageIsOneLineAndTwo_data()
    {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("unknown option") << QStringList{u"--nothing"_s};
        QTest::newRow("stray argument") << QStringList{u"stray"_s};
        QTest::newRow("port too large") << QStringList{u"--port"_s, u"65536"_s};
        QTest::newRow("port without a value") << QStringList{u"--port"_s};
        QTest::newRow("no such world") << QStringList{u"--world"_s, u"big"_s};
        QTest::newRow("no such fault") << QStringList{u"--misbehave"_s, u"Login=fast"_s};
        QTest::newRow("fault without its number") << QStringList{u"--misbehave"_s, u"Login=chunks"_s};
        QTest::newRow("fault with one number too many") << QStringList{u"--misbehave"_s, u"Login=late:1:2"_s};
        QTest::newRow("plugin without a version") << QStringList{u"--plugin"_s, u"Match Watch"_s};
        QTest::newRow("plugin without a name") << QStringList{u"--plugin"_s, u"=1000"_s};
        QTest::newRow("separator in a version") << QStringList{u"--plugin"_s, u"Match Watch=1-0"_s};
        QTest::newRow("no such manner") << QStringList{u"--recovery"_s, u"rude"_s};
        QTest::newRow("outage without an end") << QStringList{u"--outage"_s, u"20"_s};
        QTest::newRow("fault without a request") << QStringList{u"--misbehave"_s, u"=never"_s};
    }
    void badUsageIsOneLineAndTwo()
    {
        QFETCH(const QStringList, arguments);
        QProcess program;
        program.start(QStringLiteral(PRACTICE_PROGRAM), arguments);
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitCode(), 2);
        QVERIFY(program.readAllStandardOutput().isEmpty());
        const QByteArray errors = program.readAllStandardError();
        QVERIFY(errors.startsWith("qrvrc-practice: "));
        QCOMPARE(errors.count('\n'), 1);
    }

    void itServesUntilItIsTerminated()
    {
        QProcess program;
        program.start(QStringLiteral(PRACTICE_PROGRAM), {u"--world"_s, u"3"_s, u"--misbehave"_s, u"Login=chunks:5"_s,
                                                         u"--misbehave"_s, u"*=empty"_s, u"--verbose"_s});
        QByteArray output;
        QTRY_VERIFY((output += program.readAllStandardOutput()).count('\n') == 5);
        const QList<QByteArray> lines = output.split('\n');
        QVERIFY(lines[0].startsWith("host link 127.0.0.1:"));
        QVERIFY(QUrl::fromEncoded(lines[1].mid(4)).port() > 0);
        QCOMPARE(lines[2], "scripts" + lines[1].mid(3) + "/stats");

        QTcpSocket socket;
        socket.connectToHost(u"127.0.0.1"_s, lines[0].mid(lines[0].lastIndexOf(':') + 1).toUShort());
        socket.write("[ST]login_admin_admin_1_VB6_[ND]");
        QByteArray received;
        QTRY_VERIFY((received += socket.readAll()).endsWith("[ND]"));
        QVERIFY(received.contains("Success_"));
        socket.write("[ST]GetStatus_admin_VB6_[ND]");
        received.clear();
        QTRY_COMPARE(received += socket.readAll(), "0000008[ST][ND]"_ba);

        program.terminate();
        QVERIFY(program.waitForFinished());
        QCOMPARE(program.exitStatus(), QProcess::NormalExit);
        QCOMPARE(program.exitCode(), 0);
        QVERIFY(program.readAllStandardError().contains("request Login\n"));
    }
    void pluginsAreChosenOnTheCommandLine()
    {
        QProcess program;
        program.start(QStringLiteral(PRACTICE_PROGRAM), {u"--still"_s, u"--plugin"_s, u"BHD Auto Start=none"_s,
                                                         u"--plugin"_s, u"Match Watch="_s, u"--plugin"_s, u"X=9999"_s});
        QByteArray output;
        QTRY_VERIFY((output += program.readAllStandardOutput()).contains('\n'));
        const QByteArray first = output.left(output.indexOf('\n'));
        QTcpSocket socket;
        socket.connectToHost(u"127.0.0.1"_s, first.mid(first.lastIndexOf(':') + 1).toUShort());
        socket.write("[ST]login_admin_admin_1_VB6_[ND][ST]GetStatus_admin_VB6_[ND]");
        QByteArray received;
        QTRY_VERIFY((received += socket.readAll()).count("[ND]") == 2);
        QVERIFY(received.endsWith("[ST]Status_TWF0Y2ggV2F0Y2g=-1-cXJ2V2F0Y2guZGxs-|WA==-1-cXJ2WC5kbGw=-9999[ND]"));
        program.terminate();
        QVERIFY(program.waitForFinished());
    }
};

QTEST_GUILESS_MAIN(ProgramTest)
#include "ProgramTest.moc"
