#include "platform/system/CodePageMap.h"

#include "platform/system/CodePageConverter.h"
#include "platform/system/CodePageTables.h"

#include <algorithm>
#include <charconv>

namespace {

constexpr std::size_t firstUpper = 0x80;
constexpr unsigned firstTrail = 0x40; // no second byte lies below, in any code page
constexpr char16_t undefinedByte = 0xDC00;

unsigned char valueOf(char byte)
{
    return static_cast<unsigned char>(byte);
}

template <typename List>
auto findNamed(const List& list, std::string_view name)
{
    return std::find_if(list.begin(), list.end(), [name](const auto& known) { return known.name == name; });
}

} // namespace

std::shared_ptr<const CodePageMap> CodePageMap::named(std::string_view name)
{
    const bool isSingle = findNamed(codePageTables, name) != codePageTables.end();
    const bool isDouble = findNamed(doubleByteCodePages, name) != doubleByteCodePages.end();
    if (!isSingle && !isDouble)
        return nullptr;
    std::shared_ptr<const CodePageMap> map(new CodePageMap(name));
    return isSingle || std::any_of(map->m_pairs.begin(), map->m_pairs.end(), [](char16_t pair) { return pair != 0; })
               ? map
               : nullptr;
}

CodePageMap::CodePageMap(std::string_view name) : m_name(name), m_codes(0x10000)
{
    for (std::size_t value = 0; value < firstUpper; ++value)
        m_singles[value] = static_cast<char16_t>(value);
    if (const auto* table = findNamed(codePageTables, name); table != codePageTables.end()) {
        std::copy(table->upper.begin(), table->upper.end(), m_singles.begin() + firstUpper);
    } else {
        constexpr std::string_view prefix = "windows-";
        unsigned number = 0;
        std::from_chars(name.data() + prefix.size(), name.data() + name.size(), number);
        takePairs(number);
    }
    for (std::size_t value = m_singles.size(); value-- > 0;) // the lowest counts
        m_codes[m_singles[value]] = static_cast<std::uint16_t>(value);
}

void CodePageMap::takePairs(unsigned number)
{
    const CodePageConverter converter(number);
    m_pairs.resize(0x10000);
    for (std::size_t lead = firstUpper; lead < m_singles.size(); ++lead) {
        std::array bytes{static_cast<char>(lead), '\0'};
        const char16_t single = converter.characterOf({bytes.data(), 1});
        m_singles[lead] = single != 0 ? single : static_cast<char16_t>(undefinedByte + lead);
        for (std::size_t trail = firstTrail; single == 0 && trail < m_singles.size(); ++trail) {
            bytes[1] = static_cast<char>(trail);
            const char16_t character = converter.characterOf({bytes.data(), bytes.size()});
            if (character == 0)
                continue;
            const auto code = static_cast<std::uint16_t>(lead << 8 | trail);
            m_pairs[code] = character;
            const bool isPreferred =
                m_codes[character] == 0 || converter.bytesOf(character) == std::string_view(bytes.data(), bytes.size());
            if (isPreferred)
                m_codes[character] = code;
        }
    }
}

char16_t CodePageMap::pairAt(std::string_view bytes, std::size_t at) const
{
    if (!isDoubleByte() || at + 1 >= bytes.size())
        return 0;
    return m_pairs[static_cast<std::size_t>(valueOf(bytes[at]) << 8 | valueOf(bytes[at + 1]))];
}

std::size_t CodePageMap::sizeAt(std::string_view bytes, std::size_t at) const
{
    return pairAt(bytes, at) != 0 ? 2 : 1;
}

std::size_t CodePageMap::startOf(std::string_view bytes, std::size_t at) const
{
    if (!isDoubleByte() || at >= bytes.size())
        return at;
    std::size_t start = at;
    while (start > 0 && valueOf(bytes[start]) >= firstTrail)
        --start;
    while (start + sizeAt(bytes, start) <= at)
        start += sizeAt(bytes, start);
    return start;
}

std::u16string CodePageMap::toText(std::string_view bytes) const
{
    std::u16string text;
    text.reserve(bytes.size());
    for (std::size_t at = 0; at < bytes.size(); ++at) {
        const char16_t pair = pairAt(bytes, at);
        text += pair != 0 ? pair : m_singles[valueOf(bytes[at])];
        if (pair != 0)
            ++at;
    }
    return text;
}

std::string CodePageMap::toBytes(std::u16string_view text) const
{
    const auto isSecondHalf = [](char16_t unit) { return unit >= 0xDC00 && unit < 0xE000; };
    std::string bytes;
    bytes.reserve(text.size());
    for (const char16_t character : text) {
        const std::uint16_t code = m_codes[character];
        if (code > 0xFF)
            bytes += static_cast<char>(code >> 8);
        if (has(character))
            bytes += static_cast<char>(code & 0xFF);
        else if (!isSecondHalf(character)) // its first half stands for both
            bytes += '?';
    }
    return bytes;
}
