#pragma once

#include "base/Bounds.h"

#include <cstddef>
#include <string>
#include <string_view>

/// Whether a help page may be laid out: it is not too long, has no more of anything than can be laid out in a moment,
/// no word that takes long to be wrapped, and its elements do not stand too deep in each other, least of all tables,
/// each level of which multiplies the time. What closes one counts only where every reader takes it for markup, so no
/// page looks flatter than it is. Linear in the page.
bool canBeLaidOut(std::string_view page, const Bounds& bounds);

/// No fewer than the rules of a style sheet, or of a page that holds one.
std::size_t styleRules(std::string_view styles);

/// What the beginning of a page says without its markup, for a page that is not laid out. No word is longer than a text
/// box can wrap.
/// @param maxBytes  of the page that are looked at
std::string pageAsText(std::string_view page, std::size_t maxBytes);
