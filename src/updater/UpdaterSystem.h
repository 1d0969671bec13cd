#pragma once

#include "platform/system/FileLock.h"

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

/// Held while an updater works on a folder, so that a second one does nothing.
inline constexpr const char* holdName = "QRVV3Updater.lock";

/// Waits until no client uses the folder, and takes the client's place, so that none begins meanwhile.
/// @param fault  what else keeps it from that
/// @return nothing when the folder has not become free within `limit`
std::unique_ptr<FileLock> takeFromClient(const std::filesystem::path& folder, std::chrono::milliseconds limit,
                                         std::error_code& fault);

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
