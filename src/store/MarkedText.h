#pragma once

#include <optional>
#include <string>
#include <string_view>

/// The text of a file that begins with a byte order mark, UTF-16 in either order or UTF-8, without the mark. Units of
/// UTF-16 are taken as they stand; half a unit at the end is left out.
/// @return nothing for a file without such a mark, and for one that is no UTF-8 behind that mark
std::optional<std::u16string> markedText(std::string_view bytes);
