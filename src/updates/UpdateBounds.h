#pragma once

#include <cstddef>
#include <cstdint>

/// What an update location may send. Beyond a bound the list or file is refused, and the user is told.

inline constexpr std::int64_t maxDownloadBytes = std::int64_t{512} * 1024 * 1024; ///< where the list gives no size
inline constexpr std::size_t maxUpdateListBytes = std::size_t{1024} * 1024;
inline constexpr std::size_t maxUpdateRecords = 20'000;
