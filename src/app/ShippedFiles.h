#pragma once

#include <filesystem>

class AppFolder;

/// The folder that the program keeps its state in when none is named: the executable's own when that is writable and
/// holds the shipped pictures (a portable folder), otherwise `userFolder`.
std::filesystem::path chooseAppFolder(const std::filesystem::path& executableFolder,
                                      const std::filesystem::path& userFolder);

/// Where the shipped files lie that go with an executable: beside it, or in the share folder of its installation.
std::filesystem::path installationFolder(const std::filesystem::path& executableFolder);

/// Whether a folder has the shipped pictures.
bool holdsPictures(const std::filesystem::path& folder);

/// Copies the shipped pictures and the manual that `folder` lacks from `installation`, and anew those that the
/// installation has in another version since: only while they are as they were copied, so that what the user or an
/// update has put there stays. What the installation lacks too stays missing.
/// @throws RuntimeError from the disk
void fillAppFolder(const AppFolder& folder, const std::filesystem::path& installation);
