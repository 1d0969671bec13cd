#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

/// The Base64 of every payload: standard alphabet, "=" padding, no line breaks. Works on bytes.
namespace base64 {

/// 4 * ceil(n / 3) characters; empty for an empty input.
std::string encode(std::string_view bytes);

/// The input's length divided by 4, times 3 bytes, less one for each "=" among its last two characters. Characters
/// behind the last whole group of four are not looked at.
/// @throws RuntimeError TypeMismatch for a character that is not in the alphabet, or a "=" that is not padding
std::string decode(std::string_view text);

/// What `decode` makes of a text, without looking at its characters: the bytes that it needs room for.
std::size_t decodedSize(std::string_view text);

/// The same into the front of `room`, which has decodedSize(text) bytes and more. Nothing behind them is touched.
/// @return the bytes in `room`
/// @throws RuntimeError as above; the front of `room` is then of no use
std::string_view decode(std::string_view text, std::span<char> room);

} // namespace base64
