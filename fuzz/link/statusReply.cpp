#include "link/StatusReply.h"

#include "Check.h"
#include "base/Base64.h"
#include "base/Text.h"

#include <algorithm>

namespace {

/// More than an input has room for.
constexpr std::size_t most = 10'000;

void checkEntry(std::string_view entry)
{
    TrackerPlugin plugin;
    const auto error = raisedBy([&] { plugin = decodeStatusEntry(entry); });
    check(!error || error == ErrorNumber::TypeMismatch);
    if (error)
        return;
    check(plugin.name.size() <= entry.size());
    check(plugin.version.has_value() == (std::count(entry.begin(), entry.end(), '-') >= 3));
    check(!plugin.version || entry.find(*plugin.version) != std::string_view::npos);
}

void checkReply(std::string_view body)
{
    std::vector<std::string_view> entries;
    const auto error = raisedBy([&] { entries = splitStatusReply(body, most); });
    const std::string_view first = body.substr(0, body.find('|'));
    check(error.has_value() == (!trimmed(first).empty() && first.find('_') == std::string_view::npos));
    check(!error || error == ErrorNumber::SubscriptOutOfRange);
    for (const std::string_view entry : entries) {
        check(liesIn(body, entry));
        check(!trimmed(entry).empty() && entry.find('|') == std::string_view::npos);
        checkEntry(entry);
    }
}

/// Names that no field separator can be part of survive whatever bytes they have.
void checkRoundTrip(std::string_view name, std::string_view version)
{
    const std::string body = "Status_" + base64::encode(name) + "-file-1-" + std::string(version);
    if (version.find_first_of("-_|") != std::string_view::npos)
        return;
    const std::vector<std::string_view> entries = splitStatusReply(body, most);
    check(entries.size() == 1);
    check(decodeStatusEntry(entries.front()) == TrackerPlugin{std::string(name), std::string(version)});
}

void checkPluginMessage(std::string_view body)
{
    PluginMessage message;
    const auto error = raisedBy([&] { message = decodePluginMessage(body); });
    const std::size_t component = body.find('_');
    check(error.has_value() == (component == std::string_view::npos));
    check(!error || error == ErrorNumber::SubscriptOutOfRange);
    if (error)
        return;
    const std::string_view behind = body.substr(component + 1);
    const std::size_t payload = behind.find('_');
    check(message.payload == (payload == std::string_view::npos ? std::string_view() : behind.substr(payload + 1)));
    check(message.component.find('_') == std::string::npos);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);
    checkReply(input);
    checkEntry(input);
    checkPluginMessage(input);
    check(isPluginMessage(input) == input.starts_with("Plugin"));
    const std::size_t end = std::min(input.find('\n'), input.size());
    checkRoundTrip(input.substr(0, end), input.substr(std::min(end + 1, size)));
    return 0;
}
