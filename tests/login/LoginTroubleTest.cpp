#include "support/AddRow.h"
#include "support/Desk.h"

#include <QTcpServer>
#include <QTcpSocket>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

const QString noAnswer = u"The tracker has not answered for 0 seconds. The connection was closed."_s;
const QString closed = u"The host closed the connection before it answered the login."_s;
const QString notUnderstood = u"The tracker's answer to the login cannot be understood. The connection was closed."_s;

/// The login window as it must stand once an attempt to connect has failed.
void checkReadyForAnotherAttempt(Desk& desk)
{
    QTRY_VERIFY(desk.control(u"cmdConnect"_s).isEnabled());
    QTRY_COMPARE(desk.linkStatus(), u"Not Connected"_s);
    QVERIFY(desk.control(u"qrvrcLogin"_s).isVisible());
    QVERIFY(desk.frame().isEnabled());
    QCOMPARE(desk.text(u"txtHost"_s), u"127.0.0.1"_s);
    QCOMPARE(desk.text(u"txtUser"_s), u"admin"_s);
    QCOMPARE(desk.text(u"txtPass"_s), u"secret"_s);
    for (const auto* field : {u"txtHost", u"txtPort", u"txtUser", u"txtPass"})
        QVERIFY(desk.control(QString::fromUtf16(field)).isEnabled());
    QVERIFY(!desk.tabs(u"tsMain"_s).contains(u"Profile List"_s));
}

} // namespace

/// Hosts that are none, or mean ill.
class LoginTroubleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void queuedRawRequestsWaitForTheLogin()
    {
        Desk desk;
        QVERIFY(desk.open());
        desk.put("\\RCData\\1", "queued");
        QVERIFY(desk.logIn());
        QTRY_VERIFY(desk.tracker.requests().contains("queued"));
        QVERIFY(desk.tracker.requests().constFirst().startsWith("login_"));
        QVERIFY(desk.link().isLoggedIn());
    }

    void aLoginThatFailsIsToldOnce_data()
    {
        addColumns<Fault, QByteArray, QString>("fault", "body", "told");
        addRow("refused", Fault::none(), QByteArray(), u"Login Failed: wrong password."_s);
        addRow("refused in markup", Fault::none(), "Login Failed: <b>no</b>"_ba, u"Login Failed: <b>no</b>"_s);
        addRow("refused byte by byte", Fault::chunks(1), QByteArray(), u"Login Failed: wrong password."_s);
        addRow("nonsense", Fault::garbage(), QByteArray(), noAnswer);
        addRow("nothing in it", Fault::emptyBody(), QByteArray(), noAnswer);
        addRow("success without privileges", Fault::none(), "Success_a"_ba, notUnderstood);
        addRow("success without a port", Fault::none(), "Success_a_b_U3VwZXI=_x"_ba, notUnderstood);
        addRow("privileges that are no Base64", Fault::none(), "Success_a_b_Su!er===_8000"_ba, notUnderstood);
        addRow("silent", Fault::never(), QByteArray(), noAnswer);
        addRow("closed at once", Fault::cutOffAfter(0), QByteArray(), closed);
        addRow("reset", Fault::reset(), QByteArray(), closed);
    }
    void aLoginThatFailsIsToldOnce()
    {
        QFETCH(const Fault, fault);
        QFETCH(const QByteArray, body);
        QFETCH(const QString, told);
        Desk desk;
        QVERIFY(desk.open());
        desk.tracker.answerNext("Login", fault);
        if (!body.isNull())
            desk.tracker.answerNextWith("Login", body);
        if (told == noAnswer)
            desk.link().replyLimit = 30ms;
        desk.typeProfile(u"Home"_s, u"admin"_s, u"secret"_s, desk.tracker.port());
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(!desk.boxes.boxes.isEmpty());
        checkReadyForAnotherAttempt(desk);
        QTRY_COMPARE(desk.boxes.onlyText(), told);
        QCOMPARE(desk.boxes.boxes.constFirst().title, u"Failed!"_s);

        desk.link().replyLimit = 1min;
        desk.type(u"txtPass"_s, u"admin"_s);
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(desk.link().isLoggedIn() && desk.control(u"qrvrcProfilesList"_s).isVisible());
        QVERIFY(desk.settles());
        QCOMPARE(desk.boxes.boxes.size(), 1);
    }

    void aServerOfAnotherKindIsNoTracker_data()
    {
        addColumns<QByteArray, QString>("greeting", "told");
        QTest::newRow("a web server") << "HTTP/1.1 400 Bad Request\r\nConnection: keep-alive\r\n\r\n"_ba << noAnswer;
        QTest::newRow("one that talks first") << "220 ready [ND] 250 [ND]"_ba << noAnswer;
    }
    void aServerOfAnotherKindIsNoTracker()
    {
        QFETCH(const QByteArray, greeting);
        QFETCH(const QString, told);
        QTcpServer server;
        QVERIFY(server.listen(QHostAddress::LocalHost));
        connect(&server, &QTcpServer::newConnection, &server, [&] {
            QTcpSocket* socket = server.nextPendingConnection();
            connect(socket, &QTcpSocket::readyRead, socket, [socket, greeting] {
                if (socket->readAll().contains("[ND]"))
                    socket->write(greeting);
            });
        });
        Desk desk;
        QVERIFY(desk.open());
        if (told == noAnswer)
            desk.link().replyLimit = 30ms;
        desk.typeProfile(u"Home"_s, u"admin"_s, u"secret"_s, server.serverPort());
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(!desk.boxes.boxes.isEmpty());
        checkReadyForAnotherAttempt(desk);
        QTRY_COMPARE(desk.boxes.onlyText(), told);
    }

    void disconnectingWhileTheLoginWaitsIsNoFault()
    {
        Desk desk;
        QVERIFY(desk.open());
        desk.tracker.answerNext("Login", Fault::never());
        desk.typeProfile(u"Home"_s, u"admin"_s, u"secret"_s, desk.tracker.port());
        bool disconnected = false;
        connect(
            &desk.tracker, &practice::Tracker::requestReceived, &desk.tracker,
            [&] {
                desk.click(u"cmdDisconnect"_s); // inside the wait
                disconnected = true;
            },
            Qt::QueuedConnection);
        desk.click(u"cmdConnect"_s);
        QTRY_VERIFY(disconnected);
        checkReadyForAnotherAttempt(desk);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }
};

QTEST_MAIN(LoginTroubleTest)
#include "LoginTroubleTest.moc"
