#include "store/clsMFD.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "base/Text.h"
#include "store/AppFolder.h"
#include "store/ErrorLogBlock.h"
#include "store/FileBytes.h"

#include <QRegularExpression>
#include <QTemporaryDir>
#include <QtTest>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

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
                .postErrorReport = [this](const std::string& report, const std::function<void(bool)>& done) {
                    posted.push_back(report);
                    done(pageTakesReports);
                }}};

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
    void aProfileIsWrittenReadAndRemoved()
    {
        const Store store;
        const fs::path file = store.file("\\profiles.ini");
        QCOMPARE(store.mfd.GetAllIniSections(file), std::vector<std::string>());
        QCOMPARE(store.mfd.GetIniKey("Home", "Host", file), ""s);
        store.mfd.ClearIniSection("Home", file);
        QVERIFY(!fs::exists(file));
        const std::vector<std::array<std::string, 2>> keys = {
            {"Host", "tracker.example"}, {"Port", "17280"}, {"User", "Ann"}, {"Pass", " \"p=w\"; "}};
        for (const auto& [key, value] : keys)
            store.mfd.WriteIniKey("Home", key, value, file);
        store.mfd.WriteIniKey("Other", "Host", "h", file);
        const std::vector<std::string> lines = store.mfd.GetIniSection("Home", file);
        QCOMPARE(lines.size(), keys.size());
        for (std::size_t i = 0; i < keys.size(); ++i)
            QVERIFY(clsMFD::ParseIniKey(lines[i], true) == keys[i] && clsMFD::ParseIniKey(lines[i]) == keys[i][1]);
        QCOMPARE(fs::status(file).permissions(), fs::perms(0600));
        store.mfd.ClearIniSection("Home", file);
        QCOMPARE(store.mfd.GetAllIniSections(file), std::vector<std::string>{"Other"});
    }

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
        const std::string damaged = "[Home]\r\nHost=\0\r\n"s;
        writeBytes(file, damaged);
        constexpr int expected = numberOf(ErrorNumber::InvalidFileFormat);
        QCOMPARE(raisedBy([&] { store.mfd.GetIniKey("Home", "Host", file); }), expected);
        QCOMPARE(raisedBy([&] { store.mfd.WriteIniKey("Home", "Host", "x", file); }), expected);
        QCOMPARE(raisedBy([&] { store.mfd.ClearIniSection("Home", file); }), expected);
        QCOMPARE(readBytes(file), damaged);
        const fs::path missing = store.temporary.path().toStdString() + "/none/a.ini";
        QCOMPARE(raisedBy([&] { store.mfd.WriteIniKey("s", "k", "v", missing); }), numberOf(ErrorNumber::PathNotFound));
    }

    void filesAreReadAsLines_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<std::string>("joined"); // each line with a "|" behind it
        QTest::newRow("empty") << ""s
                               << ""s;
        QTest::newRow("no end") << "a\r\nb"s
                                << "a|b|"s;
        QTest::newRow("with end") << "a\r\nb\r\n"s
                                  << "a|b|"s;
        QTest::newRow("blank lines") << "\n\na\n\n"s
                                     << "||a||"s;
        QTest::newRow("mixed") << "a\rb\n\rc\r\n\nd"s
                               << "a|b||c||d|"s;
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
        const ErrorReportRecord record = {91, "not\r\nset", "QRVV3RC.exe 3.0.1", "HandleData", "False", 410};
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
        QCOMPARE(fields.mid(2, 5).join(u'|'), QStringLiteral("QRVV3RC.exe 3.0.1|HandleData|410|91|not set"));
        QCOMPARE(fields[7].toStdString(), store.mfd.GetUIDStr());
        QCOMPARE(fields[8] + fields[9] + fields[11] + fields[12], QStringLiteral("1000"));
        QCOMPARE(fields[13], fields[0] + u' ' + fields[1]);
        QCOMPARE(fields[14], QString());
    }

    void aBlockOfAnotherMachineIsToldApart()
    {
        ErrorLogBlock block;
        QCOMPARE(reportFields(block, "me", "now")[8], ""s);
        block.identity = "you";
        QCOMPARE(reportFields(block, "me", "now")[8], "0"s);
        QVERIFY(formatErrorLogBlock(block).find("65 57 39 31 ") != std::string::npos); // "eW91", Base64 of "you"
        block.identity.reset();
        QCOMPARE(formatErrorLogBlock(block).find("Error Dump:"), std::string::npos);
    }

    void webAddressesAreBroughtIntoForm_data()
    {
        QTest::addColumn<std::string>("typed");
        QTest::addColumn<std::string>("address");
        QTest::newRow("plain") << "http://stats.example/php"s
                               << "http://stats.example/php"s;
        QTest::newRow("no scheme") << " stats.example:8080/ "s
                                   << "http://stats.example:8080"s;
        QTest::newRow("scheme in capitals") << "HTTPS://Stats.example//"s
                                            << "https://Stats.example"s;
        QTest::newRow("address") << "127.0.0.1/a/b/"s
                                 << "http://127.0.0.1/a/b"s;
        QTest::newRow("long address") << "http://[::1]:80/x"s
                                      << "http://[::1]:80/x"s;
        QTest::newRow("user") << "http://ann:pw@h/x"s
                              << "http://ann:pw@h/x"s;
        QTest::newRow("query with an address") << "h/x?u=ftp://y"s
                                               << "http://h/x?u=ftp://y"s;
        for (const char* typed : {"",
                                  "  ",
                                  "http://",
                                  "https:///",
                                  "http:",
                                  "http:/x",
                                  "://h",
                                  "ftp://h",
                                  "javascript://h",
                                  "http:///x",
                                  "http://:80",
                                  "http://h:",
                                  "http://h:0",
                                  "http://h:65536",
                                  "http://h:+1",
                                  "http://h:a",
                                  "mailto:a@b",
                                  "http://a b",
                                  "http://h/a b",
                                  "http://h/a\tb",
                                  "http://h\n",
                                  "http://a..b",
                                  "http://-a",
                                  "http://.",
                                  "http://[1]",
                                  "http://[::1",
                                  "http://[::g]",
                                  "http://a@",
                                  "http://a,b",
                                  "http://http://h"})
            QTest::newRow(typed) << std::string(typed) << ""s;
    }
    void webAddressesAreBroughtIntoForm()
    {
        QFETCH(const std::string, typed);
        QFETCH(const std::string, address);
        QCOMPARE(clsMFD::validateUrl(typed), address);
        QCOMPARE(clsMFD::validateUrl(address), address);
    }
};

QTEST_APPLESS_MAIN(clsMFDTest)
#include "clsMFDTest.moc"
