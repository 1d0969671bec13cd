#include "updates/UpdateCheck.h"
#include "base/Base64.h"
#include "base/RaisedError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "support/AddRow.h"
#include "updates/DiskFacts.h"
#include "updates/NewsFrequency.h"
#include "updates/UpdateKey.h"
#include "updates/UpdateManifest.h"
#include "updates/UpdateTargets.h"

#include <QTemporaryDir>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view mainLine = "qrvv3rc.exe|\\|Executable file|(QRV) Main Executable|100|3.0.1.0\r\n";

UpdateRecord record(std::string name, std::string folder, std::int32_t size, std::string version,
                    std::string type = "data file")
{
    return {std::move(name), std::move(folder), std::move(type), "", size, std::move(version)};
}

/// A program folder with a few files of every kind.
struct Disk
{
    QTemporaryDir home;
    AppFolder folder{home.path().toStdU16String()};
    UpdateTargets targets{folder, folder.path("\\bin\\qrvv3rc"), {}};

    Disk()
    {
        folder.makeFolder("\\Plugins");
        folder.makeFolder("\\bin");
        folder.makeFolder("\\settings");
        put("\\bin\\qrvv3rc", "the program");
        put("\\data.bin", std::string(50, 'x'));
        put("\\Plugins\\a.dll", "code QRVRC-FILE-VERSION:1.2.0.0");
        put("\\Plugins\\a.html", std::string(70, 'h'));
        put("\\help.chm", "manual");
    }
    void put(std::string_view name, std::string_view bytes) const { writeBytes(folder.path(name), bytes); }
    Verdict judge(const UpdateRecord& offered, CheckRule rule = CheckRule::Client) const
    {
        const ListKind kind = rule == CheckRule::Client ? ListKind::Client : ListKind::Plugins;
        return classify(offered, diskFacts(targets, kind, "3.0.1.0", helpVersionFile), rule);
    }
};

} // namespace

class UpdateCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void onlyTextsWithTheMarkerAreLists_data()
    {
        addColumns<QByteArray, bool, bool>("text", "isClientList", "isPluginList");
        addRow("client list", QByteArray(mainLine.data()), true, false);
        addRow("plugin list", QByteArray("a.dll|\\Plugins\\|Plugin|x|1|1.0.0.0"), false, true);
        addRow("marker split by a line end", QByteArray("qrvv3rc.exe|\\|executable\n file|(qrv) main executable|"),
               false, false);
        addRow("error page", QByteArray("<html>Page not found</html>"), false, false);
        addRow("nothing", QByteArray(), false, false);
    }
    void onlyTextsWithTheMarkerAreLists()
    {
        QFETCH(const QByteArray, text);
        QTEST(isUpdateList(text.toStdString(), ListKind::Client), "isClientList");
        QTEST(isUpdateList(text.toStdString(), ListKind::Plugins), "isPluginList");
    }

    void aListBecomesRecords()
    {
        const std::vector<UpdateRecord> records = parseUpdateList(std::string(mainLine) + "short|line|only\n\n" +
                                                                  "b|\\x\\|t|d|99999999999|1|more\nc|\\|t|d|-3|");
        QCOMPARE(records.size(), std::size_t{3});
        QVERIFY(records[0] ==
                (UpdateRecord{"qrvv3rc.exe", "\\", "Executable file", "(QRV) Main Executable", 100, "3.0.1.0"}));
        QVERIFY(records[1] == (UpdateRecord{"b", "\\x\\", "t", "d", 0, "1"}));
        QVERIFY(records[2] == (UpdateRecord{"c", "\\", "t", "d", 0, ""}));
        QCOMPARE(requestedName("exe.setup.exe"), std::string("fle.setup.fle"));
    }

    void recordsAreComparedWithTheDisk_data()
    {
        using R = CheckRule;
        using V = Verdict;
        addColumns<UpdateRecord, CheckRule, Verdict>("offered", "rule", "verdict");
        const std::string plugins = "\\plugins\\";
        addRow("missing", record("new.bin", "\\", 1, ""), R::Client, V::New);
        addRow("missing with its folder", record("n", "\\no\\such\\", 1, ""), R::Client, V::New);
        addRow("same size, no version", record("DATA.bin", "\\", 50, "9"), R::Client, V::Nothing);
        addRow("other size, no version", record("data.bin", "\\", 51, "0"), R::Client, V::Changed);
        addRow("the program, same version", record("qrvv3rc.exe", "\\", 1, "3.0.1.0"), R::Client, V::Nothing);
        addRow("the program, newer", record("qrvv3rc.exe", "\\", 1, "3.0.2.0"), R::Client, V::Updated);
        addRow("newer", record("a.dll", plugins, 1, "1.3.0.0"), R::Plugins, V::Updated);
        addRow("1.10 is less than 1.2 as text", record("a.dll", plugins, 1, "1.10.0.0"), R::Plugins, V::Nothing);
        addRow("older", record("a.dll", plugins, 1, "1.1.9.9"), R::Client, V::Nothing);
        addRow("help file by size", record("a.html", plugins, 71, "", "Help File"), R::PluginsByClock, V::Changed);
        addRow("versioned help file by size alone", record("a.dll", plugins, 31, "9", "Help File"), R::PluginsByClock,
               V::Nothing);
        addRow("the same by its version, when asked by hand", record("a.dll", plugins, 31, "9", "Help File"),
               R::Plugins, V::Updated);
        addRow("system folder", record("x.ocx", "{System}", 1, "1"), R::Client, V::Nothing);
        addRow("manual not noted anywhere", record("help.chm", "\\", 1, "9"), R::Client, V::Nothing);
        addRow("manual is a file like others for plugins", record("help.chm", "\\", 1, "9"), R::Plugins, V::Changed);
    }
    void recordsAreComparedWithTheDisk()
    {
        QFETCH(const UpdateRecord, offered);
        QFETCH(const CheckRule, rule);
        QTEST(Disk().judge(offered, rule), "verdict");
    }

    void theManualIsJudgedByItsNotedVersion()
    {
        const Disk disk;
        const UpdateRecord offered = record("help.chm", "\\elsewhere\\", 1, "1.0.0.1");
        disk.put("\\config.ini", "[Other]\r\n");
        QCOMPARE(disk.judge(offered), Verdict::Updated); // nothing noted means 1.0.0.0
        noteHelpVersion(disk.targets, "1.0.0.1");
        QCOMPARE(disk.judge(offered), Verdict::Nothing);
        disk.put("\\settings\\config.ini", "[Settings]\r\nhelp=1.0.0.0\r\n");
        const LocalFacts byClock = diskFacts(disk.targets, ListKind::Client, "", helpVersionFileByClock);
        QCOMPARE(classify(offered, byClock, CheckRule::Client), Verdict::Updated);
        fs::remove(disk.folder.path("\\help.chm"));
        QCOMPARE(disk.judge(offered), Verdict::New);
        QCOMPARE(disk.judge(record("Help.chm", "\\", 1, "")), Verdict::New); // another file by its case
    }

    void systemFilesAreOnlyForSystemsThatHaveSuchAFolder()
    {
        const Disk disk;
        const UpdateTargets withSystem(disk.folder, {}, disk.folder.path("\\Plugins"));
        const UpdateRecord offered = record("a.dll", "{System}", 1, "2");
        QCOMPARE(classify(offered, diskFacts(withSystem, ListKind::Client, "", helpVersionFile), CheckRule::Client),
                 Verdict::Updated);
        QCOMPARE(raisedBy([&] { withSystem.pathOf("a.dll", "{System}", ListKind::Plugins); }),
                 numberOf(ErrorNumber::PermissionDenied));
    }

    void hostileRecordsAreKeptAside_data()
    {
        addColumns<std::string, std::string>("name", "folder");
        addRow("up by the name", std::string("..\\x"), std::string("\\"));
        addRow("up by the other separator", std::string("../x"), std::string("\\"));
        addRow("up by the folder", std::string("x"), std::string("\\..\\"));
        addRow("up and back", std::string("x"), std::string("\\Plugins\\..\\..\\"));
        addRow("a drive", std::string("x"), std::string("C:\\"));
        addRow("a share", std::string("x"), std::string("\\\\host\\share\\"));
        addRow("the root", std::string("x"), std::string("/etc/"));
        addRow("no separator at the end", std::string("x"), std::string("\\Plugins"));
        addRow("a link that leads out", std::string("x"), std::string("\\out\\"));
        addRow("a device", std::string("nul.dll"), std::string("\\"));
        addRow("no name", std::string(), std::string("\\"));
        addRow("up in the manual's name", std::string("help.chm"), std::string("\\..\\"));
        addRow("system folder by a path", std::string("..\\x"), std::string("{System}"));
        addRow("settings", std::string("config.ini"), std::string("\\Settings\\"));
        addRow("below what was sent", std::string("x"), std::string("\\RCDATA\\a\\"));
        addRow("what waits", std::string("updates.ini"), std::string("\\updates\\"));
        addRow("what was replaced", std::string("x"), std::string("\\Replaced\\"));
        addRow("saved conversations", std::string("x"), std::string("\\SupportSaves\\"));
        addRow("their short form", std::string("x"), std::string("\\SUPPOR~1\\"));
        addRow("accounts", std::string("PROFILES.ini"), std::string("\\"));
        addRow("their short form", std::string("PROFIL~1.INI"), std::string("\\"));
        addRow("another short form", std::string("PRA3F2~1.INI"), std::string("\\"));
        addRow("the lock", std::string("instance.lock"), std::string("\\"));
        addRow("the error log", std::string("ErrorLog.txt"), std::string("\\"));
        addRow("the journal", std::string("JOURNAL.txt"), std::string("\\"));
        addRow("a link to the settings", std::string("config.ini"), std::string("\\link\\"));
    }
    void hostileRecordsAreKeptAside()
    {
        QFETCH(const std::string, name);
        QFETCH(const std::string, folder);
        const Disk disk;
        fs::create_directory_symlink(fs::temp_directory_path(), disk.folder.root() / "out");
        fs::create_directory_symlink(disk.folder.path("\\settings"), disk.folder.root() / "link");
        const LocalFacts facts = diskFacts(disk.targets, ListKind::Client, "", helpVersionFile);
        Candidates found;
        found.take(record(name, folder, 1, "9"), facts, CheckRule::Client);
        found.take(record("good.bin", "\\", 1, "9"), facts, CheckRule::Client);
        QCOMPARE(found.refused.size(), std::size_t{1});
        QCOMPARE(found.added.size(), std::size_t{1});
        QCOMPARE(raisedBy([&] { disk.targets.pathOf(name, folder, ListKind::Client); }),
                 numberOf(ErrorNumber::PermissionDenied));
    }

    void aFileIsReadOnceHoweverOftenItIsNamed()
    {
        const Disk disk;
        const fs::path file = disk.folder.root() / "big.bin";
        writeBytes(file, "as long as it was");
        const LocalFacts facts = diskFacts(disk.targets, ListKind::Client, "", helpVersionFile);
        QCOMPARE(facts.file(record("big.bin", "\\", 1, "9"))->size, std::uint64_t{17});
        writeBytes(file, "");
        QCOMPARE(facts.file(record("BIG.BIN", "\\", 1, "9"))->size, std::uint64_t{17});
    }

    void manifestsAreWholeOrNone_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<int>("files"); // -1 for no manifest
        const std::string head = "serial 12\ndate 2026-03-01\n";
        const std::string line = std::string(64, 'A') + " 5 1.0 \\My Files\\ a b.dll\n";
        addRow("one file", head + line, 1);
        addRow("with carriage returns and without an end",
               "serial 12\r\ndate 2026-03-01\r\n\r\n" + std::string(64, '0') + " 0 - {System} x.ocx", 1);
        addRow("no file", head, 0);
        addRow("no date", std::string("serial 12\n"), -1);
        addRow("bad date", "serial 12\ndate 2026-3-01\n" + line, -1);
        addRow("bad serial", "serial -1\ndate 2026-03-01\n" + line, -1);
        addRow("huge serial", "serial 99999999999999999999\ndate 2026-03-01\n" + line, -1);
        addRow("one file twice", head + line + lowerAscii(line), -1);
        addRow("short digest", head + line.substr(1), -1);
        addRow("no name", head + line.substr(0, line.size() - 8) + '\n', -1);
        addRow("no size", head + std::string(64, 'a') + " x 1 \\ a\n", -1);
        addRow("no folder", head + std::string(64, 'a') + " 1 1 \\a\n", -1);
    }
    void manifestsAreWholeOrNone()
    {
        QFETCH(const std::string, text);
        QFETCH(const int, files);
        const std::optional<UpdateManifest> manifest = UpdateManifest::parse(text);
        QCOMPARE(manifest ? static_cast<int>(manifest->size()) : -1, files);
        if (files != 1)
            return;
        QCOMPARE(manifest->serial(), std::uint64_t{12});
        const ManifestEntry* entry = manifest->find("\\my files\\", "A B.dll");
        if (!entry)
            entry = manifest->find("{System}", "X.OCX");
        QVERIFY(entry);
        UpdateRecord same = record(entry->name, entry->folder, static_cast<std::int32_t>(entry->size), entry->version);
        QVERIFY(agrees(*entry, same));
        QVERIFY(!agrees(*entry, record(same.name, same.folder, same.size + 1, same.version)));
        QVERIFY(!agrees(*entry, record(same.name, same.folder, same.size, "2")));
        QVERIFY(!agrees(*entry, record(same.name, "\\", same.size, same.version)));
    }

    void aSignatureFileIsOfItsKeyItsTextAndItsComment()
    {
        // Made with the signing tool that publishers use.
        const std::string file =
            "untrusted comment: signature from minisign secret key\n"
            "RUQf6LRCGA9i559r3g7V1qNyJDApGip8MfqcadIgT9CuhV3EMhHoN1mGTkUidF/z7SrlQgXdy8ofjb7bNJJylDOocrCo8KLz"
            "Zwo=\n"
            "trusted comment: timestamp:1556193335\tfile:test\n"
            "y/rUw2y8/hOUYjZU71eHp/Wo1KZ40fGy2VJEDl34XMJM+TX48Ss/17u3IvIfbVR1FkZZSNCisQbuQY+bHwhEBg==\n";
        const auto key = UpdateKey::fromText(" RWQf6LRCGA9i53mlYecO4IzT51TGPpvWucNSCh1CBM0QTaLn73Y7GFO3\r\n");
        QVERIFY(key && key->hasSigned("test", file));
        QVERIFY(key->hasSigned("test", replaced(file, "\n", "\r\n")));
        QVERIFY(!key->hasSigned("Test", file));
        for (const auto& [was, is] :
             {std::pair("timestamp:1", "timestamp:2"), std::pair("RUQf", "RWQf"), std::pair("RUQf6", "RUQf7"),
              std::pair("untrusted", "trusted"), std::pair("trusted comment: t", "t"), std::pair("y/rU", "z/rU"),
              std::pair("Zwo=", "Zwo"), std::pair("EBg==\n", "EBg==\nmore")})
            QVERIFY2(!key->hasSigned("test", replaced(file, was, is)), was);
        const auto bare = UpdateKey::fromText(
            base64::encode(base64::decode("RWQf6LRCGA9i53mlYecO4IzT51TGPpvWucNSCh1CBM0QTaLn73Y7GFO3").substr(10)));
        QVERIFY(bare && bare->hasSigned("test", file) && bare->digits() == key->digits());
        for (const char* text : {"", "RWQf6LRCGA9i53mlYecO4IzT51TGPpvWucNSCh1CBM0QTaLn73Y7GFO", "!", "AAAA"})
            QVERIFY2(!UpdateKey::fromText(text), text);
    }

    void newsAreFetchedByTheClock_data()
    {
        addColumns<std::string, std::string, int, bool, bool>("stored", "frequency", "hour", "isShown", "due");
        const auto row = [](const char* what, const char* stored, const char* frequency, int hour, bool due) {
            addRow(what, std::string(stored), std::string(frequency), hour, true, due);
        };
        row("never fetched", "", "Day", 9, true);
        row("garbage", "news", "Day", 9, true);
        row("no hour", "5-", "6 Hours", 9, true);
        row("same hour", "5-9", "1 Hour", 9, false);
        row("next hour", "5-9", "1 Hour", 10, true);
        row("three hours, two passed", "5-9", "3 Hours", 11, false);
        row("three hours passed", "5-9", "3 Hours", 12, true);
        row("six hours, five passed", "5-9", "6 Hours", 14, false);
        row("six hours passed", "5-9", "6 Hours", 15, true);
        row("twelve hours, eleven passed", "5-0", "12 Hours", 11, false);
        row("twelve hours passed", "5-0", "12 Hours", 12, true);
        row("a day, at its end", "5-0", "Day", 23, false);
        row("a day, the next one", "4-23", "Day", 0, true);
        row("another day", "4-9", "12 Hours", 0, true);
        row("a clock that was set back", "5-23", "1 Hour", 1, false);
        row("huge numbers", "5--2147483648", "1 Hour", 9, true);
        addRow("nothing shown", std::string("5-9"), std::string("Day"), 9, false, true);
    }
    void newsAreFetchedByTheClock()
    {
        QFETCH(const std::string, stored);
        QFETCH(const std::string, frequency);
        QFETCH(const int, hour);
        QFETCH(const bool, isShown);
        QTEST(areNewsDue(stored, frequency, {.day = 5, .hour = hour}, isShown), "due");
        QCOMPARE(newsStamp({.day = 5, .hour = 9}), std::string("5-9"));
    }
};

QTEST_APPLESS_MAIN(UpdateCheckTest)
#include "UpdateCheckTest.moc"
