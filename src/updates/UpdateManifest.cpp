#include "updates/UpdateManifest.h"

#include "base/Bounds.h"
#include "base/Text.h"
#include "updates/Sha256.h"

#include <charconv>
#include <utility>

namespace {

/// The text up to the next blank, which is taken off together with it; nothing where there is no blank.
std::optional<std::string_view> takeField(std::string_view& rest)
{
    const std::size_t end = rest.find(' ');
    if (end == std::string_view::npos)
        return {};
    const std::string_view field = rest.substr(0, end);
    rest.remove_prefix(end + 1);
    return field;
}

/// A folder ends with the first backslash that a blank follows, so that it may hold blanks itself.
std::optional<std::string_view> takeFolder(std::string_view& rest)
{
    if (!rest.starts_with('\\'))
        return takeField(rest);
    const std::size_t end = rest.find("\\ ");
    if (end == std::string_view::npos)
        return {};
    const std::string_view folder = rest.substr(0, end + 1);
    rest.remove_prefix(end + 2);
    return folder;
}

/// Decimal digits only.
std::optional<std::uint64_t> numberOf(std::string_view text)
{
    std::uint64_t value = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (text.empty() || fault != std::errc() || end != text.data() + text.size())
        return {};
    return value;
}

bool isDate(std::string_view text)
{
    constexpr std::string_view form = "0000-00-00";
    if (text.size() != form.size())
        return false;
    for (std::size_t index = 0; index < form.size(); ++index) {
        const bool isDigit = text[index] >= '0' && text[index] <= '9';
        if (form[index] == '0' ? !isDigit : text[index] != form[index])
            return false;
    }
    return true;
}

bool isDigest(std::string_view text)
{
    return text.size() == Sha256::digitCount &&
           text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos;
}

std::string keyOf(std::string_view folder, std::string_view name)
{
    return lowerAscii(folder).append(1, '|').append(lowerAscii(name));
}

} // namespace

std::optional<UpdateManifest> UpdateManifest::parse(std::string_view text)
{
    if (text.size() > Bounds{}.updateListBytes)
        return {};
    UpdateManifest manifest;
    std::size_t number = 0;
    for (std::string_view line : split(text, '\n')) {
        if (line.ends_with('\r'))
            line.remove_suffix(1);
        if (line.empty())
            continue;
        ++number;
        if (number > 2) {
            if (!manifest.add(line))
                return {};
            continue;
        }
        const std::optional<std::string_view> word = takeField(line);
        if (word != (number == 1 ? "serial" : "date"))
            return {};
        if (number == 1) {
            const std::optional<std::uint64_t> serial = numberOf(line);
            if (!serial)
                return {};
            manifest.m_serial = *serial;
            continue;
        }
        if (!isDate(line))
            return {};
        manifest.m_date = line;
    }
    return number < 2 ? std::nullopt : std::optional(std::move(manifest));
}

bool UpdateManifest::add(std::string_view line)
{
    if (m_entries.size() == Bounds{}.updateListRecords)
        return false;
    const auto digest = takeField(line);
    const auto size = takeField(line);
    const auto version = takeField(line);
    const auto folder = takeFolder(line);
    if (!digest || !size || !version || !folder || line.empty() || !isDigest(*digest))
        return false;
    const std::optional<std::uint64_t> bytes = numberOf(*size);
    if (!bytes)
        return false;
    ManifestEntry entry{.digest = lowerAscii(*digest),
                        .size = *bytes,
                        .version = std::string(*version == "-" ? std::string_view() : *version),
                        .folder = std::string(*folder),
                        .name = std::string(line)};
    std::string key = keyOf(entry.folder, entry.name);
    return m_entries.try_emplace(std::move(key), std::move(entry)).second;
}

const ManifestEntry* UpdateManifest::find(std::string_view folder, std::string_view name) const
{
    const auto found = m_entries.find(keyOf(folder, name));
    return found == m_entries.end() ? nullptr : &found->second;
}

bool agrees(const ManifestEntry& entry, const UpdateRecord& record)
{
    return equalsIgnoringCase(entry.folder, record.folder) && equalsIgnoringCase(entry.name, record.name) &&
           entry.version == record.version && record.size >= 0 && entry.size == static_cast<std::uint64_t>(record.size);
}
