#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;

/// Files that could not be put where they belong wait in "\Updates", each under its own name; "updates.ini" there says
/// where each belongs. At the next start they are installed while the program is not running.
inline constexpr std::string_view updatesFolder = "\\Updates";

/// A file of an update, by where it belongs.
struct WaitingFile
{
    std::string name;
    std::string folder; ///< as in the list that it came from

    bool operator==(const WaitingFile&) const = default;
};

/// The files that wait, in the order in which they came. Entries are as they stand in the file: they may be anything.
std::vector<WaitingFile> waitingFiles(const AppFolder& folder);

/// Whether a file of that name waits for another folder. The two could not lie side by side.
bool waitsForAnotherFolder(const AppFolder& folder, const WaitingFile& file);

/// Takes files off the list, and away where they are there.
/// @throws RuntimeError from the disk
void dropWaiting(const AppFolder& folder, const std::vector<WaitingFile>& dropped);

/// Moves a file that has arrived whole into "\Updates" and writes down where it belongs. When that fails, it is gone
/// and nothing waits.
/// @param arrived  on the same disk as the program folder
/// @throws RuntimeError PermissionDenied for a name that would hide the list itself, InvalidProcedureCall for one that
///         it cannot hold, and what the disk raises
void divert(const AppFolder& folder, const std::filesystem::path& arrived, const WaitingFile& file);
