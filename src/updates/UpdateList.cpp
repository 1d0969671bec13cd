#include "updates/UpdateList.h"

#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::size_t fieldCount = 6;
constexpr std::string_view clientMarker = "qrvv3rc.exe|\\|executable file|(qrv) main executable|";
constexpr std::string_view pluginMarker = "|\\plugins\\|plugin|";

} // namespace

bool isUpdateList(std::string_view text, ListKind kind)
{
    return lowerAscii(text).find(kind == ListKind::Client ? clientMarker : pluginMarker) != std::string::npos;
}

std::vector<UpdateRecord> parseUpdateList(std::string_view text)
{
    std::vector<UpdateRecord> records;
    const std::string cleaned = without(text, "\r");
    for (const std::string_view line : split(cleaned, '\n')) {
        const std::vector<std::string_view> fields = split(line, '|');
        if (fields.size() < fieldCount)
            continue;
        records.push_back({
            .name = std::string(fields[0]),
            .folder = std::string(fields[1]),
            .type = std::string(fields[2]),
            .description = std::string(fields[3]),
            .size = std::max(0, parseInt32(fields[4]).value_or(0)),
            .version = std::string(fields[5]),
        });
    }
    return records;
}

std::string requestedName(std::string_view name)
{
    return replaced(name, "exe", "fle");
}
