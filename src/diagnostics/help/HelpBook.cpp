#include "diagnostics/help/HelpBook.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"

#include <algorithm>
#include <system_error>
#include <utility>

namespace {

/// `name` as the directory would have it: "/" in front, "/" between folders, no anchor.
std::string fullName(std::string_view name)
{
    std::string full(name.substr(0, name.find('#')));
    std::replace(full.begin(), full.end(), '\\', '/');
    return full.starts_with('/') ? full : '/' + full;
}

bool isAuthorsName(std::string_view name)
{
    // Names with these beginnings are the format's own tables; those with "/" at the end are folders.
    return name.size() > 1 && name.starts_with('/') && !name.starts_with("/#") && !name.starts_with("/$") &&
           !name.ends_with('/');
}

} // namespace

HelpBook::HelpBook(std::filesystem::path file)
    : m_path(std::move(file)),
      m_stamp(stampOf(m_path)),
      m_archive(readBytes(m_path, maxFileBytes)),
      m_objects(m_archive.objects())
{
    for (const auto& [name, length] : m_objects)
        m_anyCase.emplace(lowerAscii(name), name);
    for (const std::string& name : names()) {
        if (!lowerAscii(name).ends_with(".hhc"))
            continue;
        try {
            m_contents = parseHelpContents(page(name).value_or(std::string()));
        } catch (const RuntimeError&) {
            // The pages can be read without the contents.
        }
        break;
    }
}

std::optional<std::string> HelpBook::page(std::string_view name) const
{
    const Objects::value_type* found = find(name);
    if (!found || !isAuthorsName(found->first))
        return std::nullopt;
    if (found->second > maxPageBytes)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, found->first + " is too large");
    return m_archive.unpacked(found->first);
}

std::vector<std::string> HelpBook::names() const
{
    std::vector<std::string> all;
    for (const auto& [name, length] : m_objects) {
        if (isAuthorsName(name))
            all.push_back(name.substr(1));
    }
    return all;
}

std::string HelpBook::homePage() const
{
    for (const HelpContentsEntry& entry : m_contents) {
        if (find(entry.page))
            return entry.page;
    }
    for (const std::string& name : names()) {
        const std::string lower = lowerAscii(name);
        if (lower.ends_with(".html") || lower.ends_with(".htm"))
            return name;
    }
    return {};
}

bool HelpBook::isCurrent() const
{
    return m_stamp && stampOf(m_path) == m_stamp;
}

std::optional<HelpBook::Stamp> HelpBook::stampOf(const std::filesystem::path& file)
{
    std::error_code fault;
    Stamp stamp;
    stamp.changed = std::filesystem::last_write_time(file, fault);
    if (fault)
        return std::nullopt;
    stamp.bytes = std::filesystem::file_size(file, fault);
    if (fault)
        return std::nullopt;
    return stamp;
}

const HelpBook::Objects::value_type* HelpBook::find(std::string_view name) const
{
    const std::string full = fullName(name);
    auto found = m_objects.find(full);
    if (found == m_objects.end()) {
        const auto other = m_anyCase.find(lowerAscii(full));
        if (other != m_anyCase.end())
            found = m_objects.find(other->second);
    }
    return found == m_objects.end() ? nullptr : &*found;
}
