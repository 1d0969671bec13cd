#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

/// A folder of this machine, and what a text that leaves the machine has in the place of paths into it.
struct LocalPlace
{
    std::filesystem::path folder;
    std::string standIn;
    bool keepsNames = false; ///< what stands in the path behind the folder stays, with "\" between
};

/// The places that a text may betray: the application folder, which becomes layout names, the folder for temporary
/// files and the user's home, whose names go with them. The inner ones stand first.
std::vector<LocalPlace> localPlaces(const std::filesystem::path& applicationFolder);

/// `text` without the paths into those places, in whatever letter case and with whatever separators they are written.
/// A path ends at a blank, quote, colon, semicolon or bracket. Linear in the text.
std::string withoutLocalPaths(std::string text, const std::vector<LocalPlace>& places);
