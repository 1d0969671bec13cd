#include "profiles/viewer/TextSearch.h"

#include <algorithm>

TextSearch::TextSearch(std::string_view wanted, const Folding& folding) : m_folding(folding), m_wanted(wanted)
{
    for (char& byte : m_wanted)
        byte = static_cast<char>(m_folding[static_cast<unsigned char>(byte)]);
    std::array<std::uint32_t, 256> ofFolded;
    ofFolded.fill(static_cast<std::uint32_t>(m_wanted.size()));
    for (std::size_t at = 0; at + 1 < m_wanted.size(); ++at)
        ofFolded[static_cast<unsigned char>(m_wanted[at])] = static_cast<std::uint32_t>(m_wanted.size() - 1 - at);
    for (std::size_t byte = 0; byte < m_distance.size(); ++byte)
        m_distance[byte] = ofFolded[m_folding[byte]];
}

bool TextSearch::matches(const char* at) const
{
    for (std::size_t i = m_wanted.size(); i-- > 0;) {
        if (static_cast<char>(m_folding[static_cast<unsigned char>(at[i])]) != m_wanted[i])
            return false;
    }
    return true;
}

std::optional<std::size_t> TextSearch::first(std::string_view text, std::size_t from, std::size_t to) const
{
    if (text.size() < m_wanted.size())
        return {};
    const std::size_t end = std::min(to, text.size() - m_wanted.size() + 1);
    for (std::size_t at = from; at < end;) {
        if (matches(text.data() + at))
            return at;
        at += m_distance[static_cast<unsigned char>(text[at + m_wanted.size() - 1])];
    }
    return {};
}

std::optional<std::size_t> TextSearch::last(std::string_view text, std::size_t from, std::size_t to) const
{
    std::optional<std::size_t> newest;
    for (std::optional<std::size_t> at = first(text, from, to); at; at = first(text, *at + 1, to))
        newest = at;
    return newest;
}
