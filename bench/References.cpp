#include "References.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::uint8_t noValue = 0xFF;

constexpr std::array<std::uint8_t, 256> values = [] {
    std::array<std::uint8_t, 256> table{};
    table.fill(noValue);
    for (std::size_t i = 0; i < alphabet.size(); ++i)
        table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
    return table;
}();

constexpr std::uint32_t faultMask = 0xFF000000u;

/// The same for each place in a group, as bits of the three bytes in the order in which they lie in memory.
constexpr std::array<std::array<std::uint32_t, 256>, 4> placed = [] {
    static_assert(std::endian::native == std::endian::little);
    std::array<std::array<std::uint32_t, 256>, 4> tables{};
    for (std::size_t place = 0; place < tables.size(); ++place) {
        for (std::size_t c = 0; c < values.size(); ++c) {
            const std::uint32_t bits = std::uint32_t{values[c]} << (18 - 6 * place);
            tables[place][c] = values[c] == noValue ? faultMask : bits >> 16 | (bits & 0xFF00u) | (bits & 0xFFu) << 16;
        }
    }
    return tables;
}();

constexpr std::array<std::array<char, 2>, 4096> pairs = [] {
    std::array<std::array<char, 2>, 4096> table{};
    for (std::size_t i = 0; i < table.size(); ++i)
        table[i] = {alphabet[i / 64], alphabet[i % 64]};
    return table;
}();

std::uint32_t byteAt(std::string_view bytes, std::size_t at)
{
    return static_cast<unsigned char>(bytes[at]);
}

/// One or two bytes that are left behind the last whole group.
void encodeRest(std::string_view rest, char* out)
{
    if (rest.empty())
        return;
    const std::uint32_t bits = byteAt(rest, 0) << 16 | (rest.size() > 1 ? byteAt(rest, 1) << 8 : 0);
    out[0] = alphabet[bits >> 18];
    out[1] = alphabet[bits >> 12 & 63u];
    if (rest.size() > 1)
        out[2] = alphabet[bits >> 6 & 63u];
}

std::size_t groupsEnd(std::string_view bytes)
{
    return bytes.size() / 3 * 3;
}

std::uint32_t groupAt(std::string_view bytes, std::size_t at)
{
    return byteAt(bytes, at) << 16 | byteAt(bytes, at + 1) << 8 | byteAt(bytes, at + 2);
}

std::size_t missingIn(std::string_view text)
{
    return text.ends_with("==") ? 2 : text.ends_with('=') ? 1 : 0;
}

/// Decodes what is left of a padded text behind its last whole group. @return whether it is Base64
bool decodeRest(char* out, std::string_view rest)
{
    if (rest.size() < 2)
        return rest.empty();
    const std::uint8_t a = values[byteAt(rest, 0)];
    const std::uint8_t b = values[byteAt(rest, 1)];
    const std::uint8_t c = rest.size() > 2 ? values[byteAt(rest, 2)] : std::uint8_t{0};
    out[0] = static_cast<char>(a << 2 | b >> 4);
    if (rest.size() > 2)
        out[1] = static_cast<char>(b << 4 | c >> 2);
    return ((a | b | c) & 0xC0) == 0;
}

constexpr std::size_t playerFields = 5;

template <typename Fields>
std::size_t splitInto(Fields& fields, std::string_view text)
{
    std::size_t count = 0;
    for (auto start = text.begin(); count < fields.size();) {
        const auto end = std::find(start, text.end(), '_');
        fields[count++] = std::string_view(start, end);
        if (end == text.end())
            break;
        start = end + 1;
    }
    return count;
}

} // namespace

std::string reference::encodePlain(std::string_view bytes)
{
    std::string text((bytes.size() + 2) / 3 * 4, '=');
    char* out = text.data();
    const std::size_t end = groupsEnd(bytes);
    for (std::size_t at = 0; at < end; at += 3) {
        const std::uint32_t bits = groupAt(bytes, at);
        *out++ = alphabet[bits >> 18];
        *out++ = alphabet[bits >> 12 & 63u];
        *out++ = alphabet[bits >> 6 & 63u];
        *out++ = alphabet[bits & 63u];
    }
    encodeRest(bytes.substr(end), out);
    return text;
}

std::string reference::encodePairs(std::string_view bytes)
{
    std::string text((bytes.size() + 2) / 3 * 4, '=');
    char* out = text.data();
    const std::size_t end = groupsEnd(bytes);
    for (std::size_t at = 0; at < end; at += 3, out += 4) {
        const std::uint32_t bits = groupAt(bytes, at);
        std::memcpy(out, pairs[bits >> 12].data(), 2);
        std::memcpy(out + 2, pairs[bits & 4095u].data(), 2);
    }
    encodeRest(bytes.substr(end), out);
    return text;
}

