#include "link/RawRequestQueue.h"

#include "base/RaisedError.h"
#include "platform/system/FileBytes.h"
#include "support/LinkRig.h"

#include <QTimer>

#include <fstream>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using namespace std::string_literals;
using practice::Fault;

namespace {

/// A link with requests that wait in its folder.
struct QueueRig : LinkRig
{
    RawRequestQueue queue{link, folder, store};

    QueueRig() { folder.makeFolder("\\RCData"); }

    void put(const std::string& name, const std::string& text) { writeBytes(folder.path("\\RCData\\" + name), text); }
    /// Two looks at files that nobody writes.
    void serveTwice()
    {
        queue.serve();
        queue.serve();
    }
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
        rig.serveTwice();
        QCOMPARE(rig.tracker.requests(), (QList<QByteArray>{"first", "second", "third_\xE9_VB6_[ST]of twolines"}));
        QCOMPARE(leftAtSending, (QStringList{u"b,c"_s, u"c"_s, u""_s})); // gone before it is sent
        QVERIFY(rig.folder.folderExists("\\RCData\\folder"));
        rig.serveTwice();
        QCOMPARE(rig.tracker.requests().size(), 3);
    }

    void whatADropLeavesBehindIsSentLater()
    {
        QueueRig rig;
        for (const char* name : {"1", "2", "3"})
            rig.put(name, name);
        rig.serveTwice(); // not connected
        QCOMPARE(rig.waiting().size(), std::size_t{3});
        QVERIFY(rig.logIn());
        rig.tracker.answerNext("RCData", Fault::none());
        rig.tracker.answerNext("RCData", Fault::reset());
        rig.serveTwice();
        QCOMPARE(rig.waiting(), std::vector<std::string>{"3"});
        QVERIFY(rig.logIn());
        rig.tracker.forgetRequests();
        rig.queue.serve(); // it has been looked at
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
            rig.serveTwice();
            served = true;
        });
        QCOMPARE(ask(rig.link, getStatusRequest("admin")), WaitEnd::Done);
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
        rig.serveTwice();
        QCOMPARE(rig.tracker.requests(), (QList<QByteArray>{"1", "2"}));
    }

    void aFileThatIsBeingWrittenWaits()
    {
        QueueRig rig;
        RawRequestFiles files(rig.folder, rig.store);
        const auto next = [&] {
            files.look();
            return files.takeNext().value_or("nothing");
        };
        rig.put("a", "");
        rig.put("b", "\r\n");
        for (int look = 0; look < 3; ++look)
            QCOMPARE(next(), "nothing"s);
        rig.put("a", "half");
        QCOMPARE(next(), "nothing"s);
        rig.put("a", "half and half");
        QCOMPARE(next(), "nothing"s);
        files.look();
        rig.put("a", "half and half and more"); // between the look and its turn
        QVERIFY(!files.takeNext());
        QCOMPARE(next(), "nothing"s);
        QCOMPARE(next(), "half and half and more"s);
        QCOMPARE(rig.waiting(), std::vector<std::string>{"b"});
        QVERIFY(!files.takeFault());
    }

    void aBadFileHoldsNobodyUpAndIsToldOnce()
    {
        QueueRig rig;
        QVERIFY(rig.logIn());
        rig.tracker.forgetRequests();
        const QTemporaryDir elsewhere;
        const std::filesystem::path outside = elsewhere.filePath(u"outside"_s).toStdU16String();
        writeBytes(outside, "not ours");
        const std::filesystem::path bad = rig.folder.path("\\RCData\\a");
        std::filesystem::create_symlink(outside, bad); // leads out of the folder, so it is not read
        writeBytes(rig.folder.path("\\RCData") / "b:", "no plain name");
        rig.put("c", "good");
        int told = 0;
        for (int look = 0; look < 4; ++look)
            told += raisedBy([&] { rig.queue.serve(); }) == numberOf(ErrorNumber::PermissionDenied) ? 1 : 0;
        QCOMPARE(told, 1);
        QCOMPARE(rig.tracker.requests(), QList<QByteArray>{"good"});
        QCOMPARE(rig.waiting(), (std::vector<std::string>{"a", "b:"}));
        std::filesystem::remove(bad);
        rig.put("a", "mended");
        rig.serveTwice();
        QCOMPARE(rig.tracker.requests(), (QList<QByteArray>{"good", "mended"}));
        QCOMPARE(readBytes(outside), "not ours"s);
    }

    void manyFilesAllHaveTheirTurn()
    {
        QueueRig rig;
        RawRequestFiles files(rig.folder, rig.store);
        for (std::size_t i = 0; i < RawRequestFiles::maxPerLook; ++i)
            std::ofstream(rig.folder.path("\\RCData\\a" + std::to_string(i))); // nobody ever writes it
        rig.put("z", "last");
        std::optional<std::string> text;
        for (int look = 0; look < 4 && !text; ++look) {
            files.look();
            text = files.takeNext();
        }
        QCOMPARE(text.value_or("nothing"), "last"s);
    }
};

QTEST_GUILESS_MAIN(RawRequestQueueTest)
#include "RawRequestQueueTest.moc"
