#pragma once

#include "updates/UpdateKey.h"
#include "updates/UpdateList.h"

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

/// Looks at what is to be published, or is, as a client would that it comes to.

/// Why no client would follow that line of a list; empty when nothing speaks against it.
std::string faultOf(const UpdateRecord& record, ListKind kind);

/// What speaks against an update location: signature and bounds, what lists and manifest say of each other and of the
/// files, and whether the files are for the system.
/// @param location  a folder with lists, manifest and files
/// @param before    the location as it is published; nothing the first time. Clients that have what it offers must
///                  notice what is new, and its serial must be lower.
/// @return a line each
std::vector<std::string> faultsOf(const std::filesystem::path& location, const std::string& system,
                                  const UpdateKey& key, const std::optional<std::filesystem::path>& before);
