#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <source_location>
#include <string>
#include <string_view>
#include <system_error>

/// Whole files as bytes. Faults of the disk become RuntimeErrors with the classic numbers and the file's name.

/// Who may read a file that is written.
enum class Access {
    AsUsual,   ///< a new file what the user's settings give it; an existing one keeps the rights that it has
    OwnerOnly, ///< nobody else, now and before
};

inline constexpr std::size_t maxTextFileBytes = std::size_t{256} * 1024 * 1024;

/// Raises the number that belongs to a fault of the file system.
/// @throws RuntimeError FileNotFound, PathNotFound when `path`'s folder is what is missing, PermissionDenied, DiskFull,
///         otherwise DeviceInputOutput
[[noreturn]] void throwFileError(std::error_code fault, const std::filesystem::path& path,
                                 std::source_location where = std::source_location::current());

/// The file's bytes, or nothing when there is no such file or folder.
/// @throws RuntimeError InvalidFileFormat for more than `maxBytes`, PermissionDenied also for what is no plain file
std::optional<std::string> readBytesIfPresent(const std::filesystem::path& file,
                                              std::size_t maxBytes = maxTextFileBytes,
                                              std::source_location where = std::source_location::current());

/// The same for a file that must be there.
/// @throws RuntimeError FileNotFound, PathNotFound
std::string readBytes(const std::filesystem::path& file, std::size_t maxBytes = maxTextFileBytes,
                      std::source_location where = std::source_location::current());

/// Makes the file hold exactly `bytes`, through a temporary file beside it: whatever fails, the file holds either all
/// the old or all the new bytes. A link is followed, so that it stays one.
void writeBytes(const std::filesystem::path& file, std::string_view bytes, Access access = Access::AsUsual,
                std::source_location where = std::source_location::current());

/// The same for what can be fetched anew: it does not wait for the disk, so a loss of power may take the file.
void writeCacheBytes(const std::filesystem::path& file, std::string_view bytes,
                     std::source_location where = std::source_location::current());

/// Adds `bytes` at the end of the file, which is created when missing. When they do not all fit, none are added.
void appendBytes(const std::filesystem::path& file, std::string_view bytes,
                 std::source_location where = std::source_location::current());

/// Makes `to` the same file as `from` is now, at once or not at all; `to` is made anew.
void copyFile(const std::filesystem::path& from, const std::filesystem::path& to,
              std::source_location where = std::source_location::current());

/// Puts the whole file `from` in the place of `to`, whose rights it takes over; a link is followed. Whatever fails,
/// `to` is as it was, and `from` is still there.
void moveFile(const std::filesystem::path& from, const std::filesystem::path& to,
              std::source_location where = std::source_location::current());
