#include "store/ErrorLogText.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/ErrorLog.h"
#include "store/clsMFD.h"
#include "support/AddRow.h"

#include <QTemporaryDir>

using namespace Qt::StringLiterals;

namespace {

const std::string start = "\r\n" + std::string(errorStartLine) + "\r\n";
const std::string end = "\r\n" + std::string(errorEndLine);

ErrorLogBlock sample(const std::string& description = "Type mismatch")
{
    return {.date = "2026-11-23",
            .time = "20:15:00",
            .file = "QRVV3RC.exe",
            .function = "HandleData",
            .line = "410",
            .number = "13",
            .description = description,
            .identity = "0123456789abcdef0123456789abcdef",
            .system = "Linux 6.1, 64 bit"};
}

std::string joined(const std::vector<std::string_view>& pieces)
{
    std::string text;
    for (const std::string_view piece : pieces)
        text += piece;
    return text;
}

/// A store in a folder of its own, with the log that it writes.
struct Rig
{
    QTemporaryDir directory;
    AppFolder folder{directory.path().toStdU16String()};
    clsMFD store{folder, {}};
    ErrorLog log{store, folder};

    bool load()
    {
        std::shared_ptr<ErrorLog::Contents> contents = ErrorLog::read(log.file());
        if (contents)
            log.adopt(contents);
        return contents != nullptr;
    }

    void logError(const std::string& detail)
    {
        store.LogError("QRVV3RC.exe", "HandleData", RuntimeError(ErrorNumber::TypeMismatch, detail), 410);
    }
    std::string file() const { return readBytesIfPresent(folder.path("\\ErrorLog.txt")).value_or("(none)"); }
    void takeAll()
    {
        while (!log.pieces().empty())
            log.take(0);
    }
};

} // namespace

class ErrorLogTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsLoggedIsReadBack()
    {
        Rig rig;
        rig.logError("plain");
        rig.logError(std::string(errorEndLine));
        rig.logError("Time: odd \x80\xE9 File: " + std::string(errorStartLine));
        QVERIFY(rig.load());
        const std::vector<std::string_view>& pieces = rig.log.pieces();
        QCOMPARE(pieces.size(), std::size_t{3});
        QCOMPARE(joined(pieces), rig.file());
        const std::vector<std::string> details{"plain", std::string(errorEndLine),
                                               "Time: odd \x80\xE9 File: " + std::string(errorStartLine)};
        for (std::size_t index = 0; index < details.size(); ++index) {
            const ErrorLogBlock block = readErrorLogBlock(pieces[index]);
            QCOMPARE(block.description, RuntimeError(ErrorNumber::TypeMismatch, details[index]).description());
            QCOMPARE(block.identity, std::optional(rig.store.GetUIDStr()));
            QCOMPARE(block.line, std::string("410"));
            QVERIFY(block.system.ends_with(" bit"));
            QCOMPARE(formatErrorLogBlock(block), std::string(pieces[index]));
            QCOMPARE(joinReport(reportFields(block, rig.store.GetUIDStr(), "now")).find("|*|*|1|*|*|0|*|*|") !=
                         std::string::npos,
                     true);
        }
    }

    void aDamagedLogIsCutWhereItCanBe_data()
    {
        QTest::addColumn<QByteArray>("log");
        QTest::addColumn<QByteArrayList>("descriptions"); // "-" for a piece that no report tells of
        const QByteArray block = QByteArray::fromStdString(formatErrorLogBlock(sample("one")));
        const QByteArray other = QByteArray::fromStdString(formatErrorLogBlock(sample("two")));
        const QByteArray head = "\r\n" + QByteArray::fromStdString(std::string(errorStartLine));
        addRow("nothing", QByteArray(), QByteArrayList{});
        addRow("no line break before the first", block.mid(2) + other, QByteArrayList{"one", "two"});
        addRow("a note between them", block + "\r\nmy note" + other, QByteArrayList{"one", "-", "two"});
        addRow("blank lines between them", "\r\n" + block + "\r\n \r\n" + other, QByteArrayList{"one", "two"});
        addRow("cut off in its values", block + other.left(other.indexOf("Error No.")), QByteArrayList{"one", ""});
        addRow("cut off in a dump", other.left(other.indexOf("System Dump")), QByteArrayList{"two"});
        addRow("without an end line", block.left(block.lastIndexOf("\r\n")) + other, QByteArrayList{"one", "two"});
        addRow("without a start line", block + other.mid(head.size()), QByteArrayList{"one", "two"});
        addRow("end line behind a dump", QByteArray(block).replace("74 20 \r\n-", "74 20 -") + other,
               QByteArrayList{"one", "two"});
        addRow("no log at all", QByteArray("\x00\xFF what\r\n\r\n", 11), QByteArrayList{"-"});
    }
    void aDamagedLogIsCutWhereItCanBe()
    {
        QFETCH(const QByteArray, log);
        QFETCH(const QByteArrayList, descriptions);
        const std::string text = log.toStdString();
        const std::vector<std::string_view> pieces = splitErrorLog(text);
        QCOMPARE(joined(pieces), text);
        QByteArrayList read;
        for (const std::string_view piece : pieces)
            read += isReportable(piece) ? QByteArray::fromStdString(readErrorLogBlock(piece).description) : "-";
        QCOMPARE(read, descriptions);
    }

    void dumpsAreReadAsFarAsTheyMakeSense_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QByteArray>("system");
        addRow("numbers and blanks", "\r\n51 56 4A "_ba, "QVJ"_ba);
        addRow("small letters, many blanks, tabs", "\r\n  51\t56   4a"_ba, "QVJ"_ba);
        addRow("a line broken inside a number", "\r\n51 5\r\n6 4A "_ba, "QVJ"_ba);
        addRow("a line without its last blank", "\r\n51 56\r\n4A "_ba, "QVJ"_ba);
        addRow("one digit", "\r\n51 A "_ba, "Q\n"_ba);
        addRow("an odd run of digits", "\r\n51564 4A "_ba, "QV\x04J"_ba);
        addRow("no digits", "\r\n51 XY -1 0x 4A"_ba, "QJ"_ba);
        addRow("behind the label", " 51 56"_ba, "QV"_ba);
        addRow("a value behind the dump", "\r\n51 \r\nDate: today\r\n56 "_ba, "Q"_ba);
    }
    void dumpsAreReadAsFarAsTheyMakeSense()
    {
        QFETCH(const QByteArray, lines);
        QFETCH(const QByteArray, system);
        const ErrorLogBlock block = readErrorLogBlock(start + "System Dump:" + lines.toStdString() + end);
        QCOMPARE(QByteArray::fromStdString(block.system), system);
        QVERIFY(!block.identity);
    }

    void anIdentityIsBase64InItsDump_data()
    {
        QTest::addColumn<QByteArray>("lines");
        QTest::addColumn<QByteArray>("fields"); // 7 and 8
        addRow("this installation", "Error Dump:\r\n51 51 3D 3D \r\n"_ba, "A|*|*|1"_ba);
        addRow("another one", "Error Dump:\r\n51 56 4A 44 \r\n"_ba, "ARC|*|*|0"_ba);
        addRow("an empty dump", "Error Dump:\r\n"_ba, "|*|*|0"_ba);
        addRow("no such dump", ""_ba, "|*|*|"_ba);
        addRow("no Base64", "Error Dump:\r\n21 21 21 21 \r\n"_ba, "!!!!|*|*|0"_ba);
    }
    void anIdentityIsBase64InItsDump()
    {
        QFETCH(const QByteArray, lines);
        QFETCH(const QByteArray, fields);
        const ErrorLogBlock block =
            readErrorLogBlock(start + "x Date: 1\r\n" + lines.toStdString() + "System Dump:\r\n5A " + end);
        QCOMPARE(QByteArray::fromStdString(joinReport(reportFields(block, "A", "now"))),
                 "x 1|*|*||*|*||*|*||*|*||*|*||*|*||*|*|" + fields + "|*|*|0|*|*|Z|*|*|0|*|*|0|*|*|now|*|*|");
    }

    void theFileGoesOnlyWhenAllOfItHasBeenDelivered()
    {
        Rig rig;
        rig.logError("one");
        rig.logError("two");
        QVERIFY(rig.load());
        const std::string before = rig.file();
        rig.log.take(0);
        QCOMPARE(rig.log.settleFile(), ErrorLog::FileFate::Stays);
        QCOMPARE(rig.file(), before);
        rig.takeAll();
        QCOMPARE(rig.log.settleFile(), ErrorLog::FileFate::Deleted);
        QCOMPARE(rig.file(), std::string("(none)"));
        QVERIFY(!rig.load());
    }

    void whatWasLoggedMeanwhileIsKept()
    {
        Rig rig;
        rig.logError("one");
        QVERIFY(rig.load());
        rig.takeAll();
        rig.logError("two");
        QCOMPARE(rig.log.settleFile(), ErrorLog::FileFate::HoldsNewOnly);
        QCOMPARE(rig.log.pieces().size(), std::size_t{1});
        QVERIFY(readErrorLogBlock(rig.log.pieces().front()).description.ends_with("two"));
        QCOMPARE(rig.file(), joined(rig.log.pieces()));

        rig.takeAll();
        writeBytes(rig.folder.path("\\ErrorLog.txt"), "written by hand");
        QCOMPARE(rig.log.settleFile(), ErrorLog::FileFate::Stays);
        QCOMPARE(rig.file(), std::string("written by hand"));
    }
};

QTEST_APPLESS_MAIN(ErrorLogTextTest)
#include "ErrorLogTextTest.moc"
