#include "updates/DiskFacts.h"

#include "platform/system/FileBytes.h"
#include "platform/system/FileVersion.h"
#include "store/AppFolder.h"
#include "store/IniText.h"
#include "updates/InstallUpdates.h"
#include "updates/UpdateTargets.h"

#include <map>
#include <memory>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view section = "Settings";
constexpr std::string_view helpKey = "help";

std::optional<LocalFile> fileAt(const fs::path& path)
{
    std::error_code fault;
    if (!fs::is_regular_file(path, fault))
        return {};
    const std::uintmax_t size = fs::file_size(path, fault);
    if (fault)
        return {};
    return LocalFile{.version = fileVersionOf(path).value_or(std::string()), .size = size};
}

} // namespace

LocalFacts diskFacts(const UpdateTargets& targets, ListKind kind, std::string version, std::string_view helpVersionIn)
{
    const AppFolder& folder = targets.folder();
    // A list may speak of one file many times, and looking at it means reading it.
    const auto seen = std::make_shared<std::map<fs::path, std::optional<LocalFile>>>();
    return {
        .file = [&targets, kind, version = std::move(version),
                 seen](const UpdateRecord& record) -> std::optional<LocalFile> {
            const std::optional<fs::path> path = targets.existingPathOf(record.name, record.folder, kind);
            if (!path)
                return {};
            const auto [place, isNew] = seen->try_emplace(*path);
            std::optional<LocalFile>& file = place->second;
            if (isNew) {
                file = fileAt(*path);
                if (file && targets.isProgram(*path))
                    file->version = version;
            }
            return file;
        },
        .isForThisPlatform =
            [&targets, kind](const UpdateRecord& record) {
                return targets.pathOf(record.name, record.folder, kind).has_value();
            },
        .hasHelpFile = [&folder] { return folder.fileExists("\\help.chm"); },
        .helpVersion = [&folder, file = std::string(helpVersionIn)]() -> std::optional<std::string> {
            const fs::path path = folder.path(file);
            const std::optional<std::string> bytes = readBytesIfPresent(path, IniText::maxBytes);
            if (!bytes)
                return {};
            return IniText(*bytes, path.string()).value(section, helpKey).value_or(std::string());
        },
    };
}

void noteHelpVersion(const UpdateTargets& targets, std::string_view version)
{
    const fs::path path = targets.folder().path(helpVersionFile);
    keepReplaced(targets.folder(), path, {.name = std::string(helpVersionFile.substr(1)), .folder = "\\"});
    IniText text(readBytesIfPresent(path, IniText::maxBytes).value_or(std::string()), path.string());
    text.setValue(section, helpKey, version);
    writeBytes(path, text.bytes());
}
