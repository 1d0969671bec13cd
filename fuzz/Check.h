#pragma once

#include "base/RuntimeError.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <source_location>
#include <string_view>
#include <utility>

/// Ends the run as a found fault unless the property holds.
inline void check(bool holds, std::source_location where = std::source_location::current())
{
    if (holds)
        return;
    std::fprintf(stderr, "property violated at %s:%u\n", where.file_name(), static_cast<unsigned>(where.line()));
    std::abort();
}

/// The number of the RuntimeError that `body` ends in, if it does. Every other exception is a fault.
template <typename Body>
std::optional<ErrorNumber> raisedBy(Body&& body)
{
    try {
        std::forward<Body>(body)();
        return {};
    } catch (const RuntimeError& error) {
        return error.number();
    }
}

/// The input itself, not a copy of it, so that reading past its end is noticed.
inline std::string_view viewOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), size};
}

/// Whether a decoder ends like that on what a host sends it.
inline bool isDecoderError(std::optional<ErrorNumber> error)
{
    return error == ErrorNumber::SubscriptOutOfRange || error == ErrorNumber::TypeMismatch ||
           error == ErrorNumber::Overflow;
}

inline bool liesIn(std::string_view whole, std::string_view part)
{
    return part.empty() || (part.data() >= whole.data() && part.data() + part.size() <= whole.data() + whole.size());
}
