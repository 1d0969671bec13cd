#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

/// What the updater needs of the operating system.
namespace updater {

#if defined(_WIN32)
inline constexpr const char* clientName = "QRVV3RC.exe";
#else
inline constexpr const char* clientName = "qrvv3rc";
#endif

inline constexpr const char* holdName = "QRVV3Updater.lock";

/// Held while an updater works on a folder, so that a second one does nothing.
class FolderHold
{
public:
    /// @return nothing when another updater works on the folder, or the folder cannot be written to
    static std::unique_ptr<FolderHold> take(const std::filesystem::path& folder);
    ~FolderHold();
    FolderHold(const FolderHold&) = delete;
    FolderHold& operator=(const FolderHold&) = delete;

private:
    FolderHold(std::filesystem::path file, int descriptor);

    std::filesystem::path m_file;
    int m_descriptor;
};

/// Whether somebody holds the file; not when there is none.
bool isHeld(const std::filesystem::path& file);

/// Waits until no client uses the folder.
/// @return whether it has become free within `limit`
bool waitForClient(const std::filesystem::path& folder, std::chrono::milliseconds limit);

/// Starts a program that outlives this one.
/// @return whether there is such a program
bool startProgram(const std::filesystem::path& program, const std::vector<std::string>& arguments);

/// The folder that this executable lies in.
std::filesystem::path ownFolder(const char* calledAs);

} // namespace updater
