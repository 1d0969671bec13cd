#include "profiles/editor/ProfileSettings.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "base/Text.h"
#include "profiles/editor/ScriptAddress.h"
#include "support/AddRow.h"

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
    readProfileSettings(body, 100, settings);
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
        addColumns<std::string, List>("text", "entries");
        addRow("empty", ""s, List{});
        addRow("blank", " \t"s, List{});
        addRow("one", "http://a:1"s, List{"http://a:1"});
        addRow("an empty piece is one", "a||b"s, List{"a", "", "b"});
        addRow("a separator alone", "|"s, List{"", ""});
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
        addColumns<std::string, int, std::string, int>("body", "error", "name", "connectOnStart");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        const auto with = [](std::size_t element, const std::string& value) {
            std::vector<std::string> elements = wholeElements();
            elements[element - 1] = value;
            return reply(elements);
        };
        const std::string whole = reply(wholeElements());
        addRow("nothing", ""s, subscript, ""s, 0);
        addRow("the name alone", "Profile_" + base64::encode("N"), subscript, "N"s, 0);
        addRow("no list of systems", whole.substr(0, whole.rfind('_')), subscript, "Al_pha\xE9"s, 1);
        addRow("name is no Base64", "Profile_%%%%"s, mismatch, ""s, 0);
        addRow("switch is a word", with(5, "True"), mismatch, "Al_pha\xE9"s, 1);
        addRow("switch is empty", with(4, ""), mismatch, "Al_pha\xE9"s, 0);
        addRow("choice is beyond 32 bits", with(6, "99999999999"), numberOf(ErrorNumber::Overflow), "Al_pha\xE9"s, 1);
        addRow("choice is beyond the list", with(6, "7"), 0, "Al_pha\xE9"s, 1);
    }
    void aBrokenReplyKeepsWhatCameBefore()
    {
        QFETCH(const std::string, body);
        ProfileSettings settings;
        const int error = raisedBy([&] { readProfileSettings(body, 100, settings); });
        QTEST(error, "error");
        QTEST(settings.name, "name");
        QTEST(static_cast<int>(settings.connectOnStart), "connectOnStart");
    }

    void answersAreJudged_data()
    {
        addColumns<std::string, std::string, bool>("system", "answer", "isYes");
        addRow("in capitals", "Classic"s, "<b>NO DATA SENT</b>"s, true);
        addRow("imported", ""s, "x\nStats Imported"s, true);
        addRow("another page", "Classic"s, "Welcome"s, false);
        addRow("a Boolean means nothing here", "Classic"s, "True"s, false);
        addRow("nothing", "Classic"s, ""s, false);
        addRow("True", alpha, "True"s, true);
        addRow("true with a line end", alpha, " tRUE\r\n"s, true);
        addRow("False", alpha, "False"s, false);
        addRow("-1", alpha, "-1"s, true);
        addRow("+0.5", alpha, "+0.5"s, true);
        addRow("0", alpha, "0.0"s, false);
        addRow("two words", alpha, "True True"s, false);
        addRow("a number and more", alpha, "1 row"s, false);
        addRow("a word for a number", alpha, "inf"s, false);
        addRow("a sign alone", alpha, "-"s, false);
        addRow("blanks", alpha, "\r\n"s, false);
        addRow("an import script's page", alpha, "no data sent"s, false);
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
