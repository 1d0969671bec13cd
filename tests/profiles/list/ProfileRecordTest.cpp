#include "profiles/list/ProfileRecord.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "support/AddRow.h"

using namespace std::string_literals;

class ProfileRecordTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aRecordIsDecodedWhole()
    {
        const ProfileRecord record{
            .id = "7",
            .name = "Al_pha\xE9",
            .modPicture = "ctf.gif",
            .players = "2/16",
            .map = "Dust|Alley",
            .gameType = "Coop",
            .timer = "00:10:00",
            .statusText = "Hosting",
            .status = 2,
            .gameVersion = "Delta Force,  V1.5.0.5",
        };
        const std::string text = "7|Al_pha\xE9|ctf.gif|2/16|" + base64::encode("Dust|Alley") +
                                 "|Coop|00:10:00|4711|Hosting|2|Delta Force,  V1.5.0.5";
        QVERIFY(decodeProfileRecord(base64::encode(text)) == record);
        QVERIFY(decodeProfileRecord(" " + base64::encode(text + "|more") + "\t") == record);
    }

    void brokenRecordsRaise_data()
    {
        addColumns<std::string, int>("element", "error");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        const auto fields = [](const char* map, const char* status, const char* end) {
            return base64::encode("1|n|p|2|"s + map + "|g|t|x|s|" + status + end);
        };
        QTest::newRow("no map") << fields("", "5", "|v") << 0;
        QTest::newRow("empty version") << fields("", "5", "|") << 0;
        QTest::newRow("status beyond the pictures") << fields("", "-2147483648", "|v") << 0;
        QTest::newRow("ten fields") << fields("", "5", "") << subscript;
        QTest::newRow("one field") << base64::encode("1") << subscript;
        QTest::newRow("no field") << ""s << subscript;
        QTest::newRow("status is no number") << fields("", "two", "|v") << mismatch;
        QTest::newRow("status is empty") << fields("", "", "|v") << mismatch;
        QTest::newRow("status is too large") << fields("", "2147483648", "|v") << numberOf(ErrorNumber::Overflow);
        QTest::newRow("map is no Base64") << fields("Dust Alley!!", "5", "|v") << mismatch;
        for (const char* id : {"", "x", "05", "+5", " 5", "5.0"})
            QTest::addRow("the id '%s'", id) << base64::encode(id + "|n|p|2||g|t|x|s|5|v"s) << mismatch;
        QTest::newRow("no Base64 at all") << "\x01!*\x7F%(~"s << mismatch;
    }
    void brokenRecordsRaise()
    {
        QFETCH(const std::string, element);
        QTEST(raisedBy([&] { decodeProfileRecord(element); }), "error");
    }

    void profilesKeepTheirPictures_data()
    {
        using Pairs = std::vector<std::pair<std::string, std::string>>;
        addColumns<std::string, Pairs>("body", "profiles");
        QTest::newRow("two") << "Profiles_A_B_1/|2/"s << Pairs{{"A", "1/"}, {"B", "2/"}};
        QTest::newRow("a blank element keeps its picture's place")
            << "Profiles_A_ _C_1/|2/|3/"s << Pairs{{"A", "1/"}, {"C", "3/"}};
        QTest::newRow("fewer pictures than profiles") << "Profiles_A_B_1/"s << Pairs{{"A", "1/"}, {"B", ""}};
        QTest::newRow("more pictures than profiles") << "Profiles_A_1/|2/|3/"s << Pairs{{"A", "1/"}};
        QTest::newRow("no pictures") << "Profiles_A_"s << Pairs{{"A", ""}};
        QTest::newRow("no profiles") << "Profiles_1/"s << Pairs();
        QTest::newRow("no separator") << "Profiles"s << Pairs();
        QTest::newRow("nothing") << ""s << Pairs();
    }
    void profilesKeepTheirPictures()
    {
        using Pairs = std::vector<std::pair<std::string, std::string>>;
        QFETCH(const std::string, body);
        QFETCH(const Pairs, profiles);
        Pairs found;
        for (const ProfileElement& element : splitProfilesReply(body, 9).profiles)
            found.emplace_back(element.text, element.picture);
        QVERIFY(found == profiles);
    }

    void howManyProfilesAreTaken()
    {
        QVERIFY(!splitProfilesReply("Profiles_A_B_1/|2/", 2).isCut);
        const ProfileElements cut = splitProfilesReply("Profiles_A_B_C_1/|2/|3/", 2);
        QVERIFY(cut.isCut && cut.profiles.size() == 2);
        QVERIFY(cut.profiles[1].text == "B" && cut.profiles[1].picture == "2/");
    }

    void pictureBytesAreReadOrRefused_data()
    {
        addColumns<std::string, int, std::string>("entry", "error", "bytes");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        constexpr int overflow = numberOf(ErrorNumber::Overflow);
        QTest::newRow("whole") << "71/73/70/"s << 0 << "GIF"s;
        QTest::newRow("the last piece is no byte") << "71/73/70"s << 0 << "GI"s;
        QTest::newRow("not even when it is no number") << "71/x"s << 0 << "G"s;
        QTest::newRow("empty pieces") << "//71//73/"s << 0 << "GI"s;
        QTest::newRow("both ends of the range") << "0/255/"s << 0 << "\0\xFF"s;
        QTest::newRow("empty") << ""s << 0 << ""s;
        QTest::newRow("256") << "71/256/"s << overflow << ""s;
        QTest::newRow("negative") << "-1/"s << overflow << ""s;
        QTest::newRow("beyond 32 bits") << "4294967296/"s << overflow << ""s;
        QTest::newRow("letters") << "GIF/"s << mismatch << ""s;
    }
    void pictureBytesAreReadOrRefused()
    {
        QFETCH(const std::string, entry);
        std::string bytes;
        const int error = raisedBy([&] { bytes = decodePictureBytes(entry); });
        QTEST(error, "error");
        QTEST(bytes, "bytes");
    }
};

QTEST_APPLESS_MAIN(ProfileRecordTest)
#include "ProfileRecordTest.moc"
