#include "platform/system/FileVersion.h"

#include "base/RaisedError.h"

#include <QProcess>
#include <QTemporaryDir>
#include <QtTest>

#include <fstream>

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using namespace std::string_literals;

namespace {

/// The smallest PE file with a version resource: headers, one section, three resource directories, the version.
class PeFile
{
public:
    static constexpr std::size_t peHeader = 0x40;
    static constexpr std::size_t optionalHeader = peHeader + 24;
    static constexpr std::uint32_t sectionAddress = 0x1000;
    static constexpr std::size_t resources = 0x200; // in the file
    static constexpr std::size_t version = resources + 0x58;

    explicit PeFile(bool is64Bits) : bytes(version + 40 + 52, '\0')
    {
        const std::size_t directories = optionalHeader + (is64Bits ? 112 : 96);
        const std::size_t section = directories + 16 * 8;
        text(0, "MZ");
        number(0x3C, peHeader, 4);
        text(peHeader, "PE");
        number(peHeader + 6, 1, 2);                         // sections
        number(peHeader + 20, section - optionalHeader, 2); // size of the optional header
        number(optionalHeader, is64Bits ? 0x20B : 0x10B, 2);
        number(directories - 4, 16, 4);
        number(directories + 2 * 8, sectionAddress, 4);
        number(section + 12, sectionAddress, 4);
        number(section + 16, bytes.size() - resources, 4);
        number(section + 20, resources, 4);

        directory(0, {{3, 0}, {16, 0x80000020}}); // pictures come first
        directory(0x20, {{1, 0x80000038}});
        directory(0x38, {{0x409, 0x50}});
        number(resources + 0x50, sectionAddress + 0x58, 4);
        std::size_t at = version + 6;
        for (const char c : "VS_VERSION_INFO"s) {
            bytes[at] = c;
            at += 2;
        }
        number(version + 40, 0xFEEF04BD, 4);
        number(version + 48, 0x00030000, 4);
        number(version + 52, 0xFFFF0007, 4);
    }

    void number(std::size_t offset, std::uint64_t value, std::size_t size)
    {
        for (std::size_t index = 0; index < size; ++index)
            bytes.at(offset + index) = static_cast<char>(value >> (8 * index));
    }

    std::string bytes;

private:
    void text(std::size_t offset, std::string_view value) { bytes.replace(offset, value.size(), value); }
    void directory(std::size_t offset, const std::vector<std::pair<std::uint32_t, std::uint32_t>>& entries)
    {
        number(resources + offset + 14, entries.size(), 2);
        for (std::size_t index = 0; index < entries.size(); ++index) {
            number(resources + offset + 16 + index * 8, entries[index].first, 4);
            number(resources + offset + 20 + index * 8, entries[index].second, 4);
        }
    }
};

} // namespace

class FileVersionTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_temporary;
    fs::path m_folder = m_temporary.path().toStdString();

