#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// Words of more than 1,000 characters, which are none: a text box takes seconds to wrap one.
namespace longWords {

inline constexpr std::size_t longest = 1000;

/// Where a text's long words are to be broken: the offsets of the characters that begin a new line then, ascending.
std::vector<std::size_t> breaksIn(std::string_view text);

/// The text with its long words broken over lines.
std::string broken(std::string_view text);

} // namespace longWords
