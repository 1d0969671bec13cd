#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

inline constexpr std::size_t maxVersionedFileBytes = std::size_t{64} * 1024 * 1024;

/// The four-part file version, such as "3.0.1.0", that a module carries: a PE file in its version resource, every other
/// one behind the marker "QRVRC-FILE-VERSION:" that plugins embed. Nothing when there is none.
/// @param bytes  the whole file; may hold anything
std::optional<std::string> fileVersion(std::string_view bytes);

/// The same for a file, as the system reads it where it knows version resources; nothing also for one that is missing,
/// unreadable or larger than `maxVersionedFileBytes`.
std::optional<std::string> fileVersionOf(const std::filesystem::path& file);
