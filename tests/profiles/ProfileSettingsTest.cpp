#include "profiles/ProfileSettings.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "base/Text.h"
#include "profiles/ScriptAddress.h"

using namespace std::string_literals;

namespace {

const std::string alpha = "Quorvane Alpha";

/// A reply with these elements, from the first that is used on.
std::string reply(const std::vector<std::string>& elements)
{
    std::string body = "Profile";
    for (const std::string& element : elements)
        body += '_' + base64::encode(element);
    return body;
}

/// The elements of a whole reply, whose every value is another one.
std::vector<std::string> wholeElements()
{
    return {"Al_pha\xE9", "http://a:1|http://b:2",
            "Ho|st",      "1",
            "0",          "2",
            "1",          "0",
            " 12",        "four",
            "unused",     "Classic",
            "unused",     "A|B"};
}

ProfileSettings wholeSettings()
{
    return {.name = "Al_pha\xE9",
            .scripts = {"http://a:1", "http://b:2"},
            .hostName = "Ho|st",
            .connectOnStart = 1,
            .announceRanks = 0,
            .leftLeaning = 2,
            .reportToMaster = 1,
            .antiPadding = 0,
            .padMinutes = " 12",
            .padPlayers = "four",
            .statsSystem = "Classic",
            .statsSystems = {"A", "B"}};
}

ProfileSettings settingsOf(const std::string& body)
{
    ProfileSettings settings;
    readProfileSettings(body, settings);
    return settings;
}

} // namespace

class ProfileSettingsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyElementGoesToItsPlace()
    {
        QVERIFY(settingsOf(reply(wholeElements())) == wholeSettings());
        QVERIFY(settingsOf(reply(wholeElements()) + "_%%%_more") == wholeSettings());
    }

    void listsAreSplitAsTheTrackerJoinsThem_data()
    {
        using List = std::vector<std::string>;
        QTest::addColumn<std::string>("text");
        QTest::addColumn<List>("entries");
        QTest::newRow("empty") << ""s << List{};
        QTest::newRow("blank") << " \t"s << List{};
        QTest::newRow("one") << "http://a:1"s << List{"http://a:1"};
        QTest::newRow("an empty piece is one") << "a||b"s << List{"a", "", "b"};
        QTest::newRow("a separator alone") << "|"s << List{"", ""};
    }
    void listsAreSplitAsTheTrackerJoinsThem()
    {
        QFETCH(const std::string, text);
        QFETCH(const std::vector<std::string>, entries);
        std::vector<std::string> elements = wholeElements();
        elements[1] = elements[13] = text;
        const ProfileSettings settings = settingsOf(reply(elements));
        QVERIFY(settings.scripts == entries);
        QVERIFY(settings.statsSystems == entries);
    }

    void aBrokenReplyKeepsWhatCameBefore_data()
    {
        QTest::addColumn<std::string>("body");
        QTest::addColumn<int>("error");
        QTest::addColumn<std::string>("name");
        QTest::addColumn<int>("connectOnStart");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        const auto with = [](std::size_t element, const std::string& value) {
            std::vector<std::string> elements = wholeElements();
            elements[element - 1] = value;
            return reply(elements);
        };
        const std::string whole = reply(wholeElements());
        QTest::newRow("nothing") << ""s << subscript << ""s << 0;
        QTest::newRow("the name alone") << "Profile_" + base64::encode("N") << subscript << "N"s << 0;
        QTest::newRow("no list of systems") << whole.substr(0, whole.rfind('_')) << subscript << "Al_pha\xE9"s << 1;
        QTest::newRow("name is no Base64") << "Profile_%%%%"s << mismatch << ""s << 0;
        QTest::newRow("switch is a word") << with(5, "True") << mismatch << "Al_pha\xE9"s << 1;
        QTest::newRow("switch is empty") << with(4, "") << mismatch << "Al_pha\xE9"s << 0;
        QTest::newRow("choice is beyond 32 bits")
            << with(6, "99999999999") << numberOf(ErrorNumber::Overflow) << "Al_pha\xE9"s << 1;
        QTest::newRow("choice is beyond the list") << with(6, "7") << 0 << "Al_pha\xE9"s << 1;
    }
    void aBrokenReplyKeepsWhatCameBefore()
    {
        QFETCH(const std::string, body);
        ProfileSettings settings;
        const int error = raisedBy([&] { readProfileSettings(body, settings); });
        QTEST(error, "error");
        QTEST(settings.name, "name");
        QTEST(static_cast<int>(settings.connectOnStart), "connectOnStart");
    }

    void theSettingsTravelBackInTheirOwnOrder()
    {
        std::vector<std::string> fields;
        const std::string text = settingsText(wholeSettings());
        for (const std::string_view field : split(text, '_'))
            fields.push_back(base64::decode(field));
        const std::vector<std::string> expected{
            "http://a:1|http://b:2", "Ho|st", "1", "2", "0", "1", "0", " 12", "four", "Classic"};
        QVERIFY(fields == expected);
        QVERIFY(setProfileRequest("ad_min", "7", wholeSettings()) ==
                (Request{"SetProfile", "SetProfile_ad_min", "7_" + base64::encode(text)}));
        QVERIFY(getProfileRequest("admin", "7") == (Request{"GetProfile", "GetProfile_admin", "7"}));
    }

    void onlyWhatWasChangedIsReplaced()
    {
        ProfileSettings read = wholeSettings();
        read.connectOnStart = 2; // a form shows these three as something else
        read.leftLeaning = 7;
        read.hostName = "two\nlines";
        ProfileSettings shown = read;
        shown.connectOnStart = 1;
        shown.leftLeaning = -1;
        shown.hostName = "two lines";
        QVERIFY(withChanges(read, shown, shown) == read);

        ProfileSettings typed = shown;
        typed.padPlayers = "8";
        typed.connectOnStart = 0;
        ProfileSettings expected = read;
        expected.padPlayers = "8";
        expected.connectOnStart = 0;
        QVERIFY(withChanges(read, shown, typed) == expected);
    }

    void scriptsAreAskedAsTheirSystemHasIt()
    {
        const std::string url = "http://h/a";
        QCOMPARE(scriptCheckAddress("Classic", url), "http://h/a/stats_import.php"s);
        QCOMPARE(scriptCheckAddress(alpha, url), "http://h/a/request.php?Request=Exists"s);
        QCOMPARE(scriptCheckAddress("", "http://h\\a"), "http://h/a/stats_import.php"s);
        QCOMPARE(serverIdCheckAddress("Classic", url, "7"), "http://h/a/stats_import.php?serverid=7&data=TestData"s);
        QCOMPARE(serverIdCheckAddress(alpha, url, "7"), "http://h/a/request.php?Request=ValidateID&Data=7"s);
        QCOMPARE(serverIdCheckAddress("Classic", url, "a b&data=x#%\xE9~"),
                 "http://h/a/stats_import.php?serverid=a%20b%26data%3Dx%23%25%E9~&data=TestData"s);
        QCOMPARE(scriptEntry(url, "7"), "http://h/a:7"s);
    }

    void answersAreJudged_data()
    {
        QTest::addColumn<std::string>("system");
        QTest::addColumn<std::string>("answer");
        QTest::addColumn<bool>("isYes");
        QTest::newRow("in capitals") << "Classic"s
                                     << "<b>NO DATA SENT</b>"s << true;
        QTest::newRow("imported") << ""s
                                  << "x\nStats Imported"s << true;
        QTest::newRow("another page") << "Classic"s
                                      << "Welcome"s << false;
        QTest::newRow("a Boolean means nothing here") << "Classic"s
                                                      << "True"s << false;
        QTest::newRow("nothing") << "Classic"s
                                 << ""s << false;
        QTest::newRow("True") << alpha << "True"s << true;
        QTest::newRow("true with a line end") << alpha << " tRUE\r\n"s << true;
        QTest::newRow("False") << alpha << "False"s << false;
        QTest::newRow("-1") << alpha << "-1"s << true;
        QTest::newRow("+0.5") << alpha << "+0.5"s << true;
        QTest::newRow("0") << alpha << "0.0"s << false;
        QTest::newRow("two words") << alpha << "True True"s << false;
        QTest::newRow("a number and more") << alpha << "1 row"s << false;
        QTest::newRow("a word for a number") << alpha << "inf"s << false;
        QTest::newRow("a sign alone") << alpha << "-"s << false;
        QTest::newRow("blanks") << alpha << "\r\n"s << false;
        QTest::newRow("an import script's page") << alpha << "no data sent"s << false;
    }
    void answersAreJudged()
    {
        QFETCH(const std::string, system);
        QFETCH(const std::string, answer);
        QTEST(isScriptYes(system, answer), "isYes");
    }
};

QTEST_APPLESS_MAIN(ProfileSettingsTest)
#include "ProfileSettingsTest.moc"
