#pragma once

#include "base/Bounds.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Whether a help page may be laid out: it is not too long, its tables have no more cells than can be laid out, and
/// they do not stand too deep in each other, each level of which multiplies the time. What closes a table counts only
/// where every reader takes it for markup, so no page looks flatter than it is. Linear in the page.
bool canBeLaidOut(std::string_view page, const Bounds& bounds);

/// What the beginning of a page says without its markup, for a page that is not laid out. No word is longer than a text
/// box can wrap.
/// @param maxBytes  of the page that are looked at
std::string pageAsText(std::string_view page, std::size_t maxBytes);
