#include "platform/system/FileBytes.h"
#include "practice/web/UpdateSigner.h"
#include "publisher/ReleaseCheck.h"
#include "publisher/ReleaseFiles.h"
#include "publisher/ReleaseSite.h"
#include "support/AddRow.h"

#include <QTemporaryDir>

#include <functional>

namespace fs = std::filesystem;
using namespace std::string_literals;
using namespace Qt::StringLiterals;

namespace {

std::string linuxProgram(const std::string& version)
{
    return "\x7F"s + "ELF\x02\x01"s + std::string(12, '\0') + "\x3E\0"s + std::string(60, '\0') +
           "QRVRC-FILE-VERSION:" + version;
}

/// A maker's desk: the program folder of a release, and what was made of it.
struct Workshop
{
    QTemporaryDir home;
    fs::path folder = fs::path(home.path().toStdString()) / "folder";
    practice::UpdateSigner signer;
    UpdateKey key = *UpdateKey::fromText(signer.publicKey().toStdString());

    Workshop()
    {
        put("qrvv3rc", linuxProgram("3.0.9.0"));
        put("imgs/a b.gif", "picture");
        put("Plugins/a.dll", linuxProgram("1.0.0.0"));
    }
    void put(const fs::path& name, const std::string& bytes) const
    {
        fs::create_directories((folder / name).parent_path());
        writeBytes(folder / name, bytes);
    }
    /// @return the update location
    fs::path make(std::uint64_t serial) const
    {
        const fs::path root = folder.parent_path() / std::to_string(serial);
        const Release release = releasesOf({folder}).front();
        const std::string manifest = manifestText(release, serial, "2026-01-31");
        put("../news", "news");
        writeSite(root, release, manifest, folder.parent_path() / "news");
        writeBytes(root / locationFolder / "qrvv3rc_manifest.txt.minisig",
                   signer.signatureOf(QByteArray::fromStdString(manifest)).toStdString());
        return root / locationFolder;
    }
};

using Change = std::function<void(const Workshop&)>;

} // namespace

Q_DECLARE_METATYPE(Change)

class ReleaseTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatNoClientTakesIsNotMade_data()
    {
        addColumns<QString, QByteArray>("name", "bytes");
        addRow("own state", u"profiles.ini"_s, "[x]"_ba);
        addRow("own folder", u"Settings/x.ini"_s, "[x]"_ba);
        addRow("name that ends a field", u"a|b.txt"_s, "x"_ba);
        addRow("named as a list", u"plugins/QRVV3_pluginlist.txt"_s, "x"_ba);
        addRow("empty", u"empty.txt"_s, QByteArray());
        addRow("for another system", u"tool"_s,
               QByteArray::fromStdString(linuxProgram("1.0.0.0")).replace('\x3E', '\x28'));
    }
    void whatNoClientTakesIsNotMade()
    {
        QFETCH(const QString, name);
        QFETCH(const QByteArray, bytes);
        const Workshop workshop;
        workshop.put(name.toStdString(), bytes.toStdString());
        QVERIFY_THROWS_EXCEPTION(std::runtime_error, releasesOf({workshop.folder}));
    }

    void aLocationIsLookedAtAsAClientWould_data()
    {
        // change: made to the program folder between release 1 and release 2
        addColumns<Change, QString>("change", "fault");
        const auto puts = [](const char* name, const std::string& bytes) -> Change {
            return [=](const Workshop& workshop) { workshop.put(name, bytes); };
        };
        addRow("nothing changed", Change([](const Workshop&) {}), QString());
        addRow("newer", puts("qrvv3rc", linuxProgram("3.1.0.0")), QString());
        addRow("newer, but not as text", puts("qrvv3rc", linuxProgram("3.0.10.0")), u"no client would"_s);
        addRow("another picture of that size", puts("imgs/a b.gif", "PICTURE"), u"no client would"_s);
        addRow("a program that is none", puts("new.exe", "text"), u"no program for this system"_s);
        addRow("one name twice", puts("a b.gif", "other"), u"same name"_s);
        addRow("nothing that says that it is a list",
               Change([](const Workshop& workshop) { fs::remove(workshop.folder / "qrvv3rc"); }), u"no main program"_s);
    }
    void aLocationIsLookedAtAsAClientWould()
    {
        QFETCH(const Change, change);
        QFETCH(const QString, fault);
        const Workshop workshop;
        const fs::path before = workshop.make(1);
        QVERIFY(faultsOf(before, "linux-x86_64", workshop.key, {}).empty());
        change(workshop);
        std::string told;
        try {
            for (const std::string& line : faultsOf(workshop.make(2), "linux-x86_64", workshop.key, before))
                told += line;
        } catch (const std::runtime_error& error) {
            told = error.what();
        }
        QVERIFY2(fault.isEmpty() ? told.empty() : QString::fromStdString(told).contains(fault), told.c_str());
    }

    void whatWasTouchedAfterwardsIsFound_data()
    {
        addColumns<QString>("file");
        for (const char* file : {"qrvv3rc.fle", "qrvv3rc_filelist.txt", "qrvv3rc_manifest.txt", "plugins/a.dll",
                                 "plugins/qrvv3_pluginlist.txt"})
            addRow(file, QString::fromLatin1(file));
    }
    void whatWasTouchedAfterwardsIsFound()
    {
        QFETCH(const QString, file);
        const Workshop workshop;
        const fs::path location = workshop.make(1);
        appendBytes(location / file.toStdString(), "more|\\|x|x|1|1\n");
        QVERIFY(!faultsOf(location, "linux-x86_64", workshop.key, {}).empty());
    }

    void aSerialThatIsNotHigherIsRefused()
    {
        const Workshop workshop;
        const fs::path before = workshop.make(12);
        QCOMPARE(faultsOf(workshop.make(9), "linux-x86_64", workshop.key, before).size(), std::size_t{1});
    }
};

QTEST_APPLESS_MAIN(ReleaseTest)
#include "ReleaseTest.moc"
