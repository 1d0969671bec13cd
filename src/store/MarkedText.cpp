#include "store/MarkedText.h"

#include <array>
#include <cstdint>

namespace {

constexpr std::uint32_t firstSurrogate = 0xD800;
constexpr std::uint32_t lastSurrogate = 0xDFFF;
constexpr std::uint32_t firstPair = 0x10000; ///< the first character that takes two units
constexpr std::uint32_t lastCharacter = 0x10FFFF;

constexpr std::uint32_t valueOf(char byte)
{
    return static_cast<unsigned char>(byte);
}

std::u16string fromUtf16(std::string_view bytes, std::size_t highByte)
{
    std::u16string text(bytes.size() / 2, u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const std::string_view unit = bytes.substr(2 * i, 2);
        text[i] = static_cast<char16_t>(valueOf(unit[highByte]) << 8 | valueOf(unit[1 - highByte]));
    }
    return text;
}

void append(std::u16string& text, std::uint32_t character)
{
    if (character < firstPair) {
        text += static_cast<char16_t>(character);
        return;
    }
    const std::uint32_t rest = character - firstPair;
    text += static_cast<char16_t>(0xD800 + (rest >> 10));
    text += static_cast<char16_t>(0xDC00 + (rest & 0x3FF));
}

/// The character at the front of `bytes`, which is taken off; nothing when it is no UTF-8.
std::optional<std::uint32_t> takeCharacter(std::string_view& bytes)
{
    constexpr std::array<std::uint32_t, 4> smallest = {0, 0x80, 0x800, firstPair}; // by further bytes
    const std::uint32_t lead = valueOf(bytes.front());
    const std::size_t further = lead < 0x80 ? 0 : lead < 0xC0 ? 4 : lead < 0xE0 ? 1 : lead < 0xF0 ? 2 : 3;
    if (lead >= 0xF8 || further >= bytes.size())
        return {};
    std::uint32_t character = further == 0 ? lead : lead & (0x3Fu >> further);
    for (std::size_t i = 1; i <= further; ++i) {
        if ((valueOf(bytes[i]) & 0xC0u) != 0x80u)
            return {};
        character = character << 6 | (valueOf(bytes[i]) & 0x3Fu);
    }
    if (character < smallest[further] || character > lastCharacter ||
        (character >= firstSurrogate && character <= lastSurrogate))
        return {};
    bytes.remove_prefix(further + 1);
    return character;
}

std::optional<std::u16string> fromUtf8(std::string_view bytes)
{
    std::u16string text;
    text.reserve(bytes.size());
    while (!bytes.empty()) {
        const std::optional<std::uint32_t> character = takeCharacter(bytes);
        if (!character)
            return {};
        append(text, *character);
    }
    return text;
}

} // namespace

std::optional<std::u16string> markedText(std::string_view bytes)
{
    if (bytes.starts_with("\xFF\xFE"))
        return fromUtf16(bytes.substr(2), 1);
    if (bytes.starts_with("\xFE\xFF"))
        return fromUtf16(bytes.substr(2), 0);
    if (bytes.starts_with("\xEF\xBB\xBF"))
        return fromUtf8(bytes.substr(3));
    return {};
}
