#include "platform/SystemCodePage.h"

#include <algorithm>

namespace {

// 0x80 to 0x9F of Windows-1252. The five values without a character of their own keep their control codes, as the
// system's own conversion does.
constexpr std::array<char16_t, 32> upperControls{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

std::array<char16_t, 256> hostCharacters()
{
    std::array<char16_t, 256> characters{};
    for (std::size_t value = 0; value < characters.size(); ++value)
        characters[value] = static_cast<char16_t>(value);
    std::copy(upperControls.begin(), upperControls.end(), characters.begin() + 0x80);
    return characters;
}
