#include "Check.h"
#include "base/Text.h"
#include "store/AppFolder.h"
#include "updates/NewsFrequency.h"
#include "updates/UpdateCheck.h"
#include "updates/UpdateTargets.h"

#include <algorithm>
#include <filesystem>

namespace {

namespace fs = std::filesystem;

bool liesBelow(const fs::path& root, const fs::path& path)
{
    return std::mismatch(root.begin(), root.end(), path.begin(), path.end()).first == root.end();
}

const fs::path& root()
{
    static const fs::path folder = fs::temp_directory_path();
    return folder;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view text = viewOf(data, size);
    const AppFolder folder(root());
    const UpdateTargets targets(folder, {}, {});
    const LocalFacts facts{
        .file = [&](const UpdateRecord& record) -> std::optional<LocalFile> {
            const auto path = targets.existingPathOf(record.name, record.folder, ListKind::Client);
            check(!path || liesBelow(root(), *path)); // refused or inside
            check(!path || !isOwnState(record.folder, record.name));
            return record.size % 2 == 0 ? std::optional(LocalFile{.version = "1.2", .size = 4}) : std::nullopt;
        },
        .isForThisPlatform = [](const UpdateRecord& record) { return record.folder != systemFolderMark; },
        .hasHelpFile = [] { return true; },
        .helpVersion = [] { return std::optional<std::string>("1.0"); },
    };
    const std::vector<UpdateRecord> records = parseUpdateList(text);
    check(records.size() <= static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n')) + 1);
    Candidates found;
    for (const UpdateRecord& record : records) {
        check(record.size >= 0 && record.name.find_first_of("\r\n|") == std::string::npos);
        check(requestedName(record.name).size() == record.name.size());
        found.take(record, facts, CheckRule::Client);
    }
    check(found.updated.size() + found.added.size() + found.changed.size() + found.refused.size() <= records.size());
    isUpdateList(text, ListKind::Client);
    isUpdateList(text, ListKind::Plugins);
    areNewsDue(text, "1 Hour", {.day = 5, .hour = 9}, true);
    return 0;
}
