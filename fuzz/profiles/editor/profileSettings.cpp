#include "profiles/editor/ProfileSettings.h"

#include "Check.h"
#include "base/Base64.h"
#include "base/Text.h"
#include "profiles/editor/ScriptAddress.h"

#include <algorithm>

namespace {

/// More than an input has room for.
constexpr std::size_t most = 10'000;

/// A reply that carries `settings`.
std::string replyFor(const ProfileSettings& settings)
{
    std::string body = "Profile";
    for (const std::string& element :
         {settings.name, join(settings.scripts, "|"), settings.hostName, std::to_string(settings.connectOnStart),
          std::to_string(settings.announceRanks), std::to_string(settings.leftLeaning),
          std::to_string(settings.reportToMaster), std::to_string(settings.antiPadding), settings.padMinutes,
          settings.padPlayers, std::string(), settings.statsSystem, std::string(), join(settings.statsSystems, "|")})
        body += '_' + base64::encode(element);
    return body;
}

void checkReply(std::string_view body)
{
    ProfileSettings read;
    const auto error = raisedBy([&] { readProfileSettings(body, most, read); });
    if (error) {
        check(isDecoderError(error));
        return;
    }
    ProfileSettings again;
    readProfileSettings(replyFor(read), most, again);
    check(again == read);
    check(withChanges(read, again, again) == read);
    const std::string text = settingsText(read);
    check(split(text, '_').size() == 10);
    check(base64::decode(split(text, '_').front()) == join(read.scripts, "|"));
}

/// Whatever the server id holds, it stays one value of the query.
void checkAddresses(std::string_view id)
{
    for (const std::string_view system : {"Quorvane Alpha", "Classic"}) {
        const std::string address = serverIdCheckAddress(system, "http://h", id);
        const std::string plain = serverIdCheckAddress(system, "http://h", "");
        check(std::count(address.begin(), address.end(), '&') == std::count(plain.begin(), plain.end(), '&'));
        check(std::all_of(address.begin(), address.end(), [](char c) { return c > ' ' && c < '\x7F'; }));
        check(address.find('#') == std::string::npos);
        isScriptYes(system, id);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    checkReply(input);
    checkAddresses(input);
    std::string body = "Profile";
    for (const std::string_view element : split(input, '\n'))
        body += '_' + base64::encode(element);
    checkReply(body);
    return 0;
}
