#pragma once

#include <cstdint>
#include <string_view>

/// A reply whose text travels compressed. The view points into the reply's body.
struct PackedReply
{
    std::int32_t length = 0; ///< bytes of the expanded text, as the tracker declares them
    std::string_view data;   ///< the compressed text; what `clsMFD::DecompressString` expands
};

/// @param body  not empty
/// @throws RuntimeError SubscriptOutOfRange for a body without the marker between length and data, TypeMismatch and
///         Overflow for a length that is no number
PackedReply splitPackedReply(std::string_view body);
