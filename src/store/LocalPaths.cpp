#include "store/LocalPaths.h"

#include "base/Text.h"
#include "platform/system/PathBytes.h"

#include <algorithm>
#include <cstdlib>

namespace {

constexpr std::string_view ends = " \t\r\n'\":;])>";

/// The same for all ways to write a path.
std::string alike(std::string_view text)
{
    std::string same = lowerAscii(text);
    std::replace(same.begin(), same.end(), '\\', '/');
    return same;
}

/// As it is looked for; empty for what is no place of its own.
std::string keyOf(const LocalPlace& place)
{
    std::string key = alike(bytesOf(place.folder));
    while (key.ends_with('/'))
        key.pop_back();
    return key;
}

std::string without(const std::string& text, const LocalPlace& place)
{
    const std::string key = keyOf(place);
    if (key.empty())
        return text;
    const std::string same = alike(text);
    std::string result;
    std::size_t start = 0;
    for (std::size_t at = same.find(key); at != std::string::npos; at = same.find(key, start)) {
        const std::size_t behind = at + key.size();
        const std::size_t end = std::min(same.find_first_of(ends, behind), same.size());
        result.append(text, start, at - start);
        start = behind;
        if (behind != end && same[behind] != '/') { // the name of another folder begins like this one's
            result.append(text, at, key.size());
            continue;
        }
        result += place.standIn;
        if (place.keepsNames && behind != end) {
            std::string names = text.substr(behind + 1, end - behind - 1);
            std::replace(names.begin(), names.end(), '/', '\\');
            result += names;
        }
        start = end;
    }
    return result.append(text, start);
}

} // namespace

std::vector<LocalPlace> localPlaces(const std::filesystem::path& applicationFolder)
{
    std::vector<LocalPlace> places{{applicationFolder, "\\", true}};
    std::error_code none;
    if (const auto temporary = std::filesystem::temp_directory_path(none); !none)
        places.push_back({temporary, "(the folder for temporary files)"});
#if defined(_WIN32)
    const wchar_t* home = _wgetenv(L"USERPROFILE");
#else
    const char* home = std::getenv("HOME");
#endif
    if (home)
        places.push_back({home, "(the home folder)"});
    return places;
}

std::string withoutLocalPaths(std::string text, const std::vector<LocalPlace>& places)
{
    for (const LocalPlace& place : places)
        text = without(text, place);
    return text;
}
