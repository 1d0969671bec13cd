#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string_view>
#include <system_error>

/// A file that one process at a time holds. The system gives the lock and takes it back when the process ends, however
/// that comes about: what the file says, and who wrote it, decides nothing.
class FileLock
{
public:
    /// @param text   what the file is to say of its holder; can be read by everybody
    /// @param fault  what else keeps the lock from being taken
    /// @return nothing when somebody holds the file, or with a fault
    static std::unique_ptr<FileLock> take(const std::filesystem::path& file, std::string_view text,
                                          std::error_code& fault);
    /// Removes the file.
    ~FileLock();
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;

private:
    FileLock(std::filesystem::path file, std::intptr_t handle);

    std::filesystem::path m_file;
    std::intptr_t m_handle;
};
