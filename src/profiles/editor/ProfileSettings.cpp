#include "profiles/editor/ProfileSettings.h"

#include "base/Base64.h"
#include "base/Text.h"

#include <array>

namespace {

constexpr std::size_t replyElements = 16; // those of a reply, and what stands behind them

/// The entries of a list that "|" joins; a text without "|" is one entry, or none when it is blank.
std::vector<std::string> entriesOf(std::string_view text, std::size_t most, std::string_view what)
{
    std::vector<std::string> entries;
    if (text.find('|') == std::string_view::npos && trimmed(text).empty())
        return entries;
    for (const std::string_view entry : splitBounded(text, '|', most, what))
        entries.emplace_back(entry);
    return entries;
}

} // namespace

void readProfileSettings(std::string_view body, std::size_t most, ProfileSettings& into)
{
    const FieldList elements(std::string(body), '_', replyElements);
    const auto text = [&](std::size_t index) { return base64::decode(trimmed(elements.at(index))); };
    into.name = text(1);
    into.scripts = entriesOf(text(2), most, "scripts");
    into.hostName = text(3);
    into.connectOnStart = toInt32(text(4));
    into.announceRanks = toInt32(text(5));
    into.leftLeaning = toInt32(text(6));
    into.reportToMaster = toInt32(text(7));
    into.antiPadding = toInt32(text(8));
    into.padMinutes = text(9);
    into.padPlayers = text(10);
    into.statsSystem = text(12); // the elements 0, 11 and 13 carry nothing that is used
    into.statsSystems = entriesOf(text(14), most, "statistics systems");
}

ProfileSettings withChanges(const ProfileSettings& read, const ProfileSettings& shown, const ProfileSettings& typed)
{
    ProfileSettings result = read;
    const auto take = [&](auto setting) {
        if (typed.*setting != shown.*setting)
            result.*setting = typed.*setting;
    };
    take(&ProfileSettings::scripts);
    take(&ProfileSettings::hostName);
    take(&ProfileSettings::connectOnStart);
    take(&ProfileSettings::announceRanks);
    take(&ProfileSettings::leftLeaning);
    take(&ProfileSettings::reportToMaster);
    take(&ProfileSettings::antiPadding);
    take(&ProfileSettings::padMinutes);
    take(&ProfileSettings::padPlayers);
    take(&ProfileSettings::statsSystem);
    return result;
}

std::string settingsText(const ProfileSettings& settings)
{
    const std::array<std::string, 10> fields{
        join(settings.scripts, "|"),
        settings.hostName,
        std::to_string(settings.connectOnStart),
        std::to_string(settings.leftLeaning), // the reply has this one behind the next
        std::to_string(settings.announceRanks),
        std::to_string(settings.reportToMaster),
        std::to_string(settings.antiPadding),
        settings.padMinutes,
        settings.padPlayers,
        settings.statsSystem,
    };
    std::string text;
    for (const std::string& field : fields) {
        if (&field != fields.data())
            text += '_';
        text += base64::encode(field);
    }
    return text;
}

Request getProfileRequest(std::string_view user, std::int32_t profileId)
{
    return {"GetProfile", "GetProfile_" + std::string(user), std::to_string(profileId)};
}

Request setProfileRequest(std::string_view user, std::int32_t profileId, const ProfileSettings& settings)
{
    return {"SetProfile", "SetProfile_" + std::string(user),
            std::to_string(profileId) + '_' + base64::encode(settingsText(settings))};
}
