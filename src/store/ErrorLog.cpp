#include "store/ErrorLog.h"

#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/ErrorLogText.h"
#include "store/clsMFD.h"

#include <algorithm>
#include <optional>
#include <unordered_set>

namespace {

/// `text` with CR LF in the place of every line end, and none behind the last line.
std::string withLineEnds(std::string_view text)
{
    std::string lines;
    lines.reserve(text.size());
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\r\n", start), text.size());
        if (start > 0)
            lines += "\r\n";
        lines.append(text, start, end - start);
        start = end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
    }
    return lines;
}

/// One that is not there is no fault.
void removeFile(const std::filesystem::path& file)
{
    std::error_code fault;
    std::filesystem::remove(file, fault);
    if (fault)
        throwFileError(fault, file);
}

} // namespace

ErrorLog::Contents::Contents(std::string whole) : text(std::move(whole)), pieces(splitErrorLog(text)) {}

ErrorLog::ErrorLog(const clsMFD& store, const AppFolder& folder)
    : m_store(store),
      m_folder(folder),
      m_contents(std::make_shared<Contents>(std::string()))
{}

std::shared_ptr<ErrorLog::Contents> ErrorLog::read(const std::filesystem::path& file)
{
    const std::optional<std::string> bytes = readBytesIfPresent(file);
    return bytes ? std::make_shared<Contents>(withLineEnds(*bytes)) : nullptr;
}

std::filesystem::path ErrorLog::file() const
{
    return m_folder.path(errorLogName);
}

void ErrorLog::adopt(std::shared_ptr<Contents> contents)
{
    m_delivered.clear();
    m_contents = std::move(contents);
}

void ErrorLog::clear()
{
    m_store.WriteFile(file(), {});
    adopt(std::make_shared<Contents>(std::string()));
    removeFile(m_folder.path(olderErrorLogName));
}

bool ErrorLog::isBlank() const
{
    return std::all_of(m_contents->pieces.begin(), m_contents->pieces.end(), ::isBlank);
}

void ErrorLog::take(std::size_t piece)
{
    m_delivered.push_back(m_contents->pieces.at(piece));
    m_contents->pieces.erase(m_contents->pieces.begin() + static_cast<std::ptrdiff_t>(piece));
}

bool ErrorLog::takeTwins()
{
    const std::unordered_set<std::string_view> delivered(m_delivered.begin(), m_delivered.end());
    return std::erase_if(m_contents->pieces, [&](std::string_view piece) { return delivered.contains(piece); }) > 0;
}

ErrorLog::FileFate ErrorLog::settleFile()
{
    const std::shared_ptr<Contents> now = isBlank() ? read(file()) : nullptr;
    const std::string& known = m_contents->text;
    if (!now || !now->text.starts_with(known))
        return FileFate::Stays;
    if (now->text.size() > known.size()) {
        auto added = std::make_shared<Contents>(now->text.substr(known.size()));
        m_store.WriteFile(file(), added->text);
        adopt(std::move(added));
        return FileFate::HoldsNewOnly;
    }
    removeFile(file());
    adopt(std::make_shared<Contents>(std::string()));
    return FileFate::Deleted;
}
