#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A path as bytes of the host's code page, as layout names, lists from the host and descriptions of errors hold it.
/// Where the system keeps paths as bytes these are taken as they are; elsewhere what the code page lacks becomes "?".
std::string bytesOf(const std::filesystem::path& path);

/// The way back.
std::filesystem::path pathOfBytes(std::string_view bytes);
