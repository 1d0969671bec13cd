#include "profiles/files/RemoteFiles.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "link/PackedReply.h"
#include "support/AddRow.h"

using namespace std::string_literals;

class RemoteFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesStandBetweenDoubleBars_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<std::string>("entries"); // joined by "~"
        addRow("nothing", ""s, ""s);
        addRow("separators alone", "||||"s, ""s);
        addRow("an empty one between two", "a|1|2||||b|1|2||"s, "a|1|2~b|1|2"s);
        addRow("an empty last field", "a|1|||b|1|2"s, "a|1~|b|1|2"s); // the first two bars separate
    }
    void entriesStandBetweenDoubleBars()
    {
        QFETCH(const std::string, text);
        std::string joined;
        for (const std::string_view entry : splitFileList(text, 9))
            joined.append(joined.empty() ? "" : "~").append(entry);
        QTEST(joined, "entries");
    }

    void howManyFilesAreTaken_data()
    {
        addColumns<std::string, int, bool>("text", "files", "isCut");
        addRow("as many as may be", "a|1|2||||b|1|2||"s, 2, false);
        addRow("one more", "a|1|2||b|1|2||c|1|2"s, 2, true);
    }
    void howManyFilesAreTaken()
    {
        QFETCH(const std::string, text);
        const std::string data = qCompress(QByteArray::fromStdString(text), 9).mid(4).toStdString();
        const RemoteFileList list =
            readFileList({static_cast<std::int32_t>(text.size()), data}, remoteFileTypes[0], {.listRows = 2});
        QTEST(static_cast<int>(list.files.size()), "files");
        QTEST(list.isCut, "isCut");
    }

    void entriesAreDecodedByTheirType_data()
    {
        // fields: name, game type, date, size
        addColumns<std::size_t, std::string, std::string, int>("type", "entry", "fields", "error");
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        addRow("log", std::size_t{0}, "a.txt|05/03/2009|1 KB"s, "a.txt~~05/03/2009~1 KB"s, 0);
        addRow("backup", std::size_t{1}, "a.bma|Coop|05/03/2009|1 KB|more"s, "a.bma~Coop~05/03/2009~1 KB"s, 0);
        addRow("empty fields", std::size_t{4}, "||"s, ""s, 0);
        addRow("log without a size", std::size_t{0}, "a.txt|05/03/2009"s, ""s, subscript);
        addRow("backup of three fields", std::size_t{1}, "a.bma|Coop|05/03/2009"s, ""s, subscript);
    }
    void entriesAreDecodedByTheirType()
    {
        QFETCH(const std::size_t, type);
        QFETCH(const std::string, entry);
        RemoteFile file;
        QTEST(raisedBy([&] { file = decodeRemoteFile(entry, remoteFileTypes.at(type)); }), "error");
        if (QTest::currentTestFailed() || file == RemoteFile())
            return;
        const std::string fields = file.name + '~' + file.gameType + '~' + file.date + '~' + file.size;
        QTEST(fields, "fields");
    }

    void datesTravelWithTwoDigits() { QCOMPARE(travelDate(5, 3, 2009), "05/03/2009"s); }

    void theEndingTellsWhatAFileIs()
    {
        QCOMPARE(std::string(fileTypeText("a.b.TXT")), "Text Document"s);
        QCOMPARE(std::string(fileTypeText("a.bma")), "Archived File"s);
        QCOMPARE(std::string(fileTypeText("bma")), ""s);
        QCOMPARE(std::string(fileTypeText("a.txt.exe")), ""s);
    }
};

QTEST_APPLESS_MAIN(RemoteFilesTest)
#include "RemoteFilesTest.moc"
