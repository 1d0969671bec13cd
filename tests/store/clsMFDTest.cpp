#include "store/clsMFD.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/ErrorLogBlock.h"
#include "support/AddRow.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

/// A code page that has the first 256 characters.
CodePageText latin(std::u16string_view text)
{
    CodePageText result;
    for (const char16_t character : text) {
        result.bytes += character < 0x100 ? static_cast<char>(character) : '?';
        result.isWhole = result.isWhole && character < 0x100;
    }
    return result;
}

/// A helper on a folder of its own, with what it has posted.
struct Store
{
    QTemporaryDir temporary;
    AppFolder folder{temporary.path().toStdString()};
    std::vector<std::string> posted;
    bool pageTakesReports = true;
    clsMFD mfd{folder,
               {.updateWarning = {},
                .showHelp = {},
                .postErrorReport =
                    [this](const std::string& report, const std::function<void(bool)>& done) {
                        posted.push_back(report);
                        done(pageTakesReports);
                    },
                .toCodePage = latin}};

    fs::path file(std::string_view name) const { return folder.path(name); }
};

bool matches(std::string_view text, const char* pattern)
{
    const QRegularExpression whole(QRegularExpression::anchoredPattern(QString::fromLatin1(pattern)));
    return whole.match(QString::fromLatin1(text.data(), static_cast<qsizetype>(text.size()))).hasMatch();
}

/// The bytes of a dump whose lines are simply put together, as whoever reads the log does it.
std::string dumpBytes(const std::vector<std::string>& lines, std::string_view label)
{
    auto line = std::find(lines.begin(), lines.end(), label);
    std::string hex;
    while (line != lines.end() && ++line != lines.end() && matches(*line, "([0-9A-F]{2} )+"))
        hex += *line;
    return QByteArray::fromHex(QByteArray::fromStdString(hex)).toStdString();
}

} // namespace

class clsMFDTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aLineWithoutEqualsSignIsAllKey()
    {
        QVERIFY(clsMFD::ParseIniKey("Profile Admins", true) == (std::array{"Profile Admins"s, ""s}));
        QCOMPARE(clsMFD::ParseIniKey("Profile Admins"), ""s);
        QCOMPARE(clsMFD::ParseIniKey("k= a=b "), " a=b "s);
    }

    void aDamagedFileIsKept()
    {
        const Store store;
        const fs::path file = store.file("\\profiles.ini");
        const std::string damaged(IniText::maxBytes + 1, '\n');
        writeBytes(file, damaged);
        constexpr int expected = numberOf(ErrorNumber::InvalidFileFormat);
        QCOMPARE(raisedBy([&] { store.mfd.GetIniKey("Home", "Host", file); }), expected);
        QCOMPARE(raisedBy([&] { store.mfd.WriteIniKey("Home", "Host", "x", file); }), expected);
        QCOMPARE(raisedBy([&] { store.mfd.ClearIniSection("Home", file); }), expected);
        QCOMPARE(readBytes(file), damaged);
        const fs::path missing = store.temporary.path().toStdString() + "/none/a.ini";
        QCOMPARE(raisedBy([&] { store.mfd.WriteIniKey("s", "k", "v", missing); }), numberOf(ErrorNumber::PathNotFound));
    }

    void aFileInUnicodeIsReadAndLosesNothing_data()
    {
        // written: after k=2 was set; empty when that is refused
        addColumns<std::string, std::string, std::string>("bytes", "section", "written");
        addRow("low byte first", "\xFF\xFE[\0\xE9\0]\0\n\0k\0=\0001\0\n\0"s, "\xE9"s, "[\xE9]\nk=2\n"s);
        addRow("high byte first", "\xFE\xFF\0[\0\xE9\0]\0\n\0k\0=\0001\0\n"s, "\xE9"s, "[\xE9]\nk=2\n"s);
        addRow("half a character at the end", "\xFE\xFF\0[\0s\0]\0\n\0k\0=\0001\0\n\0"s, "s"s, "[s]\nk=2\n"s);
        addRow("UTF-8", "\xEF\xBB\xBF[\xC3\xA9]\nk=1\n"s, "\xE9"s, "[\xE9]\nk=2\n"s);
        addRow("no UTF-8 behind its mark", "\xEF\xBB\xBF[\xE9]\nk=1\n"s, "\xE9"s, "\xEF\xBB\xBF[\xE9]\nk=2\n"s);
        addRow("a foreign character", "\xFF\xFE[\0s\0]\0\n\0k\0=\0001\0\n\0x\0=\0\x10\x04"s, "s"s, ""s);
        addRow("a character of four bytes", "\xEF\xBB\xBF[s]\nk=1\nx=\xF0\x9F\x98\x80\n"s, "s"s, ""s);
    }
    void aFileInUnicodeIsReadAndLosesNothing()
    {
        QFETCH(const std::string, bytes);
        QFETCH(const std::string, section);
        QFETCH(const std::string, written);
        const Store store;
        const fs::path file = store.file("\\profiles.ini");
        writeBytes(file, bytes);
        QCOMPARE(store.mfd.GetAllIniSections(file), std::vector<std::string>{section});
        QCOMPARE(store.mfd.GetIniKey(section, "k", file), "1"s);
        const int error = raisedBy([&] { store.mfd.WriteIniKey(section, "k", "2", file); });
        QCOMPARE(error, written.empty() ? numberOf(ErrorNumber::InvalidFileFormat) : 0);
        QCOMPARE(readBytes(file), written.empty() ? bytes : written);
    }

    void filesAreReadAsLines_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<std::string>("joined"); // each line with a "|" behind it
        addRow("empty", ""s, ""s);
        addRow("no end", "a\r\nb"s, "a|b|"s);
        addRow("with end", "a\r\nb\r\n"s, "a|b|"s);
        addRow("blank lines", "\n\na\n\n"s, "||a||"s);
        addRow("mixed", "a\rb\n\rc\r\n\nd"s, "a|b||c||d|"s);
    }
    void filesAreReadAsLines()
    {
        QFETCH(const std::string, text);
        const Store store;
        store.mfd.WriteFile(store.file("\\a.txt"), text);
        std::string joined;
        for (const std::string& line : store.mfd.ReadFile(store.file("\\a.txt")))
            joined += line + '|';
        QTEST(joined, "joined");
    }

    void faultsHaveTheirNumbers()
    {
        const Store store;
        QCOMPARE(raisedBy([&] { store.mfd.ReadFile(store.file("\\none")); }), numberOf(ErrorNumber::FileNotFound));
        QCOMPARE(raisedBy([&] { store.mfd.DecompressString("x", -1); }), numberOf(ErrorNumber::InvalidFileFormat));
        constexpr int most = std::numeric_limits<int>::max();
        QCOMPARE(raisedBy([&] { store.mfd.DecompressString("x", most); }), numberOf(ErrorNumber::OutOfMemory));
    }

    void theIdentityIsMadeOnceAndAnewWhenDamaged()
    {
        const Store store;
        const Store another;
        const std::string identity = store.mfd.GetUIDStr();
        QVERIFY(matches(identity, "[0-9a-f]{32}"));
        QCOMPARE(clsMFD(store.folder, {}).GetUIDStr(), identity);
        QVERIFY(another.mfd.GetUIDStr() != identity);
        const fs::path file = store.file("\\settings\\installation.id");
        QCOMPARE(fs::status(file).permissions(), fs::perms(0600));
        writeBytes(file, "cut");
        const std::string next = store.mfd.GetUIDStr();
        QVERIFY(matches(next, "[0-9a-f]{32}"));
        QCOMPARE(store.mfd.GetUIDStr(), next);
    }

    void errorsAreLoggedInBlocks()
    {
        const Store store;
        const RuntimeError error(ErrorNumber::TypeMismatch, "two\r\nlines\nand\rmore");
        store.mfd.LogError("QRVV3RC.exe", "HandleData", error, 410);
        const std::string first = readBytes(store.file("\\ErrorLog.txt"));
        store.mfd.LogError("QRVV3RC.exe", "LoadPlugins", error, 0);
        const std::string log = readBytes(store.file("\\ErrorLog.txt"));
        QVERIFY(log.starts_with(first) && log.size() > first.size());
        QVERIFY(log.substr(first.size()).starts_with("\r\n" + std::string(errorStartLine) + "\r\n"));
        QVERIFY(log.ends_with("\r\n" + std::string(errorEndLine)));

        const std::vector<std::string> lines = store.mfd.ReadFile(store.file("\\ErrorLog.txt"));
        QCOMPARE(lines.at(1), std::string(39, '-') + " Error Start " + std::string(39, '-'));
        QVERIFY(matches(lines.at(2), R"(Date: \d{4}-\d\d-\d\d)"));
        QVERIFY(matches(lines.at(3), R"(Time: \d\d:\d\d:\d\d)"));
        QCOMPARE(lines.at(4), "File: QRVV3RC.exe"s);
        QCOMPARE(lines.at(5), "Function: HandleData"s);
        QCOMPARE(lines.at(6), "Error Line: 410"s);
        QCOMPARE(lines.at(7), "Error No.: 13"s);
        QCOMPARE(lines.at(8), "Error Desc.: Type mismatch: two lines and more"s);
        QCOMPARE(base64::decode(dumpBytes(lines, "Error Dump:")), store.mfd.GetUIDStr());
        QVERIFY(matches(dumpBytes(lines, "System Dump:"), ".+ (32|64) bit"));
        QVERIFY(std::find(lines.begin(), lines.end(), std::string(40, '-') + " Error End " + std::string(40, '-')) !=
                lines.end());
    }

    void whatALogTellsOfAnError_data()
    {
        QTest::addColumn<RuntimeError>("error");
        QTest::addColumn<QString>("told"); // the folder is %1 in the error
        const auto number = ErrorNumber::FileNotFound;
        const auto row = [number](const char* title, const auto& detail, const QString& told) {
            QTest::newRow(title) << RuntimeError(number, detail) << QStringLiteral("File not found: ") + told;
        };
        const std::string root = AppFolder(m_shared.path().toStdString()).root().string();
        row("a file of the layout", PrivateName(root + "/settings/config.ini"),
            QStringLiteral("\\settings\\config.ini"));
        row("a file elsewhere", PrivateName("/home/joe/notes.txt", " is gone"), QStringLiteral("(a name) is gone"));
        row("a player", PrivateName("Joe", {}, "nothing about "), QStringLiteral("nothing about (a name)"));
        row("a path in a text", root + "/Plugins/a.dll: bad; " + root + "x/b", //
            QStringLiteral("\\Plugins\\a.dll: bad; (the folder for temporary files)"));
        row("a file of the user's", "'/Users\\JOE/a b' /users/joey",
            QStringLiteral("'(the home folder) b' /users/joey"));
        row("a private name behind the cut", PrivateName("Joe", {}, std::string(5000, 'x')),
            QString(4096 - 16, QLatin1Char('x')));
    }
    void whatALogTellsOfAnError()
    {
        QFETCH(const RuntimeError, error);
        QFETCH(const QString, told);
        const AppFolder folder(m_shared.path().toStdString());
        const QByteArray home = qgetenv("HOME");
        qputenv("HOME", "/users/joe");
        const clsMFD store(folder, {});
        qputenv("HOME", home);
        QCOMPARE(QString::fromStdString(store.reportable(error)), told);
        QVERIFY(error.description().size() <= Bounds{}.descriptionBytes);
    }

    void aFullLogTakesThePlaceOfTheOlderOne()
    {
        Store store;
        const auto size = [&store](const char* name) {
            return readBytesIfPresent(store.file(name)).value_or("").size();
        };
        const auto log = [&store](std::size_t bound) {
            clsMFD(store.folder, {}, {.errorLogBytes = bound})
                .LogError("f", "p", RuntimeError(ErrorNumber::Overflow), 1);
        };
        log(1);
        const std::size_t block = size("\\ErrorLog.txt");
        log(2 * block);
        QCOMPARE(size("\\ErrorLog.txt"), 2 * block);
        QVERIFY(!store.folder.fileExists("\\ErrorLog.old.txt"));
        log(3 * block - 1);
        QCOMPARE(size("\\ErrorLog.txt"), block);
        QCOMPARE(size("\\ErrorLog.old.txt"), 2 * block);
        log(2 * block - 1);
        QCOMPARE(size("\\ErrorLog.old.txt"), block);
    }

    void anErrorIsLoggedWithoutAnIdentityToo()
    {
        const Store store;
        writeBytes(store.file("\\settings"), "a file where the folder should be");
        QVERIFY(raisedBy([&] { store.mfd.GetUIDStr(); }) != 0);
        store.mfd.LogError("QRVV3RC.exe", "HandleData", RuntimeError(ErrorNumber::TypeMismatch), 1);
        const std::string log = readBytes(store.file("\\ErrorLog.txt"));
        QVERIFY(log.find("Error No.: 13\r\n") != std::string::npos && log.ends_with(errorEndLine));
    }

    void aReportHasFifteenFields()
    {
        Store store;
        store.pageTakesReports = false;
        const ErrorReportRecord record = {91, "not\r\nset |*|*|& x", "QRVV3RC.exe 3.0.1", "HandleData", 410};
        int answers = 0;
        const auto count = [&answers](bool delivered) { answers += delivered ? 100 : 1; };
        store.mfd.SendErrorReport(record, count);
        store.pageTakesReports = true;
        store.mfd.SendErrorReport(record, count);
        clsMFD(store.folder, {}).SendErrorReport(record, count); // nobody is there to post it
        QCOMPARE(answers, 102);
        QCOMPARE(store.posted.size(), std::size_t{2});

        const QStringList fields = QString::fromStdString(store.posted.front()).split(QStringLiteral("|*|*|"));
        QCOMPARE(fields.size(), 15);
        QVERIFY(matches(fields[0].toStdString() + ' ' + fields[1].toStdString(), R"(\d{4}-\d\d-\d\d \d\d:\d\d:\d\d)"));
        QCOMPARE(fields.mid(2, 5).join(u'|'),
                 QStringLiteral("QRVV3RC.exe 3.0.1|HandleData|410|91|not set | *| *|%26 x"));
        QCOMPARE(fields[7].toStdString(), store.mfd.GetUIDStr());
        QCOMPARE(fields[8] + fields[9] + fields[11] + fields[12], QStringLiteral("1000"));
        QCOMPARE(fields[13], fields[0] + u' ' + fields[1]);
        QCOMPARE(fields[14], QString());
    }

    void webAddressesAreBroughtIntoForm_data()
    {
        addColumns<std::string, std::string>("typed", "address");
        addRow("plain", "http://stats.example/php"s, "http://stats.example/php"s);
        addRow("no scheme", " stats.example:8080/ "s, "http://stats.example:8080"s);
        addRow("scheme in capitals", "HTTPS://Stats.example//"s, "https://Stats.example"s);
        addRow("address", "127.0.0.1/a/b/"s, "http://127.0.0.1/a/b"s);
        addRow("long address", "http://[::1]:80/x"s, "http://[::1]:80/x"s);
        addRow("user", "http://ann:pw@h/x"s, "http://ann:pw@h/x"s);
        addRow("query with an address", "h/x?u=ftp://y"s, "http://h/x?u=ftp://y"s);
        const QByteArray none =
            "|  "
            "|http://|https:///|http:|http:/x|://h|ftp://h|javascript://h|http:///x|http://:80|http://h:|http://"
            "h:0|http://h:65536|http://h:+1|http://h:a|mailto:a@b|http://a b|http://h/a "
            "b|http://h/a\tb|http://h\n|http://a..b|http://-a|http://.|http://[1]|http://[::1|http://[::g]|http://"
            "a@|http://a,b|http://http://h";
        for (const QByteArray& typed : none.split('|'))
            addRow(typed, typed.toStdString(), ""s);
    }
    void webAddressesAreBroughtIntoForm()
    {
        QFETCH(const std::string, typed);
        QFETCH(const std::string, address);
        QCOMPARE(clsMFD::validateUrl(typed), address);
        QCOMPARE(clsMFD::validateUrl(address), address);
    }

private:
    QTemporaryDir m_shared;
};

QTEST_APPLESS_MAIN(clsMFDTest)
#include "clsMFDTest.moc"
