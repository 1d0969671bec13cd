#include "updates/UpdateTargets.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "store/AppFolder.h"

#include <cstdlib>
#include <utility>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view programName = "QRVV3RC.exe";
constexpr std::string_view updaterName = "QRVV3Updater.exe";
constexpr std::string_view updaterBesideProgram = "QRVV3Updater"; // as the build and an installation name it

bool isRoot(std::string_view folder)
{
    return folder == "\\";
}

} // namespace

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
        return m_systemFolder ? std::optional(*m_systemFolder / fs::path(name)) : std::nullopt;
    if (!folder.starts_with('\\') || !folder.ends_with('\\'))
        throw RuntimeError(ErrorNumber::PermissionDenied, std::string(folder).append(name));
    if (isRoot(folder) && !m_program.empty() && equalsIgnoringCase(name, programName))
        return m_program;
    return m_folder.path(std::string(folder).append(name));
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
