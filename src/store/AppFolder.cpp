#include "store/AppFolder.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"

#include <algorithm>
#include <array>
#include <cctype>

namespace fs = std::filesystem;

namespace {

constexpr char separator = '\\';

bool isControl(char c)
{
    const auto value = static_cast<unsigned char>(c);
    return value < 0x20 || value == 0x7F;
}

/// Whether a name stands for a device in every folder of some platform, whatever ending it has.
bool isDeviceName(std::string_view name)
{
    const std::string stem = lowerAscii(trimmed(name.substr(0, name.find('.'))));
    constexpr std::array<std::string_view, 7> devices = {"con", "prn", "aux", "nul", "conin$", "conout$", "clock$"};
    if (std::find(devices.begin(), devices.end(), stem) != devices.end())
        return true;
    if (!stem.starts_with("com") && !stem.starts_with("lpt"))
        return false;
    // The raised digits 1, 2 and 3 count too, as one byte or as two.
    constexpr std::array<std::string_view, 6> raisedDigits = {"\xB9",     "\xB2",     "\xB3",
                                                              "\xC2\xB9", "\xC2\xB2", "\xC2\xB3"};
    const std::string_view number = std::string_view(stem).substr(3);
    if (number.size() == 1 && number.front() >= '0' && number.front() <= '9')
        return true;
    return std::find(raisedDigits.begin(), raisedDigits.end(), number) != raisedDigits.end();
}

[[noreturn]] void refuse(std::string_view layoutName)
{
    throw RuntimeError(ErrorNumber::PermissionDenied, layoutName);
}

/// The entry of `folder` that is called `name` but for its case: the same case first, else the first byte by byte.
std::optional<fs::path> entryIgnoringCase(const fs::path& folder, std::string_view name)
{
    std::error_code fault;
    const fs::path asGiven = pathOfBytes(name);
    if (fs::exists(fs::symlink_status(folder / asGiven, fault)))
        return asGiven;
    std::optional<fs::path> found;
    fs::directory_iterator entries(folder, fault);
    for (; !fault && entries != fs::directory_iterator(); entries.increment(fault)) {
        fs::path candidate = entries->path().filename();
        if (equalsIgnoringCase(bytesOf(candidate), name) && (!found || candidate.native() < found->native()))
            found = std::move(candidate);
    }
    return found;
}

/// Whether the existing `path`, with all links followed, lies in `root`. A link that leads nowhere does not, because
/// what is written to it would come to be where it points.
bool liesInside(const fs::path& root, const fs::path& path)
{
    std::error_code fault;
    const fs::path realRoot = fs::canonical(root, fault);
    if (fault)
        return false;
    const fs::path realPath = fs::canonical(path, fault);
    if (fault)
        return false;
    return std::mismatch(realRoot.begin(), realRoot.end(), realPath.begin(), realPath.end()).first == realRoot.end();
}

} // namespace

bool isPlainFileName(std::string_view name)
{
    if (name.empty() || name.back() == '.' || name.back() == ' ')
        return false;
    if (name.find_first_of("\\/:") != std::string_view::npos || std::any_of(name.begin(), name.end(), isControl))
        return false;
    return !isDeviceName(name);
}

AppFolder::AppFolder(const fs::path& root) : m_root(fs::absolute(root)) {}

fs::path AppFolder::path(std::string_view layoutName) const
{
    std::string_view name = layoutName;
    if (name.starts_with(separator))
        name.remove_prefix(1);
    if (name.ends_with(separator))
        name.remove_suffix(1);
    fs::path result = m_root;
    if (name.empty())
        return result;

    bool exists = true;
    for (const std::string_view part : split(name, separator)) {
        if (!isPlainFileName(part))
            refuse(layoutName);
        const std::optional<fs::path> entry = exists ? entryIgnoringCase(result, part) : std::nullopt;
        exists = entry.has_value();
        result /= entry.value_or(pathOfBytes(part));
        std::error_code fault;
        if (exists && fs::is_symlink(fs::symlink_status(result, fault)) && !liesInside(m_root, result))
            refuse(layoutName);
    }
    return result;
}

bool AppFolder::fileExists(std::string_view layoutName) const
{
    std::error_code fault;
    return fs::is_regular_file(path(layoutName), fault);
}

bool AppFolder::folderExists(std::string_view layoutName) const
{
    std::error_code fault;
    return fs::is_directory(path(layoutName), fault);
}

void AppFolder::makeFolder(std::string_view layoutName) const
{
    const fs::path folder = path(layoutName);
    std::error_code fault;
    fs::create_directories(folder, fault);
    if (fault)
        throwFileError(fault, folder);
    if (!fs::is_directory(folder, fault))
        throwFileError(std::make_error_code(std::errc::not_a_directory), folder);
}

std::vector<std::string> AppFolder::fileNames(std::string_view layoutName) const
{
    std::vector<std::string> names;
    std::error_code fault;
    fs::directory_iterator entries(path(layoutName), fault);
    for (; !fault && entries != fs::directory_iterator(); entries.increment(fault)) {
        std::error_code ignored;
        if (entries->is_regular_file(ignored))
            names.push_back(bytesOf(entries->path().filename()));
    }
    std::sort(names.begin(), names.end());
    return names;
}
