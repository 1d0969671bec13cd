#pragma once

#include "base/Bounds.h"

#include <cstdint>
#include <string>
#include <string_view>

/// Expands a compressed text: zlib, gzip or raw deflate, told apart by their first bytes. Bytes behind the compressed
/// text are not looked at.
/// @param length  bytes of the expanded text as declared by the sender; the text must have exactly as many
/// @throws RuntimeError OutOfMemory for a length above the bound for log texts; InvalidFileFormat for damaged data, for
///         another length, and, before any memory is taken, for a length that so few bytes cannot expand to
std::string expand(std::string_view data, std::uint32_t length, const Bounds& bounds = {});

/// The beginning of such a text: all of it when it has no more bytes than `most` and a little, else `most` bytes, for
/// which no more memory is taken than for them. What is behind them is neither expanded nor checked.
std::string expandBeginning(std::string_view data, std::uint32_t length, std::size_t most, const Bounds& bounds = {});
