#include "support/AddRow.h"
#include "support/Desk.h"
#include "support/LoggedIn.h"

#include <QLabel>
#include <QProgressBar>
#include <QSignalSpy>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

/// Sends the beginning of a reply, and waits until the client has it.
bool begin(Desk& desk, const QByteArray& prefix, int bytes)
{
    const QSignalSpy chunks(&desk.link(), &clsWinSock::chunkArrived);
    desk.tracker.sendRaw(prefix + "[ST]" + QByteArray(bytes - 4, 'x'));
    return QTest::qWaitFor([&] { return chunks.count() > 0; });
}

bool isCounting(Desk& desk)
{
    return desk.control<QTimer>(u"tmrProgress"_s).isActive();
}

QString label(Desk& desk, const QString& name)
{
    return desk.control<QLabel>(name).text();
}

} // namespace

class ProgressTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLargeReplyOpensTheWindowUntilItIsComplete_data()
    {
        addColumns<QByteArray, bool>("prefix", "opens");
        QTest::newRow("511") << "0000511"_ba << false;
        QTest::newRow("512") << "0000512"_ba << false;
        QTest::newRow("513") << "0000513"_ba << true;
        QTest::newRow("far more than comes") << "9999999"_ba << true;
        QTest::newRow("letters") << "length?"_ba << false;
    }
    void aLargeReplyOpensTheWindowUntilItIsComplete()
    {
        QFETCH(const QByteArray, prefix);
        QFETCH(const bool, opens);
        LoggedIn<Desk> desk;
        auto& window = desk.control(u"qrvrcProgress"_s);
        QVERIFY(begin(desk, prefix, 400));
        QCOMPARE(isCounting(desk), opens);
        if (opens) {
            QTRY_VERIFY(window.isVisible());
            QCOMPARE(label(desk, u"lblExpected"_s), QString::number(prefix.toInt()));
            QCOMPARE(label(desk, u"lblRecieved"_s), u"400"_s);
            QCOMPARE(label(desk, u"lblPercent"_s), u"%1%"_s.arg(40000 / prefix.toInt()));
        }
        const QSignalSpy handled(&desk.link(), &clsWinSock::replyHandled);
        desk.tracker.sendRaw("[ND]");
        QTRY_COMPARE(handled.count(), 1);
        QVERIFY(!window.isVisible());
        QVERIFY(!isCounting(desk));
    }

    void aReplyThatOutgrowsItsLengthFillsTheBarAndGoesOn()
    {
        LoggedIn<Desk> desk;
        QVERIFY(begin(desk, "0000600", 2000));
        QCOMPARE(desk.control<QProgressBar>(u"pbData"_s).value(), 600);
        QCOMPARE(label(desk, u"lblRecieved"_s), u"600"_s);
        QTRY_VERIFY(!isCounting(desk));
        QCOMPARE(label(desk, u"lblPercent"_s), u"100%"_s);
        QVERIFY(!desk.control(u"qrvrcProgress"_s).isVisible());
        const QSignalSpy handled(&desk.link(), &clsWinSock::replyHandled);
        desk.tracker.sendRaw("more[ND]");
        QTRY_COMPARE(handled.count(), 1);
        QVERIFY(!desk.control(u"qrvrcProgress"_s).isVisible());
    }

    void theNextReplyBeginsAtNothing()
    {
        LoggedIn<Desk> desk;
        for (const char* length : {"0002000", "0001000"}) {
            QVERIFY(begin(desk, length, 100));
            QCOMPARE(label(desk, u"lblExpected"_s), QString::number(QByteArray(length).toInt()));
            QCOMPARE(desk.control<QProgressBar>(u"pbData"_s).value(), 100);
            desk.tracker.sendRaw("[ND]");
            QTRY_VERIFY(!isCounting(desk));
        }
    }

    void theWindowClosesWhenTheLinkDrops()
    {
        LoggedIn<Desk> desk;
        QVERIFY(begin(desk, "0100000", 100));
        QTRY_VERIFY(desk.control(u"qrvrcProgress"_s).isVisible());
        desk.tracker.closeLinks();
        QTRY_VERIFY(!desk.control(u"qrvrcProgress"_s).isVisible());
        QVERIFY(!isCounting(desk));
    }

    void theUserMayStopIt_data()
    {
        addColumns<bool, bool, bool>("yes", "completes", "stops");
        QTest::newRow("yes") << true << false << true;
        QTest::newRow("no") << false << false << false;
        QTest::newRow("yes, when all is there") << true << true << false;
    }
    void theUserMayStopIt()
    {
        QFETCH(const bool, yes);
        QFETCH(const bool, completes);
        QFETCH(const bool, stops);
        LoggedIn<Desk> desk;
        QVERIFY(begin(desk, "0100000", 100));
        auto& window = desk.control(u"qrvrcProgress"_s);
        QTRY_VERIFY(window.isVisible());
        const QSignalSpy handled(&desk.link(), &clsWinSock::replyHandled);
        desk.boxes.answer = yes;
        desk.boxes.whileOpen = [&] {
            if (completes)
                desk.tracker.sendRaw("[ND]");
            QTRY_COMPARE(handled.count(), completes ? 1 : 0);
        };
        QTest::keyClick(&window, Qt::Key_Escape);
        QCOMPARE(desk.boxes.onlyText(), u"Do you want to stop receiving and disconnect from the host?"_s);
        QCOMPARE(window.isVisible(), !yes);
        QCOMPARE(desk.link().isConnected(), !stops);
        QCOMPARE(desk.control(u"qrvrcLogin"_s).isVisible(), stops);
    }
};

QTEST_MAIN(ProgressTest)
#include "ProgressTest.moc"
