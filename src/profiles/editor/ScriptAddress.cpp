#include "profiles/editor/ScriptAddress.h"

#include "base/Text.h"

#include <charconv>

namespace {

constexpr std::string_view requestPageSystem = "Quorvane Alpha";

bool isUnreserved(char c)
{
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
           std::string_view("-._~").find(c) != std::string_view::npos;
}

/// `value` as it may stand in a query: every byte that could mean something there as "%" and two digits.
std::string escaped(std::string_view value)
{
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : value) {
        const auto byte = static_cast<unsigned char>(c);
        if (isUnreserved(c))
            text += c;
        else
            text.append({'%', digits[byte >> 4U], digits[byte & 0xFU]});
    }
    return text;
}

std::string pageAt(std::string_view url, std::string_view page)
{
    return replaced(url, "\\", "/").append("/").append(page);
}

/// "True", or a number other than 0; blanks and line ends around it do not count.
bool isTrue(std::string_view answer)
{
    constexpr std::string_view blanks = " \t\r\n";
    const auto first = answer.find_first_not_of(blanks);
    if (first == std::string_view::npos)
        return false;
    std::string_view word = answer.substr(first, answer.find_last_not_of(blanks) - first + 1);
    if (equalsIgnoringCase(word, "True"))
        return true;
    // Only digits, so that no word which the conversion knows ("inf") passes for a number.
    if (word.find_first_not_of("0123456789.+-eE") != std::string_view::npos)
        return false;
    if (word.starts_with('+'))
        word.remove_prefix(1);
    double value = 0;
    const auto end = word.data() + word.size();
    const auto result = std::from_chars(word.data(), end, value);
    return result.ec == std::errc() && result.ptr == end && value != 0;
}

} // namespace

std::string scriptCheckAddress(std::string_view system, std::string_view url)
{
    return pageAt(url, system == requestPageSystem ? "request.php?Request=Exists" : "stats_import.php");
}

std::string serverIdCheckAddress(std::string_view system, std::string_view url, std::string_view serverId)
{
    const std::string id = escaped(serverId);
    if (system == requestPageSystem)
        return pageAt(url, "request.php?Request=ValidateID&Data=" + id);
    return pageAt(url, "stats_import.php?serverid=" + id + "&data=TestData");
}

bool isScriptYes(std::string_view system, std::string_view answer)
{
    if (system == requestPageSystem)
        return isTrue(answer);
    const std::string text = lowerAscii(answer);
    return text.find("no data sent") != std::string::npos || text.find("stats imported") != std::string::npos;
}

std::string scriptEntry(std::string_view url, std::string_view serverId)
{
    return std::string(url).append(":").append(serverId);
}
