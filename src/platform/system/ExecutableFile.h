#pragma once

#include <filesystem>
#include <string>

/// What system a file is a program or a library for, from its first bytes; empty for what is neither, or cannot be
/// read. Texts of one system and machine are the same.
std::string executableKind(const std::filesystem::path& file);

/// Whether `file` may take the place of `old`: a program or library gives way only to one of its own kind.
bool mayReplace(const std::filesystem::path& file, const std::filesystem::path& old);
