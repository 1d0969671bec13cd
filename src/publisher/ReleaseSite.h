#pragma once

#include "updates/UpdateList.h"

#include <filesystem>
#include <string_view>

struct Release;

/// What stands where on the web host of one system's clients, for which they are built.

/// The names of one kind of list.
struct ListNames
{
    std::string_view folder; ///< below the update location; empty for itself
    std::string_view list;
    std::string_view listByClock;
};

const ListNames& listNames(ListKind kind);

/// The first built-in update location, below the root of the host. The second one leads to it.
inline constexpr std::string_view locationFolder = "downloads/QRVV3/rc";
inline constexpr std::string_view secondLocationFolder = "Quorvane/qrvrc";
inline constexpr std::string_view newsFile = "qrvrcnews.txt";

/// Writes everything but the signature.
/// @param root  of the host; does not exist
/// @param news  file with the news
/// @throws RuntimeError and std::filesystem::filesystem_error from the disk
void writeSite(const std::filesystem::path& root, const Release& release, std::string_view manifest,
               const std::filesystem::path& news);
