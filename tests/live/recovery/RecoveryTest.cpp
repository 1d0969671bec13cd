#include "live/recovery/qrvrcRecovery.h"

#include "platform/system/FileBytes.h"
#include "practice/links/RecoveryTool.h"
#include "support/AddRow.h"
#include "support/ClientRig.h"
#include "support/Pane.h"

#include <QAbstractButton>
#include <QComboBox>
#include <QGuiApplication>
#include <QLineEdit>
#include <QPointer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using Manner = practice::RecoveryTool::Manner;

Q_DECLARE_METATYPE(practice::RecoveryTool::Manner)

namespace {

const QString nobodyKnows = u"It is not known whether it has carried out the command."_s;

/// The recovery console beside a recovery tool whose tracker is up.
struct Rig : ClientRig
{
    practice::RecoveryTool tool{tracker};
    QPointer<qrvrcRecovery> console;

    explicit Rig(const qrvrcRecovery::Limits& limits = {})
    {
        if (!tracker.listen() || !tool.listen())
            qFatal("the practice host has no port");
        writeBytes(folder.path("\\profiles.ini"), "[Home]\r\nHost=127.0.0.1\r\nPort=1\r\nUser=admin\r\nPass=admin\r\n"
                                                  "[Stranger]\r\nH=http://127.0.0.1\r\nP=1\r\nU=admin\r\nW=no\r\n"
                                                  "[Nameless]\r\nHost=127.0.0.1\r\nPort=1\r\nUser=admin\r\n"
                                                  "[Nobody]\r\nHost=127.0.0.1\r\nPort=1\r\nUser=\r\nPass=x\r\n");
        windows.add(u"qrvrcRecovery"_s, [this, limits] { return new qrvrcRecovery(client, limits, nullptr); });
        console = static_cast<qrvrcRecovery*>(windows.window(u"qrvrcRecovery"_s));
        console->show();
        type(QString::number(tool.port()));
        if (!QTest::qWaitForWindowActive(console) || !QTest::qWaitFor([this] { return profiles().count() == 4; }))
            qFatal("the console does not come up");
    }
    ~Rig() { delete console; }

    template <typename Control = QWidget>
    Control& control(const QString& name)
    {
        return Pane(*console).control<Control>(name);
    }
    QComboBox& profiles() { return control<QComboBox>(u"cboProfile"_s); }
    QString note() { return Pane(*console).text(u"lblNote"_s); }
    void type(const QString& port) { control<QLineEdit>(u"txtPort"_s).setText(port); }
    void order(int option)
    {
        control<QAbstractButton>(u"Option1_%1"_s.arg(option)).click();
        Pane(*console).click(u"cmdSendCmd"_s);
    }
    bool isAtRest()
    {
        return !QGuiApplication::overrideCursor() && control(u"cmdSendCmd"_s).isEnabled() &&
               control(u"cmdClose"_s).isVisible() && !control(u"cmdCancel"_s).isVisible();
    }
    /// Whether the next box says `text`, and the console is usable again while it is open.
    bool isTold(const QString& title, const QString& text)
    {
        bool wasAtRest = false;
        boxes.whileOpen = [&] { wasAtRest = isAtRest(); };
        const bool came = QTest::qWaitFor([this] { return !boxes.boxes.isEmpty(); });
        boxes.whileOpen = nullptr;
        if (!came || boxes.boxes.size() != 1 || boxes.boxes[0].title != title || boxes.boxes[0].text != text)
            qWarning() << boxes.onlyText();
        return came && wasAtRest && boxes.boxes.size() == 1 && boxes.boxes.takeFirst() == Box{title, text};
    }
    using Box = RecordingDialogs::Box;
};

} // namespace

class RecoveryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theTrackerIsStoppedStartedAndRestarted()
    {
        Rig rig;
        QCOMPARE(rig.profiles().currentText(), u"Home"_s);
        QVERIFY(rig.connect());
        rig.order(2);
        QVERIFY(QGuiApplication::overrideCursor());
        QVERIFY(rig.isTold(u"QRVRC"_s, u"The tracker has been shut down."_s));
        QTRY_COMPARE(rig.tracker.links(), 0);
        rig.link.open(rig.connectionToTracker());
        QTRY_COMPARE(rig.link.state(), SocketState::Error);
        rig.order(2);
        QVERIFY(rig.isTold(u"QRVRC"_s, u"The tracker is not running."_s));
        rig.order(0);
        QVERIFY(rig.isTold(u"QRVRC"_s, u"The tracker has been started."_s));
        QVERIFY(rig.connect());
        rig.order(1);
        QVERIFY(rig.isTold(u"QRVRC"_s, u"The tracker has been restarted."_s));
        QTRY_COMPARE(rig.tracker.links(), 0);
        QVERIFY(rig.connect());
        QCOMPARE(rig.tool.commands(),
                 (QList<QByteArray>{"[ST]YWRtaW4=|YWRtaW4=|Stop[ND]", "[ST]YWRtaW4=|YWRtaW4=|Stop[ND]",
                                    "[ST]YWRtaW4=|YWRtaW4=|Start[ND]", "[ST]YWRtaW4=|YWRtaW4=|Restart[ND]"}));
        QCOMPARE(readBytes(rig.folder.path("\\profiles.ini")).find("Tool"), std::string::npos); // nothing remembered
    }

    void whatCannotBeSentOpensNoConnection_data()
    {
        // port: empty for the tool's own
        // option: -1 for none
        addColumns<QString, QString, int, bool>("port", "profile", "option", "isBoxed");
        for (const QString& port : {u"0"_s, u"65536"_s, u"http"_s, u"-1"_s, u" "_s, u"4294967297"_s, u"7€"_s})
            QTest::addRow("port %s", qPrintable(port)) << port << u"Home"_s << 2 << true;
        QTest::newRow("no password") << QString() << u"Nameless"_s << 2 << false;
        QTest::newRow("no user name") << QString() << u"Nobody"_s << 2 << false;
        QTest::newRow("no command") << QString() << u"Home"_s << -1 << false;
    }
    void whatCannotBeSentOpensNoConnection()
    {
        QFETCH(const QString, port);
        QFETCH(const QString, profile);
        QFETCH(const int, option);
        QFETCH(const bool, isBoxed);
        Rig rig;
        if (!port.isEmpty())
            rig.type(port);
        rig.profiles().setCurrentText(profile);
        if (option < 0)
            QTest::keyClick(&rig.control(u"txtPort"_s), Qt::Key_Return);
        else
            rig.order(option);
        QVERIFY(rig.isAtRest());
        QCOMPARE(rig.boxes.boxes,
                 isBoxed ? (QList<Rig::Box>{{u"Failed!"_s, u"Invalid Port format!"_s}}) : QList<Rig::Box>());
        QCOMPARE(rig.note().isEmpty(), isBoxed);
        QVERIFY(rig.tool.commands().isEmpty());
    }

    void everyAnswerEndsTheWait_data()
    {
        addColumns<Manner, QString, QString>("manner", "title", "text");
        const QString done = u"The tracker is running already."_s;
        QString garbage;
        for (int value = 0; value < 256; ++value)
            garbage += CodePage().toText(std::string(1, static_cast<char>(value)));
        addRow("pieces", Manner::Pieces, u"QRVRC"_s, done);
        addRow("no end, and silence", Manner::Endless, u"QRVRC"_s, done);
        addRow("no end, and closed", Manner::CutOff, u"QRVRC"_s, done);
        addRow("garbage", Manner::Garbage, u"QRVRC"_s, garbage);
        addRow("closed at once", Manner::CloseOnly, u"Connection Error"_s,
               u"The QRV Recovery tool closed the connection without an answer.\r\n\r\n"_s + nobodyKnows);
        addRow("silent", Manner::Silent, u"Connection Error"_s,
               u"The QRV Recovery tool did not answer.\r\n\r\n"_s + nobodyKnows);
    }
    void everyAnswerEndsTheWait()
    {
        QFETCH(const Manner, manner);
        QFETCH(const QString, title);
        QFETCH(const QString, text);
        const bool isSlow = manner == Manner::Silent;
        Rig rig({.answer = isSlow ? 150ms : 20s, .silence = manner == Manner::Endless ? 50ms : 20s});
        rig.tool.manner = manner;
        rig.order(0);
        QVERIFY(rig.isTold(title, text));
        rig.tool.manner = Manner::Proper;
        rig.order(0);
        QVERIFY(rig.isTold(u"QRVRC"_s, u"The tracker is running already."_s));
    }

    void aRefusedConnectionIsTold()
    {
        Rig rig;
        rig.tool.stopListening();
        rig.order(0);
        QVERIFY(rig.isTold(u"Connection Error"_s,
                           u"Failed to connect to the QRV Recovery tool!\r\n\r\n"
                           "This could either be because the specified server details (IP or Port)\r\n"
                           "are incorrect, or the Recovery Tool is not running on the server."_s));
    }

    void escapeCancelsFirstAndClosesThen()
    {
        Rig rig;
        rig.tool.manner = Manner::Silent;
        rig.order(2);
        QVERIFY(rig.control(u"cmdCancel"_s).isVisible());
        QTRY_COMPARE(rig.tool.commands().size(), 1);
        QTest::keyClick(rig.console, Qt::Key_Escape);
        QVERIFY(rig.isAtRest());
        QVERIFY(rig.note().startsWith(u"Cancelled. "_s));
        QTest::keyClick(rig.console, Qt::Key_Escape);
        QVERIFY(!rig.console->isVisible());
        QTRY_VERIFY(!rig.console);
        QVERIFY(!rig.windows.isCreated(u"qrvrcRecovery"_s));
        QVERIFY(rig.boxes.boxes.isEmpty());
    }

    void closingWhileConnectingIsHarmless()
    {
        Rig rig;
        rig.order(2);
        rig.console->close();
        QVERIFY(!QGuiApplication::overrideCursor());
        QTRY_VERIFY(!rig.console);
        QTest::qWait(0);
        QVERIFY(rig.boxes.boxes.isEmpty());
        QVERIFY(rig.tool.commands().isEmpty());
    }
};

QTEST_MAIN(RecoveryTest)
#include "RecoveryTest.moc"
