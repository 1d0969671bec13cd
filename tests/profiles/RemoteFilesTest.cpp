#include "profiles/RemoteFiles.h"

#include "base/Base64.h"
#include "base/RaisedError.h"

using namespace std::string_literals;

class RemoteFilesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesStandBetweenDoubleBars_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::addColumn<std::string>("entries"); // joined by "~"
        QTest::newRow("nothing") << ""s
                                 << ""s;
        QTest::newRow("separators alone") << "||||"s
                                          << ""s;
        QTest::newRow("an empty one between two") << "a|1|2||||b|1|2||"s
                                                  << "a|1|2~b|1|2"s;
        QTest::newRow("an empty last field") << "a|1|||b|1|2"s
                                             << "a|1~|b|1|2"s; // the first two bars separate
    }
    void entriesStandBetweenDoubleBars()
    {
        QFETCH(const std::string, text);
        std::string joined;
        for (const std::string_view entry : splitFileList(text))
            joined.append(joined.empty() ? "" : "~").append(entry);
        QTEST(joined, "entries");
    }

    void entriesAreDecodedByTheirType_data()
    {
        QTest::addColumn<std::size_t>("type");
        QTest::addColumn<std::string>("entry");
        QTest::addColumn<std::string>("fields"); // name, game type, date, size
        QTest::addColumn<int>("error");
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        QTest::newRow("log") << std::size_t{0} << "a.txt|05/03/2009|1 KB"s
                             << "a.txt~~05/03/2009~1 KB"s << 0;
        QTest::newRow("backup") << std::size_t{1} << "a.bma|Coop|05/03/2009|1 KB|more"s
                                << "a.bma~Coop~05/03/2009~1 KB"s << 0;
        QTest::newRow("empty fields") << std::size_t{4} << "||"s
                                      << ""s << 0;
        QTest::newRow("log without a size") << std::size_t{0} << "a.txt|05/03/2009"s
                                            << ""s << subscript;
        QTest::newRow("backup of three fields") << std::size_t{1} << "a.bma|Coop|05/03/2009"s
                                                << ""s << subscript;
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

    void requestsNameTheFileByItsFolder_data()
    {
        QTest::addColumn<std::size_t>("type");
        QTest::addColumn<std::string>("path");
        QTest::newRow("Admin Logs") << std::size_t{0} << "\\adminlogs\\f.txt"s;
        QTest::newRow("Backup Files") << std::size_t{1} << "\\Backups\\Coop\\f.txt"s;
        QTest::newRow("Chat Logs") << std::size_t{2} << "\\messagelogs\\f.txt"s;
        QTest::newRow("Server Message Logs") << std::size_t{3} << "\\messagelogs\\f.txt"s;
        QTest::newRow("Player Logs") << std::size_t{4} << "\\misclogs\\f.txt"s;
        QTest::newRow("Status Logs") << std::size_t{5} << "\\misclogs\\f.txt"s;
        QTest::newRow("Import Logs") << std::size_t{6} << "\\misclogs\\f.txt"s;
    }
    void requestsNameTheFileByItsFolder()
    {
        QFETCH(const std::size_t, type);
        QFETCH(const std::string, path);
        const RemoteFileType& asked = remoteFileTypes.at(type);
        QCOMPARE(std::string(asked.name), std::string(QTest::currentDataTag()));
        const std::string made = remotePath(asked, {.name = "f.txt", .gameType = "Coop", .date = {}, .size = {}});
        QCOMPARE(made, path);
        QVERIFY(getRemFileRequest("me", -7, made) ==
                (Request{"GetRemFile", "GetRemFile_me", "-7|" + base64::encode(path)}));
    }

    void datesTravelWithTwoDigits()
    {
        QCOMPARE(travelDate(5, 3, 2009), "05/03/2009"s);
        QVERIFY(getFileListRequest("me", 3, remoteFileTypes[0], travelDate(1, 11, 2009), travelDate(29, 11, 2009)) ==
                (Request{"GetFileList", "GetFileList_me", "3|Admin Logs|01/11/2009|29/11/2009"}));
    }

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
