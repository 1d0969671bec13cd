#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

/// Finds a text of bytes in another. Made once for what is looked for, then asked for one stretch after the other, so
/// that nobody waits for a large text as a whole.
class TextSearch
{
public:
    /// For each byte the one that stands for it and for those that count as the same.
    using Folding = std::array<unsigned char, 256>;

    /// @param wanted  not empty
    TextSearch(std::string_view wanted, const Folding& folding);

    std::size_t size() const { return m_wanted.size(); }
    /// The first occurrence that begins in [from, to); `to` may be beyond the end of the text.
    std::optional<std::size_t> first(std::string_view text, std::size_t from, std::size_t to) const;
    /// The last one.
    std::optional<std::size_t> last(std::string_view text, std::size_t from, std::size_t to) const;

private:
    bool matches(const char* at) const;

    Folding m_folding;
    std::string m_wanted;                      ///< folded
    std::array<std::uint32_t, 256> m_distance; ///< how far to go on when this byte stands under the last of the wanted
};
