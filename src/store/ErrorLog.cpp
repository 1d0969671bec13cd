#include "store/ErrorLog.h"

#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/ErrorLogText.h"
#include "store/clsMFD.h"

#include <algorithm>
#include <filesystem>
#include <unordered_set>

namespace {

constexpr std::string_view logFile = "\\ErrorLog.txt";

} // namespace

ErrorLog::ErrorLog(const clsMFD& store, const AppFolder& folder) : m_store(store), m_folder(folder) {}

bool ErrorLog::load()
{
    std::optional<std::string> text = fileText();
    if (!text)
        return false;
    adopt(*std::move(text));
    return true;
}

void ErrorLog::clear()
{
    m_store.WriteFile(m_folder.path(logFile), {});
    adopt({});
}

bool ErrorLog::isBlank() const
{
    return std::all_of(m_pieces.begin(), m_pieces.end(), ::isBlank);
}

void ErrorLog::take(std::size_t piece)
{
    m_delivered.push_back(m_pieces.at(piece));
    m_pieces.erase(m_pieces.begin() + static_cast<std::ptrdiff_t>(piece));
}

bool ErrorLog::takeTwins()
{
    const std::unordered_set<std::string_view> delivered(m_delivered.begin(), m_delivered.end());
    return std::erase_if(m_pieces, [&](std::string_view piece) { return delivered.contains(piece); }) > 0;
}

ErrorLog::FileFate ErrorLog::settleFile()
{
    const std::optional<std::string> now = isBlank() ? fileText() : std::nullopt;
    if (!now || !now->starts_with(m_text))
        return FileFate::Stays;
    const std::filesystem::path file = m_folder.path(logFile);
    if (now->size() > m_text.size()) {
        std::string added = now->substr(m_text.size());
        m_store.WriteFile(file, added);
        adopt(std::move(added));
        return FileFate::HoldsNewOnly;
    }
    std::error_code fault;
    std::filesystem::remove(file, fault);
    if (fault)
        throwFileError(fault, file);
    adopt({});
    return FileFate::Deleted;
}

std::optional<std::string> ErrorLog::fileText() const
{
    if (!m_folder.fileExists(logFile))
        return {};
    return join(m_store.ReadFile(m_folder.path(logFile)), "\r\n");
}

void ErrorLog::adopt(std::string text)
{
    m_delivered.clear();
    m_text = std::move(text);
    m_pieces = splitErrorLog(m_text);
}
