#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
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

/// The text of a packed list, as far as it is taken.
struct ListText
{
    std::string text;
    bool isCut = false; ///< there was more of it
};

/// @param separator  stands between the list's elements; one that does not fit whole is left out
/// @param maxBytes   of the expanded text
/// @throws RuntimeError as `expand` does, also for a text that is longer than it says
ListText expandList(const PackedReply& packed, std::string_view separator, std::size_t maxBytes);
