#pragma once

#include <filesystem>

/// Removes what a program that was killed left behind below the application folder: halves of downloads and temporary
/// files of whole-file writes, hidden files that end in ".download" or ".tmp". Links are not followed. Runs while
/// nothing is written there yet; nothing is thrown, what cannot be removed stays.
void sweepLeftovers(const std::filesystem::path& folder) noexcept;
