#include "app/Leftovers.h"

#include "platform/system/PathBytes.h"

#include <exception>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr int deepest = 4;                   // folders of updates and pictures lie no deeper
constexpr std::size_t mostLookedAt = 20'000; // a start is not to wait for a folder that somebody filled

bool isLeftover(const fs::path& file)
{
    const std::string name = bytesOf(file.filename());
    return name.starts_with('.') && (name.ends_with(".download") || name.ends_with(".tmp"));
}

} // namespace

void sweepLeftovers(const fs::path& folder) noexcept
{
    try {
        std::error_code fault;
        std::size_t count = 0;
        std::vector<fs::path> found;
        fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, fault);
        for (; !fault && entry != fs::recursive_directory_iterator() && count < mostLookedAt; ++count) {
            if (entry.depth() >= deepest)
                entry.disable_recursion_pending();
            std::error_code ignored;
            if (isLeftover(entry->path()) && entry->symlink_status(ignored).type() == fs::file_type::regular)
                found.push_back(entry->path());
            entry.increment(fault);
        }
        for (const fs::path& file : found)
            fs::remove(file, fault);
    } catch (const std::exception&) {
        return; // they are swept at the next start
    }
}
