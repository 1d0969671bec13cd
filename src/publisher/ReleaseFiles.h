#pragma once

#include "updates/UpdateList.h"

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// A file of a release, and what the lists say of it.
struct ReleaseFile
{
    std::filesystem::path source;
    ListKind kind = ListKind::Client;
    UpdateRecord record;
    std::string digest; ///< SHA-256, 64 hexadecimal digits
};

/// What one system gets.
struct Release
{
    std::string system; ///< such as "linux-x86_64"
    std::vector<ReleaseFile> files;
};

/// The system that an `executableKind` stands for; empty for one that there is no client for.
std::string systemOf(std::string_view kind);

/// The files of program folders, sorted by name and put together by system. A folder's programs and libraries say which
/// system it is for.
/// @throws std::runtime_error for a folder without programs or for several systems, and a file that no list can name
///         or no client would take
std::vector<Release> releasesOf(const std::vector<std::filesystem::path>& folders);

/// The list of one kind; begins with what tells that it is one.
std::string listText(const Release& release, ListKind kind);

/// @param date  "YYYY-MM-DD"
std::string manifestText(const Release& release, std::uint64_t serial, std::string_view date);
