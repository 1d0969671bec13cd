#include "publisher/ReleaseFiles.h"

#include "base/Bounds.h"
#include "base/Text.h"
#include "platform/system/ExecutableFile.h"
#include "platform/system/FileVersion.h"
#include "platform/system/PathBytes.h"
#include "publisher/ReleaseCheck.h"
#include "updates/Sha256.h"

#include <algorithm>
#include <array>
#include <limits>
#include <map>
#include <stdexcept>
#include <utility>

namespace fs = std::filesystem;

namespace {

using namespace std::string_view_literals;

struct KnownSystem
{
    std::string_view kind;
    std::string_view name;
};

constexpr std::array knownSystems{
    KnownSystem{"\x7F"
                "ELF\x02\x01\x3E\0"sv,
                "linux-x86_64"},
    KnownSystem{"\x7F"
                "ELF\x02\x01\xB7\0"sv,
                "linux-aarch64"},
    KnownSystem{"PE\0\0\x64\x86"sv, "windows-x86_64"},
    KnownSystem{"PE\0\0\x4C\x01"sv, "windows-x86"},
};

/// How a program is named in a list, whatever its system calls it.
struct Program
{
    std::string_view name; ///< in lower case
    std::string_view listed;
    std::string_view description;
};

constexpr std::array programs{
    Program{"qrvv3rc", "qrvv3rc.exe", "(QRV) Main Executable"},
    Program{"qrvv3rc.exe", "qrvv3rc.exe", "(QRV) Main Executable"},
    Program{"qrvv3updater", "QRVV3Updater.exe", "Installs updates"},
    Program{"qrvv3updater.exe", "QRVV3Updater.exe", "Installs updates"},
};

struct FileType
{
    std::string_view ending;
    std::string_view text;
};

constexpr std::array fileTypes{
    FileType{".exe", "Executable file"},
    FileType{".dll", "Library"},
    FileType{".chm", "Help File"},
    FileType{".html", "Help File"},
    FileType{".gif", "Picture"},
    FileType{".png", "Picture"},
    FileType{".txt", "Text"},
};

std::string_view typeOf(std::string_view name, ListKind kind)
{
    const std::string lower = lowerAscii(name);
    if (kind == ListKind::Plugins && lower.ends_with(".dll"))
        return "Plugin";
    const auto* const found = std::find_if(fileTypes.begin(), fileTypes.end(),
                                           [&lower](const FileType& type) { return lower.ends_with(type.ending); });
    return found == fileTypes.end() ? "Data file" : found->text;
}

/// The folder as the lists write it: between backslashes.
std::string folderField(const fs::path& relative)
{
    std::string folder = "\\";
    for (const fs::path& part : relative.parent_path())
        folder.append(bytesOf(part)).append("\\");
    return folder;
}

ReleaseFile releaseFile(const fs::path& root, const fs::path& file)
{
    const fs::path relative = file.lexically_relative(root);
    UpdateRecord record{
        .name = bytesOf(file.filename()), .folder = folderField(relative), .type = {}, .description = {}};
    const ListKind kind = lowerAscii(record.folder).starts_with("\\plugins\\") ? ListKind::Plugins : ListKind::Client;
    if (record.folder == "\\") {
        const auto* const program = std::find_if(programs.begin(), programs.end(), [&record](const Program& known) {
            return equalsIgnoringCase(record.name, known.name);
        });
        if (program != programs.end()) {
            record.name = program->listed;
            record.description = program->description;
        }
    }
    record.type = typeOf(record.name, kind);
    if (record.description.empty())
        record.description = record.folder.substr(1) + record.name;
    const std::uintmax_t bytes = fs::file_size(file);
    if (bytes == 0 ||
        bytes > std::min<std::uintmax_t>(Bounds{}.downloadBytes, std::numeric_limits<std::int32_t>::max()))
        throw std::runtime_error(bytesOf(file) + ": is empty, or larger than a client downloads");
    record.size = static_cast<std::int32_t>(bytes);
    record.version = fileVersionOf(file).value_or(std::string());
    if (const std::string fault = faultOf(record, kind); !fault.empty())
        throw std::runtime_error(bytesOf(file) + ": " + fault);
    return {.source = file, .kind = kind, .record = std::move(record), .digest = sha256Of(file)};
}

/// The manual carries no version of its own; it goes with the program.
void giveHelpTheProgramsVersion(Release& release)
{
    const auto find = [&release](std::string_view name) {
        return std::find_if(release.files.begin(), release.files.end(), [name](const ReleaseFile& file) {
            return file.record.folder == "\\" && file.record.name == name;
        });
    };
    const auto help = find("help.chm");
    const auto program = find("qrvv3rc.exe");
    if (help != release.files.end() && program != release.files.end())
        help->record.version = program->record.version;
}

} // namespace

std::string systemOf(std::string_view kind)
{
    const auto* const found = std::find_if(knownSystems.begin(), knownSystems.end(),
                                           [kind](const KnownSystem& known) { return known.kind == kind; });
    return found == knownSystems.end() ? std::string() : std::string(found->name);
}

std::vector<Release> releasesOf(const std::vector<fs::path>& folders)
{
    std::map<std::string, Release> releases;
    for (const fs::path& folder : folders) {
        std::string system;
        std::vector<ReleaseFile> files;
        for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder)) {
            if (entry.is_directory())
                continue;
            const std::string kind = executableKind(entry.path());
            if (!kind.empty() && system.empty())
                system = systemOf(kind);
            if (!kind.empty() && (system.empty() || systemOf(kind) != system))
                throw std::runtime_error(
                    bytesOf(entry.path()) +
                    ": is for another system than the rest of its folder, or for none with a client");
            files.push_back(releaseFile(folder, entry.path()));
        }
        if (system.empty())
            throw std::runtime_error(bytesOf(folder) + ": holds no program that says which system it is for");
        Release& release = releases[system];
        release.system = system;
        std::move(files.begin(), files.end(), std::back_inserter(release.files));
    }
    std::vector<Release> sorted;
    for (auto& [system, release] : releases) {
        std::sort(release.files.begin(), release.files.end(), [](const ReleaseFile& left, const ReleaseFile& right) {
            return std::tie(left.record.folder, left.record.name) < std::tie(right.record.folder, right.record.name);
        });
        giveHelpTheProgramsVersion(release);
        sorted.push_back(std::move(release));
    }
    return sorted;
}

std::string listText(const Release& release, ListKind kind)
{
    std::string text = kind == ListKind::Plugins ? "|\\Plugins\\|Plugin|\r\n" : "";
    for (const ReleaseFile& file : release.files) {
        const UpdateRecord& record = file.record;
        if (file.kind == kind)
            text.append(join({record.name, record.folder, record.type, record.description, std::to_string(record.size),
                              record.version},
                             "|"))
                .append("\r\n");
    }
    return text;
}

std::string manifestText(const Release& release, std::uint64_t serial, std::string_view date)
{
    std::string text = "serial " + std::to_string(serial) + "\ndate " + std::string(date) + '\n';
    for (const ReleaseFile& file : release.files) {
        const UpdateRecord& record = file.record;
        text.append(join({file.digest, std::to_string(record.size), record.version.empty() ? "-" : record.version,
                          record.folder, record.name},
                         " "))
            .append("\n");
    }
    return text;
}
