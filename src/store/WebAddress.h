#pragma once

#include <string>
#include <string_view>

/// The well-formed web address that a typed text means: http or https (http when it names none) with a host, and
/// without "/" at its end. Empty when the text means no web address.
std::string webAddress(std::string_view typed);
