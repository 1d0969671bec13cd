#include "updates/UpdateQueue.h"
#include "platform/net/Inet.h"
#include "platform/system/FileBytes.h"
#include "practice/web/PracticeCertificate.h"
#include "practice/web/UpdatePages.h"
#include "practice/web/WebSide.h"
#include "store/AppFolder.h"
#include "support/AddRow.h"
#include "updates/ListCheck.h"
#include "updates/UpdateState.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <QSslCertificate>
#include <QSslConfiguration>
#include <QTemporaryDir>

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
    bool obtain(std::vector<WantedFile> items, const std::function<void(UpdateQueue&)>& meanwhile = {})
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
        addColumns<QByteArray, QString>("fault", "why");
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
        if (fault == "never")
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
        QVERIFY(yard.obtain({{"QRVV3RC.exe", "\\"},
                             {"a.dll", "\\plugins\\"},
                             {"last.bin", "\\no\\such\\"},
                             {"last.bin", "\\other\\"}}));
        QVERIFY(yard.results.back().how == How::Failed); // two of one name cannot wait side by side
        yard.results.pop_back();
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

    void whatIsNotAsListedIsRefused_data()
    {
        QTest::addColumn<WantedFile>("wanted");
        QTest::addColumn<QString>("why"); // empty for none
        const std::string abc = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";
        QTest::newRow("as listed") << WantedFile{"abc.bin", "\\", 3, abc} << QString();
        QTest::newRow("longer than listed") << WantedFile{"abc.bin", "\\", 2} << u"not the one in the update list"_s;
        QTest::newRow("shorter than listed") << WantedFile{"abc.bin", "\\", 4, abc} << u"update list"_s;
        QTest::newRow("other contents") << WantedFile{"abc.bin", "\\", 3, std::string(64, '0')} << u"signed"_s;
        QTest::newRow("unproven under a key") << WantedFile{"abc.bin", "\\", 3} << u"nothing proves it"_s;
        QTest::newRow("a page for a program") << WantedFile{"tool.exe", "\\", 0} << u"no program for this system"_s;
        QTest::newRow("over the accounts") << WantedFile{"Profiles.INI", "\\"} << u"Permission"_s;
    }
    void whatIsNotAsListedIsRefused()
    {
        QFETCH(const WantedFile, wanted);
        QFETCH(const QString, why);
        Yard yard;
        copyFile(std::filesystem::read_symlink("/proc/self/exe"), yard.folder.path("\\tool.exe"));
        const std::string before = yard.get("\\tool.exe");
        for (const char* name : {"abc.bin", "tool.exe", "Profiles.INI"})
            yard.web.updates().offerClientFile({.name = name, .folder = "\\", .body = "abc"});
        QVERIFY(yard.obtain({wanted}, [&](UpdateQueue&) {
            if (why.contains(u"proves"_s))
                yard.services.key = UpdateKey::fromText(practice::UpdateSigner().publicKey().toStdString());
        }));
        QVERIFY2(why.isEmpty() ? yard.results[0].how == How::Placed : yard.results[0].why.contains(why),
                 qPrintable(yard.results[0].why));
        QCOMPARE(yard.get("\\abc.bin"), std::string(why.isEmpty() ? "abc" : "nothing"));
        QVERIFY(yard.get("\\tool.exe") == before && yard.isTidy());
    }

    void whatWaitsIsRememberedByItsChecksum()
    {
        Yard yard;
        yard.web.updates().offerClientFile({.name = "QRVV3RC.exe", .folder = "\\", .body = "abc"});
        QVERIFY(yard.obtain({{"QRVV3RC.exe", "\\"}, {"data.bin", "\\"}, {"last.bin", "\\"}}));
        const auto digests = UpdateState(yard.folder).digests();
        QCOMPARE(digests.at("QRVV3RC.exe").substr(0, 8), std::string("ba7816bf"));
        QCOMPARE(digests.size(), std::size_t{1});
        QCOMPARE(yard.get("\\Replaced\\data.bin"), std::string("old data"));
        QCOMPARE(UpdateState(yard.folder).added().front().name, std::string("last.bin"));
    }

    void onlyTheManifestOfTheKeyCounts_data()
    {
        // page: served in place of the manifest, if any
        addColumns<QByteArray, bool, QByteArray, QString>("page", "isHashed", "fault", "why");
        addRow("signed", QByteArray(), true, "none"_ba, QString());
        addRow("not there", QByteArray(), true, "notfound"_ba, u"no manifest"_s);
        addRow("cannot be had", QByteArray(), true, "cutoff:9"_ba, u"no manifest"_s);
        addRow("of another kind of signature", "serial 7\ndate 2026-01-01\n"_ba, false, "none"_ba, QString());
        addRow("of an older release", "serial 4\ndate 2026-01-01\n"_ba, true, "none"_ba, u"older"_s);
        addRow("unreadable", "serial x\n"_ba, true, "none"_ba, u"cannot be read"_s);
        addRow("changed", "serial 7\ndate 2026-01-02\n"_ba, true, "signature"_ba, u"not signed"_s);
    }
    void onlyTheManifestOfTheKeyCounts()
    {
        QFETCH(const QByteArray, page);
        QFETCH(const bool, isHashed);
        QFETCH(const QByteArray, fault);
        QFETCH(const QString, why);
        const practice::UpdateSigner signer;
        Yard yard;
        yard.services.key = UpdateKey::fromText(signer.publicKey().toStdString());
        QVERIFY(yard.services.key);
        UpdateState(yard.folder).noteSerial(yard.services.key->digits(), 5);
        yard.web.updates().sign(signer, 5);
        if (!page.isEmpty()) {
            yard.web.updates().setPage("qrvv3rc_manifest.txt", page);
            const QByteArray text = fault == "signature" ? page + ' ' : page;
            yard.web.updates().setPage("qrvv3rc_manifest.txt.minisig", signer.signatureOf(text, isHashed));
        }
        yard.web.updates().misbehave("qrvv3rc_manifest.txt", PageFault::parse(fault).value_or(PageFault()));
        ListCheck check(yard.services, clientCheck, 30s);
        QTRY_VERIFY(check.isOver());
        QVERIFY2(check.hasList() == why.isEmpty() && check.fault().contains(why), qPrintable(check.fault()));
        if (!why.isEmpty())
            QVERIFY(check.candidates().isEmpty() && check.candidates().refused.empty());
        else if (page.isEmpty())
            QVERIFY(!check.candidates().added.empty() && check.candidates().added[0].digest.size() == 64);
        else
            QCOMPARE(check.candidates().refused.size(), std::size_t{3}); // it says nothing of them
        QCOMPARE(UpdateState(yard.folder).highestSerial(yard.services.key->digits()),
                 std::uint64_t(why.isEmpty() && !page.isEmpty() ? 7 : 5));
    }

    void aReleaseThatComesBetweenTheAnswersIsReadAnew()
    {
        const practice::UpdateSigner signer;
        Yard yard;
        practice::UpdatePages& pages = yard.web.updates();
        yard.services.key = UpdateKey::fromText(signer.publicKey().toStdString());
        const QByteArray text = "serial 7\ndate 2026-01-01\n";
        pages.setPage("qrvv3rc_manifest.txt", "serial 6\ndate 2026-01-01\n");
        pages.setPage("qrvv3rc_manifest.txt.minisig", signer.signatureOf(text));
        connect(&pages, &practice::UpdatePages::pageRequested, &pages, [&](const QByteArray& name) {
            if (pages.requested().count(name) == 2)
                pages.setPage("qrvv3rc_manifest.txt", text);
        });
        ListCheck check(yard.services, clientCheck, 30s);
        QTRY_VERIFY(check.isOver());
        QVERIFY2(check.hasList(), qPrintable(check.fault()));
    }

    void aPackagedProgramLooksForPluginsOnly()
    {
        Yard yard;
        yard.services.isPackaged = true;
        ListCheck client(yard.services, clientCheck, 30s);
        ListCheck plugins(yard.services, pluginCheck, 30s);
        QTRY_VERIFY(client.isOver() && plugins.isOver());
        QVERIFY(!client.hasList() && client.fault().isEmpty() && plugins.hasList());
        QVERIFY(!yard.web.updates().requested().contains("qrvv3rc_filelist.txt"));
    }

    void listsBeyondTheBoundsAreRefused()
    {
        QByteArray list = "qrvv3rc.exe|\\|executable file|(qrv) main executable|1|1.0.0.0\n";
        for (int line = 1; line < 20'000; ++line)
            list += "data.bin|\\|f|d|8|1\n";
        for (const auto& [text, why] : {std::pair(list, u""_s), std::pair(list + "x|\\|f|d|8|1\n", u"20000 files"_s),
                                        std::pair(list + QByteArray(1 << 20, ' '), u"1024 KiB"_s)}) {
            Yard yard;
            yard.web.updates().setPage("qrvv3rc_filelist.txt", text);
            ListCheck check(yard.services, clientCheck, 30s);
            QTRY_VERIFY(check.isOver());
            QVERIFY2(check.hasList() == why.isEmpty() && check.fault().contains(why), qPrintable(check.fault()));
        }
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
        addColumns<QByteArray, bool>("fault", "hasList");
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
