#pragma once

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

} // namespace base64
