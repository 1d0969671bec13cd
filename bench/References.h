#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The least that is known for the paths that are measured, written for nothing else. Nothing here calls or includes
/// the program, so that neither side can make the other look good.
namespace reference {

/// Base64 with one table of 64 characters, a character at a time.
std::string encodePlain(std::string_view bytes);
/// Base64 with one table of 4,096 pairs of characters.
std::string encodePairs(std::string_view bytes);
/// Base64 with one table of 256 six-bit values. An empty text for what is no Base64.
std::string decodePlain(std::string_view text);

/// Gathers replies in a buffer that it keeps, with one search for the end mark, and with another for a login failure
/// when that is wanted.
class Gatherer
{
public:
    explicit Gatherer(bool looksForFailure) : m_looksForFailure(looksForFailure) {}

    void add(std::string_view chunk);
    /// Bytes up to the end of the reply that was gathered, which is then forgotten; 0 when there is none.
    std::size_t take();

private:
    void lookFor(std::string_view text, std::size_t rarest, std::size_t& from, std::size_t& end) const;

    const bool m_looksForFailure;
    std::string m_buffer;
    std::size_t m_size = 0;
    std::size_t m_from = 0; ///< no end mark begins before
    std::size_t m_end = 0;
    std::size_t m_failureFrom = 0;
    std::size_t m_failureEnd = 0;
};

/// Goes once through a "GetPlayerStats" reply, with views into it and one kept buffer for what is decoded. It looks
/// for nobody and makes no rows.
class Statistics
{
public:
    /// @return the sum of all times, for which all fields must be found
    std::int64_t read(std::string_view reply);
    /// The records of both lists, as they stand in the reply.
    const std::vector<std::string_view>& records() const { return m_records; }

private:
    std::int64_t readItem(std::string_view item);
    std::string_view decoded(std::string_view text);

    std::vector<std::string_view> m_records;
    std::array<std::string_view, 26> m_fields;
    std::string m_buffer;
    std::size_t m_used = 0;
};

} // namespace reference
