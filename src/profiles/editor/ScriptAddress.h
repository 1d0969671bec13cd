#pragma once

#include <string>
#include <string_view>

/// How a profile's statistics scripts are addressed and what their answers mean. There are two kinds: the request page
/// of one statistics system, and the import script of all others. All texts are bytes of the host's code page.

/// Where a profile's statistics go.
struct Script
{
    std::string system;   ///< the statistics system, by its name
    std::string url;      ///< where its scripts are
    std::string serverId; ///< by which they know the profile
};

/// The list of script entries joins them with this, so it cannot stand in one.
inline constexpr char entrySeparator = '|';

/// The page that tells whether the scripts are there.
/// @param system  the statistics system, by its name
/// @param url     a well-formed web address; each backslash in it is sent as "/"
std::string scriptCheckAddress(std::string_view system, std::string_view url);

/// The page that tells whether the server id is known there; the id is escaped.
std::string serverIdCheckAddress(std::string_view system, std::string_view url, std::string_view serverId);

/// Whether what such a page answered says yes, for either question.
bool isScriptYes(std::string_view system, std::string_view answer);

/// An entry of the script list.
std::string scriptEntry(std::string_view url, std::string_view serverId);
