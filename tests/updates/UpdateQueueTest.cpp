#include "updates/UpdateQueue.h"
#include "platform/net/Inet.h"
#include "platform/system/FileBytes.h"
#include "practice/web/PracticeCertificate.h"
#include "practice/web/UpdatePages.h"
#include "practice/web/WebSide.h"
#include "store/AppFolder.h"
#include "updates/ListCheck.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTemporaryDir>
#include <QTest>

#include <csignal>
#include <sys/resource.h>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::PageFault;

namespace {

/// A program folder and an update location with files for it.
struct Yard
{
    QTemporaryDir home;
    AppFolder folder{home.path().toStdU16String()};
    UpdateTargets targets{folder, folder.path("\\qrvv3rc"), {}};
    practice::WebSide web;
    Inet inet;
    UpdateServices services{.inet = inet, .targets = targets, .clientVersion = "3.0.1.0", .makerHost = {}};
    std::vector<ObtainedFile> results;
    qint64 received = 0;

    Yard()
    {
        if (!web.listen())
            qFatal("no port");
        services.location = web.base().toString() + u"/downloads/QRVV3/rc/"_s;
        folder.makeFolder("\\Plugins");
        put("\\data.bin", "old data");
        put("\\qrvv3rc", "old program");
        web.updates().offerClientFile({.name = "data.bin", .folder = "\\", .body = QByteArray(200'000, 'n')});
        web.updates().offerClientFile({.name = "last.bin", .folder = "\\", .body = "the last"});
        web.updates().offerClientFile({.name = "QRVV3RC.exe", .folder = "\\", .body = "new program"});
        web.updates().offerClientFile({.name = "exe.setup.exe", .folder = "\\", .body = "#!/bin/sh\n"});
    }
    void put(std::string_view name, std::string_view bytes) const { writeBytes(folder.path(name), bytes); }
    std::string get(std::string_view name) const { return readBytesIfPresent(folder.path(name)).value_or("nothing"); }

    /// @return whether the queue came to its end
    bool obtain(std::vector<WaitingFile> items, const std::function<void(UpdateQueue&)>& meanwhile = {})
    {
        UpdateQueue queue(services, ListKind::Client, services.location, std::move(items));
        bool isOver = false;
        received = 0;
        QObject::connect(&queue, &UpdateQueue::finished, &queue, [&isOver] { isOver = true; });
        QObject::connect(&queue, &UpdateQueue::received, &queue, [this](qint64 bytes) { received += bytes; });
        queue.start();
        if (meanwhile)
            meanwhile(queue);
        const bool came = QTest::qWaitFor([&isOver] { return isOver; }, 30'000);
        results = queue.results();
        return came;
    }
    /// Hidden files that a transfer has left behind.
    bool isTidy() const
    {
        for (const std::string& name : folder.fileNames("\\"))
            if (name.starts_with('.'))
                return false;
        return true;
    }
};

using How = ObtainedFile::How;

} // namespace

class UpdateQueueTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void filesComeToTheirPlace()
    {
        Yard yard;
        QVERIFY(yard.obtain({{"data.bin", "\\"}, {"exe.setup.exe", "\\"}}));
        QCOMPARE(yard.get("\\data.bin"), std::string(200'000, 'n'));
        QCOMPARE(yard.get("\\exe.setup.exe"), std::string("#!/bin/sh\n")); // under its own name
        QCOMPARE(yard.received, 200'010);
        QVERIFY(yard.isTidy() && !yard.folder.folderExists("\\Updates"));
        QCOMPARE(yard.web.updates().requested(), (QList<QByteArray>{"data.bin", "fle.setup.fle"}));
        const auto rights = std::filesystem::status(yard.folder.path("\\exe.setup.exe")).permissions();
        QVERIFY((rights & std::filesystem::perms::owner_exec) != std::filesystem::perms::none);
    }

    void whatGoesWrongLeavesTheOldFileAndTheQueueGoesOn_data()
    {
        QTest::addColumn<QByteArray>("fault");
        QTest::addColumn<QString>("why");
        QTest::newRow("not there") << "notfound"_ba << u"error 404"_s;
        QTest::newRow("error of the host") << "status:500"_ba << u"error 500"_s;
        QTest::newRow("cut off at once") << "cutoff:0"_ba << u"broke off"_s;
        QTest::newRow("cut off in the middle") << "cutoff:100000"_ba << u"broke off"_s;
        QTest::newRow("redirect to an error") << "redirect"_ba << u"error 404"_s;
        QTest::newRow("redirects for ever") << "loop"_ba << u"update location"_s;
        QTest::newRow("silent") << "never"_ba << u"nothing came"_s;
        QTest::newRow("without a length") << "nolength"_ba << u"length"_s;
    }
    void whatGoesWrongLeavesTheOldFileAndTheQueueGoesOn()
    {
        QFETCH(const QByteArray, fault);
        QFETCH(const QString, why);
        Yard yard;
        yard.services.silenceLimit = 300ms;
        yard.web.updates().misbehave("data.bin", PageFault::parse(fault).value());
        QVERIFY(yard.obtain({{"data.bin", "\\"}, {"last.bin", "\\"}}));
        QCOMPARE(yard.results.size(), std::size_t{2});
        QVERIFY(yard.results[0].how == How::Failed);
        QVERIFY2(yard.results[0].why.contains(why), qPrintable(yard.results[0].why));
        QVERIFY(yard.results[1].how == How::Placed);
        QCOMPARE(yard.get("\\data.bin"), std::string("old data"));
        QCOMPARE(yard.get("\\last.bin"), std::string("the last"));
        QVERIFY(yard.isTidy() && !yard.folder.folderExists("\\Updates"));
    }

    void aSlowTransferIsNoSilentOne()
    {
        Yard yard;
        yard.services.silenceLimit = 2s;
        yard.web.updates().misbehave("last.bin", {.kind = PageFault::Kind::Slow, .number = 1, .pause = 5ms});
        QVERIFY(yard.obtain({{"last.bin", "\\"}}));
        QCOMPARE(yard.get("\\last.bin"), std::string("the last"));
    }

    void aFullDiskIsToldAndTheQueueGoesOn()
    {
        Yard yard;
        std::signal(SIGXFSZ, SIG_IGN);
        rlimit old = {};
        ::getrlimit(RLIMIT_FSIZE, &old);
        const rlimit small = {.rlim_cur = 100'000, .rlim_max = old.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &small);
        const bool came = yard.obtain({{"data.bin", "\\"}, {"last.bin", "\\"}});
        ::setrlimit(RLIMIT_FSIZE, &old);
        QVERIFY(came);
        QVERIFY(yard.results[0].how == How::Failed && !yard.results[0].why.isEmpty());
        QVERIFY(yard.results[1].how == How::Placed);
        QCOMPARE(yard.get("\\data.bin"), std::string("old data"));
        QVERIFY(yard.isTidy());
    }

    void whatIsInUseOrHasNoFolderWaits()
    {
        Yard yard;
        yard.put("\\Plugins\\a.dll", "old plugin");
        yard.web.updates().offerClientFile({.name = "a.dll", .folder = "\\plugins\\", .body = "new plugin"});
        yard.services.isInUse = [&](const std::filesystem::path& file) {
            return file == yard.folder.path("\\Plugins\\a.dll");
        };
        QVERIFY(yard.obtain({{"QRVV3RC.exe", "\\"}, {"a.dll", "\\plugins\\"}, {"last.bin", "\\no\\such\\"}}));
        for (const ObtainedFile& file : yard.results)
            QVERIFY2(file.how == How::Diverted, qPrintable(file.why));
        QCOMPARE(yard.get("\\qrvv3rc"), std::string("old program"));
        QCOMPARE(yard.get("\\Plugins\\a.dll"), std::string("old plugin"));
        QCOMPARE(yard.get("\\Updates\\QRVV3RC.exe"), std::string("new program"));
        const std::vector<WaitingFile> expected{
            {"QRVV3RC.exe", "\\"}, {"a.dll", "\\plugins\\"}, {"last.bin", "\\no\\such\\"}};
        QVERIFY(waitingFiles(yard.folder) == expected);
        QCOMPARE(yard.folder.fileNames("\\Updates").size(), std::size_t{4});
    }

    void hostileNamesAreRefusedAgain()
    {
        Yard yard;
        QVERIFY(yard.obtain({{"..\\x", "\\"}, {"x", "\\..\\"}, {"x.ocx", "{System}"}, {"last.bin", "\\"}}));
        QCOMPARE(yard.results.size(), std::size_t{4});
        QCOMPARE(std::count_if(yard.results.begin(), yard.results.end(),
                               [](const ObtainedFile& file) { return file.how == How::Failed; }),
                 3);
        QCOMPARE(yard.web.updates().requested(), QList<QByteArray>{"last.bin"});
    }

    void cancellingLeavesTheRest()
    {
        Yard yard;
        yard.web.updates().misbehave("data.bin", {.kind = PageFault::Kind::Slow, .number = 1000, .pause = 10ms});
        QVERIFY(yard.obtain({{"data.bin", "\\"}, {"last.bin", "\\"}}, [&](UpdateQueue& queue) {
            QTRY_VERIFY(yard.received > 0);
            queue.cancel();
            QVERIFY(queue.isCancelled());
        }));
        QCOMPARE(yard.get("\\data.bin"), std::string("old data"));
        QCOMPARE(yard.get("\\last.bin"), std::string("nothing"));
        QVERIFY(yard.isTidy());
    }

    void signedChecksumsDecideWhenThereIsAKey_data()
    {
        // Made once with a key of its own; it signs "abc.bin" with the contents "abc".
        const QByteArray sums = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad  abc.bin\r\n";
        const QByteArray signature =
            "0LE8n1nfDkovCbcWj+4U3OpbBq25OSlhTvyAICSrHqIuFbXChtOfWkMumrc55GuJ9g9xG/CZS2TGP1iZ6RQqBw==\n";
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("sums");
        QTest::addColumn<QByteArray>("signature");
        QTest::addColumn<QByteArray>("fault");
        QTest::addColumn<bool>("isTaken");
        QTest::newRow("as signed") << "abc"_ba << sums << signature << "none"_ba << true;
        QTest::newRow("other contents") << "abd"_ba << sums << signature << "none"_ba << false;
        QTest::newRow("not in the list") << "abc"_ba
                                         << "\r\n"_ba << signature << "none"_ba << false;
        QTest::newRow("list changed") << "abc"_ba << sums + ' ' << signature << "none"_ba << false;
        QTest::newRow("no signature") << "abc"_ba << sums << QByteArray() << "none"_ba << false;
        QTest::newRow("no list offered") << "abd"_ba << QByteArray() << QByteArray() << "notfound"_ba << true;
        QTest::newRow("list cannot be had") << "abc"_ba << sums << signature << "status:503"_ba << false;
    }
    void signedChecksumsDecideWhenThereIsAKey()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QByteArray, sums);
        QFETCH(const QByteArray, signature);
        QFETCH(const QByteArray, fault);
        QFETCH(const bool, isTaken);
        Yard yard;
        yard.services.key = UpdateKey::fromText("2Vtr74XT+HkmaYxYRLH7wthjyESlvxlic8FQqdnb2Oc=");
        QVERIFY(yard.services.key);
        yard.web.updates().offerClientFile({.name = "abc.bin", .folder = "\\", .body = body});
        yard.web.updates().setPage("qrvv3rc_sha256.txt", sums);
        if (!signature.isEmpty())
            yard.web.updates().setPage("qrvv3rc_sha256.txt.sig", signature);
        yard.web.updates().misbehave("qrvv3rc_sha256.txt", PageFault::parse(fault).value());
        QVERIFY(yard.obtain({{"abc.bin", "\\"}}));
        QCOMPARE(yard.results.size(), std::size_t{1});
        QVERIFY2((yard.results[0].how == How::Placed) == isTaken, qPrintable(yard.results[0].why));
        QCOMPARE(yard.get("\\abc.bin"), isTaken ? body.toStdString() : std::string("nothing"));
        QVERIFY(yard.isTidy());
    }

    void aHostWhoseCertificateNobodyVouchesForIsNotBelieved()
    {
        Yard yard;
        yard.services.location = yard.web.listenSecurely().toString() + u"/Quorvane/qrvrc/"_s;
        QVERIFY(yard.services.location.startsWith(u"https://"));
        QVERIFY(yard.obtain({{"last.bin", "\\"}}));
        QVERIFY(yard.results[0].how == How::Failed);

        QSslConfiguration trusting = QSslConfiguration::defaultConfiguration();
        trusting.addCaCertificate(QSslCertificate(QByteArray(practice::certificatePem)));
        QSslConfiguration::setDefaultConfiguration(trusting);
        Yard other;
        other.services.location = other.web.listenSecurely().toString() + u"/Quorvane/qrvrc/"_s;
        QVERIFY(other.obtain({{"last.bin", "\\"}}));
        QVERIFY2(other.results[0].how == How::Placed, qPrintable(other.results[0].why));
    }

    void onlyAWholeListIsAList_data()
    {
        QTest::addColumn<QByteArray>("fault");
        QTest::addColumn<bool>("hasList");
        QTest::newRow("whole") << "none"_ba << true;
        QTest::newRow("slow") << "slow:20:1"_ba << true;
        QTest::newRow("error page with a good status") << "errorpage"_ba << false;
        QTest::newRow("behind the marker, cut off") << "cutoff:80"_ba << false;
        QTest::newRow("redirect to an error") << "redirect"_ba << false;
        QTest::newRow("silent") << "never"_ba << false;
    }
    void onlyAWholeListIsAList()
    {
        QFETCH(const QByteArray, fault);
        Yard yard;
        yard.web.updates().misbehave("qrvv3rc_filelist.txt", PageFault::parse(fault).value());
        ListCheck check(yard.services, clientCheck, fault == "never" ? 300ms : 30s);
        QTRY_VERIFY(check.isOver());
        QTEST(check.hasList(), "hasList");
        QCOMPARE(check.candidates().added.size(), std::size_t(check.hasList() ? 2 : 0));
    }

    void locationsThatAreNoWebAddressesAreNotAsked()
    {
        for (const QString& location : {QString(), u"file:///etc/"_s, u"http:///"_s, u"nonsense"_s})
            QVERIFY(addressAt(location, ListKind::Client, "x").isEmpty());
        QCOMPARE(addressAt(u"http://h/a/"_s, ListKind::Plugins, "a b#1.dll").toString(QUrl::FullyEncoded),
                 u"http://h/a/plugins/a%20b%231.dll"_s);
    }
};

QTEST_GUILESS_MAIN(UpdateQueueTest)
#include "UpdateQueueTest.moc"
