#include "platform/system/FileBytes.h"

#include "base/RaisedError.h"

#include <QTemporaryDir>
#include <QtTest>

#include <csignal>
#include <fstream>

#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

/// No file may grow beyond `bytes` while this lives, as on a disk that is full.
class SmallDisk
{
public:
    explicit SmallDisk(rlim_t bytes)
    {
        std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &m_before);
        const rlimit small = {bytes, m_before.rlim_max};
        setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk() { setrlimit(RLIMIT_FSIZE, &m_before); }
    SmallDisk(const SmallDisk&) = delete;
    SmallDisk& operator=(const SmallDisk&) = delete;

private:
    rlimit m_before = {};
};

/// Acts as a user to whom rights apply: the superuser may write anywhere.
class OrdinaryUser
{
public:
    OrdinaryUser() : m_changed(geteuid() == 0 && seteuid(nobody) == 0) {}
    ~OrdinaryUser()
    {
        if (m_changed && seteuid(0) != 0)
            std::abort();
    }
    OrdinaryUser(const OrdinaryUser&) = delete;
    OrdinaryUser& operator=(const OrdinaryUser&) = delete;

    static void own(const fs::path& path)
    {
        if (geteuid() == 0 && chown(path.c_str(), nobody, static_cast<gid_t>(-1)) != 0)
            std::abort();
    }

private:
    static constexpr uid_t nobody = 65534;
    bool m_changed;
};

} // namespace

class FileBytesTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_temporary;
    fs::path m_folder = m_temporary.path().toStdString();

    static fs::perms rightsOf(const fs::path& file) { return fs::status(file).permissions(); }
    static auto entriesOf(const fs::path& folder)
    {
        return std::distance(fs::directory_iterator(folder), fs::directory_iterator());
    }

private Q_SLOTS:
    void bytesComeBack()
    {
        const fs::path file = m_folder / "bytes.bin";
        const std::string bytes("\0\r\n\xFF"s + std::string(200000, 'x'));
        writeBytes(file, "old and to be replaced");
        writeBytes(file, bytes);
        QCOMPARE(readBytes(file), bytes);
        QCOMPARE(readBytes(file, bytes.size()), bytes);
        QCOMPARE(raisedBy([&] { readBytes(file, bytes.size() - 1); }), numberOf(ErrorNumber::InvalidFileFormat));
        appendBytes(file, "more");
        QCOMPARE(readBytes(file), bytes + "more");
        writeBytes(file, "");
        QCOMPARE(readBytes(file, 0), ""s);
    }

    void faultsHaveTheirNumbers()
    {
        QCOMPARE(raisedBy([&] { readBytes(m_folder / "none"); }), numberOf(ErrorNumber::FileNotFound));
        QCOMPARE(raisedBy([&] { readBytes(m_folder / "no" / "none"); }), numberOf(ErrorNumber::PathNotFound));
        QVERIFY(!readBytesIfPresent(m_folder / "no" / "none"));
        QCOMPARE(raisedBy([&] { writeBytes(m_folder / "no" / "new", "x"); }), numberOf(ErrorNumber::PathNotFound));
        QCOMPARE(raisedBy([&] { appendBytes(m_folder / "no" / "new", "x"); }), numberOf(ErrorNumber::PathNotFound));
        for (const auto& body :
             {+[](const fs::path& path) { readBytes(path); }, +[](const fs::path& path) { writeBytes(path, "x"); },
              +[](const fs::path& path) { appendBytes(path, "x"); }})
            QCOMPARE(raisedBy([&] { body(m_folder); }), numberOf(ErrorNumber::PermissionDenied));
    }

    void aPipeDoesNotHoldTheReaderUp()
    {
        const fs::path pipe = m_folder / "pipe";
        QCOMPARE(mkfifo(pipe.c_str(), 0600), 0);
        QCOMPARE(raisedBy([&] { readBytes(pipe); }), numberOf(ErrorNumber::PermissionDenied));
        QCOMPARE(raisedBy([&] { writeBytes(pipe, "x"); }), numberOf(ErrorNumber::PermissionDenied));
        fs::remove(pipe);
    }

    void rightsAndLinksAreKept()
    {
        const fs::path secret = m_folder / "secret";
        writeBytes(secret, "1", Access::OwnerOnly);
        QCOMPARE(rightsOf(secret), fs::perms(0600));
        fs::permissions(secret, fs::perms(0640));
        writeBytes(secret, "2");
        QCOMPARE(rightsOf(secret), fs::perms(0640));
        writeBytes(secret, "2", Access::OwnerOnly);
        QCOMPARE(rightsOf(secret), fs::perms(0600));
        fs::create_symlink("secret", m_folder / "link");
        writeBytes(m_folder / "link", "3");
        QVERIFY(fs::is_symlink(m_folder / "link"));
        QCOMPARE(readBytes(secret), "3"s);
    }

    void aReadOnlyFolderKeepsTheOldFile()
    {
        const fs::path folder = m_folder / "readonly";
        fs::create_directory(folder);
        writeBytes(folder / "file", "old");
        for (const fs::path& path : {m_folder, folder, folder / "file"})
            OrdinaryUser::own(path);
        fs::permissions(folder, fs::perms(0500));
        {
            const OrdinaryUser user;
            QCOMPARE(raisedBy([&] { writeBytes(folder / "file", "new"); }), numberOf(ErrorNumber::PermissionDenied));
            QCOMPARE(raisedBy([&] { writeBytes(folder / "other", "new"); }), numberOf(ErrorNumber::PermissionDenied));
        }
        fs::permissions(folder, fs::perms(0700));
        QCOMPARE(readBytes(folder / "file"), "old"s);
        QCOMPARE(entriesOf(folder), 1);
    }

    void aFullDiskKeepsTheOldFile()
    {
        const fs::path folder = m_folder / "full";
        fs::create_directory(folder);
        writeBytes(folder / "file", "old");
        appendBytes(folder / "log", "entry");
        const std::string large(10000, 'x');
        {
            const SmallDisk disk(4096);
            QCOMPARE(raisedBy([&] { writeBytes(folder / "file", large); }), numberOf(ErrorNumber::DiskFull));
            QCOMPARE(raisedBy([&] { appendBytes(folder / "log", large); }), numberOf(ErrorNumber::DiskFull));
        }
        QCOMPARE(readBytes(folder / "file"), "old"s);
        QCOMPARE(readBytes(folder / "log"), "entry"s);
        QCOMPARE(entriesOf(folder), 2);
    }
};

QTEST_APPLESS_MAIN(FileBytesTest)
#include "FileBytesTest.moc"
