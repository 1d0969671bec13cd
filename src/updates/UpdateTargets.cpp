#include "updates/UpdateTargets.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/PathBytes.h"
#include "store/AppFolder.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>
#include <utility>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view programName = "QRVV3RC.exe";
constexpr std::string_view updaterName = "QRVV3Updater.exe";
// As the build and an installation name it.
#if defined(_WIN32)
constexpr std::string_view updaterBesideProgram = updaterName;
#else
constexpr std::string_view updaterBesideProgram = "QRVV3Updater";
#endif

constexpr std::array<std::string_view, 5> ownFolders{"rcdata", "settings", "updates", "replaced", "supportsaves"};
constexpr std::array<std::string_view, 5> ownFiles{"profiles.ini", "instance.lock", "journal.txt", "qrvv3updater.lock",
                                                   "updateproblems.txt"};
constexpr std::string_view errorLogs = "errorlog"; // the one that is written, and older ones

/// Whether a name looks like one that Windows makes for a longer one: at most eight characters that end in "~" and
/// digits, and an ending of at most three.
bool isShortForm(std::string_view part)
{
    const std::string_view stem = part.substr(0, part.find('.'));
    const std::size_t tilde = stem.rfind('~');
    if (stem.size() > 8 || part.size() - stem.size() > 4 || tilde == std::string_view::npos || tilde + 1 == stem.size())
        return false;
    return stem.find_first_not_of("0123456789", tilde + 1) == std::string_view::npos;
}

/// The parts of a layout name as the file system compares them.
std::vector<std::string> partsOf(std::string_view folder, std::string_view name)
{
    std::vector<std::string> parts;
    const std::string whole = lowerAscii(folder).append("\\").append(lowerAscii(name));
    for (std::string_view part : split(whole, '\\')) {
        while (part.ends_with('.') || part.ends_with(' '))
            part.remove_suffix(1);
        if (!part.empty())
            parts.emplace_back(part);
    }
    return parts;
}

bool holds(const std::array<std::string_view, 5>& names, std::string_view name)
{
    return std::find(names.begin(), names.end(), name) != names.end();
}

bool isRoot(std::string_view folder)
{
    return folder == "\\";
}

} // namespace

bool isOwnState(std::string_view folder, std::string_view name)
{
    const std::vector<std::string> parts = partsOf(folder, name);
    if (std::any_of(parts.begin(), parts.end(), isShortForm))
        return true;
    if (parts.empty())
        return false;
    const std::string& first = parts.front();
    return holds(ownFolders, first) || (parts.size() == 1 && (holds(ownFiles, first) || first.starts_with(errorLogs)));
}

UpdateTargets::UpdateTargets(const AppFolder& folder, fs::path program, std::optional<fs::path> systemFolder)
    : m_folder(folder),
      m_program(std::move(program)),
      m_systemFolder(std::move(systemFolder))
{}

std::optional<fs::path> UpdateTargets::pathOf(std::string_view name, std::string_view folder, ListKind kind) const
{
    if (!isPlainFileName(name))
        throw RuntimeError(ErrorNumber::PermissionDenied, name);
    if (kind == ListKind::Client && folder == systemFolderMark)
        return m_systemFolder ? std::optional(*m_systemFolder / pathOfBytes(name)) : std::nullopt;
    if (!folder.starts_with('\\') || !folder.ends_with('\\'))
        throw RuntimeError(ErrorNumber::PermissionDenied, std::string(folder).append(name));
    if (isRoot(folder) && !m_program.empty() && equalsIgnoringCase(name, programName))
        return m_program;
    if (isOwnState(folder, name))
        throw RuntimeError(ErrorNumber::PermissionDenied, std::string(folder).append(name));
    fs::path path = m_folder.path(std::string(folder).append(name));
    refuseWayIntoOwnState(path);
    return path;
}

/// A link, or another name that the file system has for a folder, may lead where the name does not say.
void UpdateTargets::refuseWayIntoOwnState(const fs::path& path) const
{
    std::error_code fault;
    const fs::path root = fs::weakly_canonical(m_folder.root(), fault);
    std::string folder;
    for (const fs::path& part : fs::weakly_canonical(path.parent_path(), fault).lexically_relative(root))
        folder.append(part == "." ? std::string() : bytesOf(part)).append("\\");
    if (fault || isOwnState(folder, bytesOf(path.filename())))
        throw RuntimeError(ErrorNumber::PermissionDenied, bytesOf(path));
}

std::optional<fs::path> UpdateTargets::existingPathOf(std::string_view name, std::string_view folder,
                                                      ListKind kind) const
{
    std::optional<fs::path> path = pathOf(name, folder, kind);
    if (path && isRoot(folder) && equalsIgnoringCase(name, updaterName))
        path = updater();
    return path;
}

fs::path UpdateTargets::updater() const
{
    fs::path own = m_folder.path(std::string("\\").append(updaterName));
    std::error_code fault;
    if (fs::exists(own, fault) || m_program.empty())
        return own;
    fs::path beside = m_program.parent_path() / updaterBesideProgram;
    return fs::exists(beside, fault) ? beside : own;
}

bool UpdateTargets::isProgram(const fs::path& file) const
{
    std::error_code fault;
    return !m_program.empty() && (file == m_program || fs::equivalent(file, m_program, fault));
}

std::optional<fs::path> platformSystemFolder()
{
#if defined(_WIN32)
    const wchar_t* windows = _wgetenv(L"SystemRoot");
    return windows ? std::optional(fs::path(windows) / L"System32") : std::nullopt;
#else
    return std::nullopt;
#endif
}
