#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// What the bytes of one code page stand for, as UTF-16, and the way back. A character has one byte, or in the
/// double-byte code pages of East Asia two. Every text of bytes comes back as it was: a byte that stands for nothing
/// keeps its number, in double-byte code pages as a half of a surrogate pair (0xDC00 and the byte), which nobody can
/// type. Where a code page has two codes for one character, both come back as the one that the system prefers.
class CodePageMap
{
public:
    /// @param name  one of `codePageTables` or `doubleByteCodePages`
    /// @return null for any other name, and for a code page that the system cannot convert
    static std::shared_ptr<const CodePageMap> named(std::string_view name);

    const std::string& name() const { return m_name; }
    bool isDoubleByte() const { return !m_pairs.empty(); }
    /// The characters of the 256 values by themselves.
    const std::array<char16_t, 256>& characters() const { return m_singles; }

    /// How many bytes the character has that begins at `at`.
    std::size_t sizeAt(std::string_view bytes, std::size_t at) const;
    /// Where the character begins that the byte at `at` belongs to. Takes no longer than the way back to a control
    /// code, a blank, a digit or a sign below "@".
    std::size_t startOf(std::string_view bytes, std::size_t at) const;

    std::u16string toText(std::string_view bytes) const;
    /// Characters that the code page lacks become "?".
    std::string toBytes(std::u16string_view text) const;
    bool has(char16_t character) const { return character == 0 || m_codes[character] != 0; }

private:
    explicit CodePageMap(std::string_view name);
    void takePairs(unsigned number);
    char16_t pairAt(std::string_view bytes, std::size_t at) const;

    std::string m_name;
    std::array<char16_t, 256> m_singles{};
    std::vector<char16_t> m_pairs;      ///< by both bytes; 0 where they are no character
    std::vector<std::uint16_t> m_codes; ///< by character; 0 where it is lacking
};