private Q_SLOTS:
    void aVersionResourceIsFound_data()
    {
        QTest::addColumn<bool>("is64Bits");
        QTest::newRow("32 bits") << false;
        QTest::newRow("64 bits") << true;
    }
    void aVersionResourceIsFound()
    {
        QFETCH(const bool, is64Bits);
        const PeFile file(is64Bits);
        QCOMPARE(fileVersion(file.bytes).value_or(""), "3.0.65535.7"s);
        for (std::size_t size = 0; size < PeFile::version + 56; ++size)
            QVERIFY(!fileVersion(file.bytes.substr(0, size)));
    }

    void damagedFilesHaveNone_data()
    {
        QTest::addColumn<std::size_t>("offset");
        QTest::addColumn<std::uint32_t>("value");
        const std::size_t directories = PeFile::optionalHeader + 96;
        const std::size_t section = directories + 16 * 8;
        QTest::newRow("header far away") << std::size_t{0x3C} << 0xFFFFFFFFU;
        QTest::newRow("no signature") << PeFile::peHeader << 0U;
        QTest::newRow("other kind of header") << PeFile::optionalHeader << 0x107U;
        QTest::newRow("few directories") << directories - 4 << 2U;
        QTest::newRow("no resources") << directories + 16 << 0U;
        QTest::newRow("resources outside") << directories + 16 << 0xFFFFFF00U;
        QTest::newRow("section outside the file") << section + 20 << 0xFFFFFFF0U;
        QTest::newRow("root leads to itself") << PeFile::resources + 28 << 0x80000000U;
        QTest::newRow("data where names belong") << PeFile::resources + 28 << 0x20U;
        QTest::newRow("directory where data belongs") << PeFile::resources + 0x38 + 20 << 0x80000038U;
        QTest::newRow("endless directory") << PeFile::resources + 12 << 0xFFFFFFFFU;
        QTest::newRow("version outside") << PeFile::resources + 0x50 << 0xFFFFFFFCU;
        QTest::newRow("other key") << PeFile::version + 6 << 0U;
        QTest::newRow("other signature") << PeFile::version + 40 << 0U;
    }
    void damagedFilesHaveNone()
    {
        QFETCH(const std::size_t, offset);
        QFETCH(const std::uint32_t, value);
        PeFile file(false);
        file.number(offset, value, 4);
        if (qstrcmp(QTest::currentDataTag(), "endless directory") == 0)
            file.number(PeFile::resources + 24, 17, 4); // no version in it
        const std::optional<std::string> version = fileVersion(file.bytes);
        QVERIFY2(!version, version.value_or("").c_str());
    }

    void aMarkerCountsElsewhere_data()
    {
        QTest::addColumn<std::string>("bytes");
        QTest::addColumn<std::string>("version");
        const auto row = [](const char* name, const std::string& bytes, const std::string& version) {
            QTest::newRow(name) << bytes << version;
        };
        const std::string marker = "QRVRC-FILE-VERSION:";
        row("in the middle",
            "\x7F"
            "ELF\0\1"s +
                marker + "1.20.300.65535\0rest"s,
            "1.20.300.65535");
        row("at the end", "x" + marker + "0.0.0.0", "0.0.0.0");
        row("second one", marker + "\0"s + marker + marker + "1.2.3.4\0"s, "1.2.3.4");
        row("three parts", marker + "1.2.3\0"s, "");
        row("five parts", marker + "1.2.3.4.5\0"s, "");
        row("too large", marker + "1.2.3.65536\0"s, "");
        row("six digits", marker + "1.2.3.000001\0"s, "");
        row("empty part", marker + "1..3.4\0"s, "");
        row("words behind", marker + "1.2.3.4b\0"s, "");
        row("cut off", marker + "1.2.", "");
        row("empty", "", "");
        row("in a PE file", "MZ" + marker + "1.2.3.4\0"s, "");
    }
    void aMarkerCountsElsewhere()
    {
        QFETCH(const std::string, bytes);
        QFETCH(const std::string, version);
        QCOMPARE(fileVersion(bytes).value_or(""), version);
    }

    void filesThatCannotBeReadHaveNone()
    {
        QVERIFY(!fileVersionOf(m_folder / "none.dll"));
        QVERIFY(!fileVersionOf(m_folder));
        const fs::path large = m_folder / "large.dll";
        std::ofstream(large) << "QRVRC-FILE-VERSION:1.2.3.4";
        QCOMPARE(fileVersionOf(large).value_or(""), "1.2.3.4"s);
        fs::resize_file(large, maxVersionedFileBytes + 1);
        QVERIFY(!fileVersionOf(large));
    }

    /// What other tools make of the format.
    void aLinkersFileIsRead()
    {
#ifdef PE_COMPILER
        std::ofstream(m_folder / "v.rc") << "1 ICON \"v.ico\"\n"
                                            "1 VERSIONINFO FILEVERSION 12,0,345,6 PRODUCTVERSION 9,9,9,9 { }\n"
                                            "2 RCDATA { \"other\" }\n";
        std::string icon("\0\0\1\0\1\0\1\1\0\0\1\0\40\0\60\0\0\0\26\0\0\0"s);
        std::ofstream(m_folder / "v.ico", std::ios::binary) << icon << std::string(48, '\0');
        std::ofstream(m_folder / "v.cpp") << "extern \"C\" int f() { return 1; }\n";
        const auto run = [this](const char* program, const QStringList& arguments) {
            QProcess process;
            process.setWorkingDirectory(m_temporary.path());
            process.start(QString::fromLatin1(program), arguments);
            return process.waitForFinished(60000) && process.exitCode() == 0;
        };
        QVERIFY(run(PE_RESOURCES, {u"v.rc"_s, u"v.o"_s}));
        QVERIFY(
            run(PE_COMPILER, {u"-shared"_s, u"-nostdlib"_s, u"-Wl,-e,f"_s, u"-o"_s, u"v.dll"_s, u"v.cpp"_s, u"v.o"_s}));
        QCOMPARE(fileVersionOf(m_folder / "v.dll").value_or(""), "12.0.345.6"s);
#else
        QSKIP("there is no linker for PE files here");
#endif
    }
};

QTEST_APPLESS_MAIN(FileVersionTest)
#include "FileVersionTest.moc"
