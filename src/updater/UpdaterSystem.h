#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <optional>
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

/// A program that was started and outlives this one.
class StartedProgram
{
public:
    /// @return nothing when there is no such program
    static std::unique_ptr<StartedProgram> start(const std::filesystem::path& program,
                                                 const std::vector<std::string>& arguments);
    ~StartedProgram();
    StartedProgram(const StartedProgram&) = delete;
    StartedProgram& operator=(const StartedProgram&) = delete;

    /// Its exit status once it has ended, not 0 when a fault ended it; nothing as long as it runs.
    std::optional<int> exitStatus();

private:
    explicit StartedProgram(std::intptr_t process);

    std::intptr_t m_process; ///< a process id, or a handle where the system has such
};

/// Whether a folder or file is this user's own, or nobody else could have put it there.
bool isOwn(const std::filesystem::path& path);

/// The folder that this executable lies in.
std::filesystem::path ownFolder(const char* calledAs);

} // namespace updater
