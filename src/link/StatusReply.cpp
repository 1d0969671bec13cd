#include "link/StatusReply.h"

#include "base/Base64.h"
#include "base/Text.h"

namespace {

// How many parts are told apart; what stands behind the last of them belongs to it.
constexpr std::size_t leadingWords = 3;
constexpr std::size_t entryFields = 5;
constexpr std::size_t messageParts = 3;

} // namespace

std::vector<std::string_view> splitStatusReply(std::string_view body, std::size_t most)
{
    std::vector<std::string_view> entries;
    bool isFirst = true;
    for (std::string_view entry : splitBounded(body, '|', most, "plugins of the tracker")) {
        if (isFirst && !trimmed(entry).empty()) {
            const FieldList words(std::string(entry), '_', leadingWords);
            entry = entry.substr(words.at(0).size() + 1, words.at(1).size());
        }
        isFirst = false;
        if (!trimmed(entry).empty())
            entries.push_back(entry);
    }
    return entries;
}

TrackerPlugin decodeStatusEntry(std::string_view entry)
{
    const FieldList fields(std::string(entry), '-', entryFields);
    TrackerPlugin plugin{.name = base64::decode(fields.at(0)), .version = {}};
    if (fields.size() > 3)
        plugin.version = std::string(fields.at(3));
    return plugin;
}

bool isPluginMessage(std::string_view body)
{
    return body.substr(0, 6) == "Plugin";
}

PluginMessage decodePluginMessage(std::string_view body)
{
    const FieldList parts(std::string(body), '_', messageParts);
    return {.component = replaced(parts.at(1), "qrv", "qrvrc"), .payload = std::string(parts.from(2))};
}