std::string reference::decodePlain(std::string_view text)
{
    const std::size_t missing = missingIn(text);
    std::string bytes(text.size() / 4 * 3 - missing, '\0');
    text.remove_suffix(missing);
    char* out = bytes.data();
    std::uint32_t seen = 0;
    const auto* in = reinterpret_cast<const unsigned char*>(text.data());
    for (const auto* const end = in + text.size() / 4 * 4; in != end; in += 4, out += 3) {
        const std::uint32_t a = values[in[0]];
        const std::uint32_t b = values[in[1]];
        const std::uint32_t c = values[in[2]];
        const std::uint32_t d = values[in[3]];
        seen |= a | b | c | d;
        const std::uint32_t bits = a << 18 | b << 12 | c << 6 | d;
        out[0] = static_cast<char>(bits >> 16);
        out[1] = static_cast<char>(bits >> 8);
        out[2] = static_cast<char>(bits);
    }
    if (!decodeRest(out, text.substr(text.size() / 4 * 4)) || seen >= alphabet.size())
        bytes.clear();
    return bytes;
}

void reference::Gatherer::add(std::string_view chunk)
{
    if (m_buffer.size() < m_size + chunk.size())
        m_buffer.resize((m_size + chunk.size()) * 2);
    std::memcpy(m_buffer.data() + m_size, chunk.data(), chunk.size());
    m_size += chunk.size();
    lookFor("[ND]", 0, m_from, m_end);
    if (m_looksForFailure)
        lookFor("Login Failed", 5, m_failureFrom, m_failureEnd);
}

/// @param rarest  which character of `text` is searched for
/// @param from    where to begin, and afterwards where to go on
/// @param end     behind the last place where it was found
void reference::Gatherer::lookFor(std::string_view text, std::size_t rarest, std::size_t& from, std::size_t& end) const
{
    const char* const begin = m_buffer.data();
    while (m_size - from >= text.size()) {
        const void* const found = std::memchr(begin + from + rarest, text[rarest], m_size - from - text.size() + 1);
        if (found == nullptr) {
            from = m_size - text.size() + 1;
            return;
        }
        const auto at = static_cast<std::size_t>(static_cast<const char*>(found) - begin) - rarest;
        if (std::memcmp(begin + at, text.data(), text.size()) == 0)
            end = at + text.size();
        from = at + 1;
    }
}

std::size_t reference::Gatherer::take()
{
    const std::size_t end = m_failureEnd > 0 ? 0 : m_end; // none of what is gathered here is a failure
    m_size = m_from = m_end = m_failureFrom = m_failureEnd = 0;
    return end;
}

std::string_view reference::Statistics::decoded(std::string_view text)
{
    const std::size_t missing = missingIn(text);
    const std::size_t size = text.size() / 4 * 3 - missing;
    text.remove_suffix(missing);
    char* const begin = m_buffer.data() + m_used;
    char* out = begin;
    m_used += size;
    std::uint32_t seen = 0;
    const auto* in = reinterpret_cast<const unsigned char*>(text.data());
    for (const auto* const end = in + text.size() / 4 * 4; in != end; in += 4, out += 3) {
        const std::uint32_t bits = placed[0][in[0]] | placed[1][in[1]] | placed[2][in[2]] | placed[3][in[3]];
        seen |= bits;
        std::memcpy(out, &bits, 4);
    }
    if (!decodeRest(out, text.substr(text.size() / 4 * 4)) || (seen & faultMask) != 0)
        return {};
    return {begin, size};
}

std::int64_t reference::Statistics::read(std::string_view reply)
{
    constexpr std::string_view separator = "[-][-]";
    m_records.clear();
    if (m_buffer.size() < reply.size())
        m_buffer.resize(reply.size()); // more than any record needs
    std::int64_t seconds = 0;
    while (!reply.empty()) {
        const std::size_t sectionEnd = std::min(reply.find(separator), reply.size());
        const std::string_view section = reply.substr(0, sectionEnd);
        reply.remove_prefix(std::min(sectionEnd + separator.size(), reply.size()));
        for (std::size_t start = 0; start < section.size();) {
            const std::size_t end = std::min(section.find('|', start), section.size());
            if (end > start)
                seconds += readItem(section.substr(start, end - start));
            start = end + 1;
        }
    }
    return seconds;
}

std::int64_t reference::Statistics::readItem(std::string_view item)
{
    m_records.push_back(item);
    m_used = 0;
    const std::size_t middle = item.find('_');
    if (middle == std::string_view::npos) {
        if (splitInto(m_fields, decoded(item)) == playerFields) {
            decoded(m_fields[0]);
            decoded(m_fields[3]);
        }
        return 0;
    }
    decoded(item.substr(0, middle));
    int time = 0;
    if (splitInto(m_fields, decoded(item.substr(middle + 1))) == m_fields.size())
        std::from_chars(m_fields.back().data(), m_fields.back().data() + m_fields.back().size(), time);
    return time;
}
