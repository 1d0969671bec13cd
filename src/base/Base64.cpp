#include "base/Base64.h"

#include "base/RuntimeError.h"

#include <algorithm>
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

/// Two characters for each twelve bits, so that a group is two look-ups.
constexpr auto pairs = [] {
    std::array<std::array<char, 2>, alphabet.size() * alphabet.size()> table{};
    for (std::size_t bits = 0; bits < table.size(); ++bits)
        table[bits] = {alphabet[bits / alphabet.size()], alphabet[bits % alphabet.size()]};
    return table;
}();

void encodeGroup(const char* bytes, char* out)
{
    const auto byteAt = [bytes](int index) { return std::uint32_t{static_cast<unsigned char>(bytes[index])}; };
    const std::uint32_t bits = byteAt(0) << 16 | byteAt(1) << 8 | byteAt(2);
    std::memcpy(out, pairs[bits >> 12].data(), 2);
    std::memcpy(out + 2, pairs[bits & 0xFFFu].data(), 2);
}

std::size_t paddingOf(std::string_view wholeGroups)
{
    if (!wholeGroups.ends_with(padding))
        return 0;
    return wholeGroups[wholeGroups.size() - 2] == padding ? 2 : 1;
}

std::string_view wholeGroupsOf(std::string_view text)
{
    return text.substr(0, text.size() / groupChars * groupChars);
}

} // namespace

std::string base64::encode(std::string_view bytes)
{
    std::string text((bytes.size() + groupBytes - 1) / groupBytes * groupChars, padding);
    char* out = text.data();
    for (; bytes.size() >= groupBytes; bytes.remove_prefix(groupBytes), out += groupChars)
        encodeGroup(bytes.data(), out);
    if (!bytes.empty()) {
        const std::array<char, groupBytes> last = {bytes[0], bytes.size() > 1 ? bytes[1] : '\0', '\0'};
        encodeGroup(last.data(), out);
        std::fill(out + bytes.size() + 1, out + groupChars, padding);
    }
    return text;
}

std::size_t base64::decodedSize(std::string_view text)
{
    text = wholeGroupsOf(text);
    return text.size() / groupChars * groupBytes - paddingOf(text);
}

std::string base64::decode(std::string_view text)
{
    std::string bytes(decodedSize(text), '\0');
    decode(text, bytes);
    return bytes;
}

std::string_view base64::decode(std::string_view text, std::span<char> room)
{
    text = wholeGroupsOf(text);
    if (text.empty())
        return {};
    const std::size_t missing = paddingOf(text);
    const char* in = text.data();
    const char* const lastGroup = in + text.size() - groupChars;
    char* out = room.data();
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
    return {room.data(), static_cast<std::size_t>(out - room.data()) + groupBytes - missing};
}
