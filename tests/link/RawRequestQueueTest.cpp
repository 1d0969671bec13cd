#include "link/RawRequestQueue.h"

#include "store/FileBytes.h"
#include "support/LinkRig.h"

#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

namespace {

/// A link with requests that wait in its folder.
struct QueueRig : LinkRig
{
    RawRequestQueue queue{link, folder, store};

    QueueRig() { folder.makeFolder("\\RCData"); }

    void put(const std::string& name, const std::string& text) { writeBytes(folder.path("\\RCData\\" + name), text); }
    std::vector<std::string> waiting() const { return folder.fileNames("\\RCData"); }
};

} // namespace

class RawRequestQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesAreSentUnchangedInTheOrderOfTheirNames()
    {
        QueueRig rig;
        rig.put("b", "second");
        rig.put("c", "third_\xE9_VB6_[ST]\r\nof two\nlines\r\n");
        rig.put("a", "first");
        rig.folder.makeFolder("\\RCData\\folder");
        QVERIFY(rig.logIn());
        rig.tracker.forgetRequests();
        QStringList leftAtSending;
        QObject::connect(&rig.tracker, &practice::Tracker::requestReceived, &rig.tracker, [&] {
            QStringList names;
            for (const std::string& name : rig.waiting())
                names += QString::fromStdString(name);
            leftAtSending += names.join(u',');
        });
        rig.queue.serve();
        QCOMPARE(rig.tracker.requests(), (QList<QByteArray>{"first", "second", "third_\xE9_VB6_[ST]of twolines"}));
        QCOMPARE(leftAtSending, (QStringList{u"b,c"_s, u"c"_s, u""_s})); // gone before it is sent
        QVERIFY(rig.folder.folderExists("\\RCData\\folder"));
        rig.queue.serve();
        QCOMPARE(rig.tracker.requests().size(), 3);
    }

    void whatADropLeavesBehindIsSentLater()
    {
        QueueRig rig;
        for (const char* name : {"1", "2", "3"})
            rig.put(name, name);
        rig.queue.serve(); // not connected
        QCOMPARE(rig.waiting().size(), std::size_t{3});
        QVERIFY(rig.logIn());
        rig.tracker.answerNext("RCData", Fault::none());
        rig.tracker.answerNext("RCData", Fault::reset());
        rig.queue.serve();
        QCOMPARE(rig.waiting(), std::vector<std::string>{"3"});
        QVERIFY(rig.logIn());
        rig.tracker.forgetRequests();
        rig.queue.serve();
        QCOMPARE(rig.tracker.requests(), QList<QByteArray>{"3"});
    }

    void nothingIsSentIntoARequestThatIsUnderWay()
    {
        QueueRig rig;
        QVERIFY(rig.logIn());
        rig.put("1", "one");
        rig.tracker.answerNext("GetStatus", Fault::late(20ms));
        bool served = false;
        QTimer::singleShot(0, &rig.link, [&] {
            rig.queue.serve();
            served = true;
        });
        QCOMPARE(ask(rig.link, getStatusRequest("admin")), WaitEnd::Replied);
        QVERIFY(served);
        QCOMPARE(rig.waiting().size(), std::size_t{1});
    }

    void aCallInsideItsOwnWaitDoesNothing()
    {
        QueueRig rig;
        for (const char* name : {"1", "2"})
            rig.put(name, name);
        QVERIFY(rig.logIn());
        rig.tracker.forgetRequests();
        QObject::connect(&rig.link, &clsWinSock::replyHandled, &rig.link, [&] { rig.queue.serve(); });
        rig.queue.serve();
        QCOMPARE(rig.tracker.requests(), (QList<QByteArray>{"1", "2"}));
    }
};

QTEST_GUILESS_MAIN(RawRequestQueueTest)
#include "RawRequestQueueTest.moc"
