#pragma once

#include "updates/UpdateList.h"

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

class AppFolder;

/// Whether a layout name means something of the client's own that no update may touch: accounts, settings, logs, what
/// waits or was replaced, in any letter case. What looks like the short form of a long name counts too.
/// @param folder  with or without backslashes at its ends
bool isOwnState(std::string_view folder, std::string_view name);

/// Says which file of this machine a list means. Names and folders are data: what would lead out of the program folder
/// is refused, and so is what belongs to the client's own state.
class UpdateTargets
{
public:
    /// @param folder        outlives this
    /// @param program       the running executable, which "\QRVV3RC.exe" means wherever it lies; may be empty
    /// @param systemFolder  what "{System}" means; nothing where the platform has no such folder
    UpdateTargets(const AppFolder& folder, std::filesystem::path program,
                  std::optional<std::filesystem::path> systemFolder);

    /// The full path of a file, which need not exist.
    /// @return nothing for a file of the system folder where there is none
    /// @throws RuntimeError PermissionDenied for a name that is no plain file name and a folder that leaves the program
    ///         folder, does not begin and end with "\" or is the client's own state
    std::optional<std::filesystem::path> pathOf(std::string_view name, std::string_view folder, ListKind kind) const;
    /// The same for a file that is looked at only: the updater may lie beside the program instead.
    std::optional<std::filesystem::path> existingPathOf(std::string_view name, std::string_view folder,
                                                        ListKind kind) const;

    const AppFolder& folder() const { return m_folder; }
    const std::filesystem::path& program() const { return m_program; }
    /// The program that installs what waits: from the program folder, else from beside the program. Need not exist.
    std::filesystem::path updater() const;
    /// Whether this is the running executable.
    bool isProgram(const std::filesystem::path& file) const;

private:
    void refuseWayIntoOwnState(const std::filesystem::path& path) const;

    const AppFolder& m_folder;
    std::filesystem::path m_program;
    std::optional<std::filesystem::path> m_systemFolder;
};

/// The folder that "{System}" means on this platform.
std::optional<std::filesystem::path> platformSystemFolder();
