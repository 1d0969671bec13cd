#include "base/Base64.h"

#include "base/RuntimeError.h"

#include <array>
#include <bit>
#include <cstdint>
#include <cstring>

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr char padding = '=';
constexpr std::size_t groupChars = 4;
constexpr std::size_t groupBytes = 3;

/// A group's three bytes as a word that lies in memory in the right order; the word's fourth byte marks faults.
constexpr std::uint32_t inMemoryOrder(std::uint32_t bits)
{
    if constexpr (std::endian::native == std::endian::little)
        return (bits >> 16 & 0xFFu) | (bits & 0xFF00u) | (bits & 0xFFu) << 16;
    else
        return bits << 8;
}

constexpr std::uint32_t faultMask = std::endian::native == std::endian::little ? 0xFF000000u : 0xFFu;

using Table = std::array<std::uint32_t, 256>;

/// What each character adds to its group's word when its six bits belong `shift` bits above the lowest.
consteval Table tableFor(int shift)
{
    Table table{};
    table.fill(faultMask);
    for (std::uint32_t value = 0; value < alphabet.size(); ++value)
        table[static_cast<unsigned char>(alphabet[value])] = inMemoryOrder(value << shift);
    return table;
}

/// One table for each place in a group, so that a group is four look-ups and no shifts.
constexpr std::array<Table, groupChars> tables = {tableFor(18), tableFor(12), tableFor(6), tableFor(0)};

std::uint32_t wordOf(const char* group)
{
    return tables[0][static_cast<unsigned char>(group[0])] | tables[1][static_cast<unsigned char>(group[1])] |
           tables[2][static_cast<unsigned char>(group[2])] | tables[3][static_cast<unsigned char>(group[3])];
}

std::size_t paddingOf(std::string_view wholeGroups)
{
    if (wholeGroups.back() != padding)
        return 0;
    return wholeGroups[wholeGroups.size() - 2] == padding ? 2 : 1;
}

} // namespace

std::string base64::encode(std::string_view bytes)
{
    std::string text((bytes.size() + groupBytes - 1) / groupBytes * groupChars, padding);
    char* out = text.data();
    const auto byteAt = [bytes](std::size_t index) {
        return index < bytes.size() ? std::uint32_t{static_cast<unsigned char>(bytes[index])} : 0u;
    };
    for (std::size_t at = 0; at < bytes.size(); at += groupBytes) {
        const std::uint32_t bits = byteAt(at) << 16 | byteAt(at + 1) << 8 | byteAt(at + 2);
        *out++ = alphabet[bits >> 18];
        *out++ = alphabet[bits >> 12 & 63u];
        if (at + 1 < bytes.size())
            *out++ = alphabet[bits >> 6 & 63u];
        if (at + 2 < bytes.size())
            *out++ = alphabet[bits & 63u];
    }
    return text;
}

std::string base64::decode(std::string_view text)
{
    const std::size_t groups = text.size() / groupChars;
    if (groups == 0)
        return {};
    text = text.substr(0, groups * groupChars);
    const std::size_t missing = paddingOf(text);

    std::string bytes(groups * groupBytes - missing, '\0');
    const char* in = text.data();
    const char* const lastGroup = in + (groups - 1) * groupChars;
    char* out = bytes.data();
    std::uint32_t seen = 0; // faults are gathered and looked at once
    for (; in != lastGroup; in += groupChars, out += groupBytes) {
        const std::uint32_t word = wordOf(in);
        seen |= word;
        std::memcpy(out, &word, sizeof word); // the fourth byte is overwritten by the next group
    }

    std::array<char, groupChars> group{};
    std::memcpy(group.data(), lastGroup, groupChars);
    for (std::size_t i = 0; i < missing; ++i)
        group[groupChars - 1 - i] = alphabet.front();
    const std::uint32_t word = wordOf(group.data());
    std::memcpy(out, &word, groupBytes - missing);
    if (((seen | word) & faultMask) != 0)
        throw RuntimeError(ErrorNumber::TypeMismatch, "Base64");
    return bytes;
}
