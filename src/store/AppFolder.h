#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Whether `name` can name a file inside a folder and nothing else: not empty, no path separator of any platform, no
/// ":", no control character, not "." or "..", none of the device names, no blank or dot at its end.
bool isPlainFileName(std::string_view name);

/// The folder that holds all of the program's state. Layout names such as "\imgs\butup.gif" begin with a backslash and
/// come in any letter case; an existing file is found whatever its case.
class AppFolder
{
public:
    /// @param root  an existing folder; all names are taken relative to it
    explicit AppFolder(const std::filesystem::path& root);

    const std::filesystem::path& root() const { return m_root; }

    /// The file or folder that `layoutName` names. Parts that exist are taken in the case that they have on disk, the
    /// rest as given.
    /// @throws RuntimeError PermissionDenied when a part of the name is no plain file name ("..", drive letters, ...)
    std::filesystem::path path(std::string_view layoutName) const;

    bool fileExists(std::string_view layoutName) const;
    bool folderExists(std::string_view layoutName) const;
    /// Creates the folder, and those above it, when missing.
    /// @throws RuntimeError PathNotFound or PermissionDenied when it cannot be made
    void makeFolder(std::string_view layoutName) const;
    /// Names of the plain files in a folder, sorted byte by byte; empty when there is no such folder.
    std::vector<std::string> fileNames(std::string_view layoutName) const;

private:
    std::filesystem::path m_root;
};
