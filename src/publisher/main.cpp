// Writes what an update location serves, and looks at one as a client does. packaging/publish calls it, signs between
// the two, and puts the new one in the place of the old.

#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "publisher/ReleaseCheck.h"
#include "publisher/ReleaseFiles.h"
#include "publisher/ReleaseSite.h"

#include <algorithm>
#include <charconv>
#include <iostream>
#include <stdexcept>
#include <vector>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view help =
    "Usage: qrvrc-publish make SITE SERIAL DATE NEWS FOLDER...\n"
    "         writes lists, manifests and files of the program folders into the new folder SITE, one\n"
    "         folder a system, and prints the path of each manifest, to be signed\n"
    "       qrvrc-publish check SITE KEY [PUBLISHED]\n"
    "         looks at a site as clients would that trust the public key KEY, also at what those would\n"
    "         see of the change that have followed the site PUBLISHED\n";

constexpr int badUsage = 2;

std::uint64_t serialOf(std::string_view text)
{
    std::uint64_t serial = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), serial);
    if (fault != std::errc() || end != text.data() + text.size() || serial == 0)
        throw std::runtime_error("'" + std::string(text) + "' is no serial: a number above 0");
    return serial;
}

int make(const std::vector<std::string>& arguments)
{
    const fs::path site = arguments[0];
    const std::uint64_t serial = serialOf(arguments[1]);
    for (const Release& release : releasesOf({arguments.begin() + 4, arguments.end()})) {
        const fs::path root = site / release.system;
        writeSite(root, release, manifestText(release, serial, arguments[2]), arguments[3]);
        std::cout << (root / locationFolder / "qrvv3rc_manifest.txt").string() << '\n';
    }
    return 0;
}

std::vector<std::string> systemsIn(const fs::path& site)
{
    std::vector<std::string> systems;
    if (site.empty())
        return systems;
    for (const fs::directory_entry& entry : fs::directory_iterator(site))
        systems.push_back(entry.path().filename().string());
    return systems;
}

int check(const std::vector<std::string>& arguments)
{
    const std::optional<UpdateKey> key = UpdateKey::fromText(arguments[1]);
    if (!key)
        throw std::runtime_error("'" + arguments[1] + "' is no public key as minisign writes it");
    const fs::path published = arguments.size() > 2 ? fs::path(arguments[2]) : fs::path();
    std::size_t faults = 0;
    const auto tell = [&faults](const std::string& fault) {
        std::cerr << fault << '\n';
        ++faults;
    };
    for (const std::string& system : systemsIn(published)) {
        if (!fs::exists(fs::path(arguments[0]) / system))
            tell(system + ": is published, and its clients would find nothing any more");
    }
    for (const std::string& system : systemsIn(arguments[0])) {
        const fs::path old = published / system / locationFolder;
        const bool isThere = !published.empty() && fs::exists(old);
        const fs::path location = arguments[0] / fs::path(system) / locationFolder;
        for (const std::string& fault : faultsOf(location, system, *key, isThere ? std::optional(old) : std::nullopt))
            tell(fault);
    }
    return faults == 0 ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    const std::string_view command = argc > 1 ? argv[1] : "";
    const std::vector<std::string> arguments(argv + std::min(argc, 2), argv + argc);
    try {
        if (command == "make" && arguments.size() >= 5)
            return make(arguments);
        if (command == "check" && (arguments.size() == 2 || arguments.size() == 3))
            return check(arguments);
        (command == "--help" ? std::cout : std::cerr) << help;
        return command == "--help" ? 0 : badUsage;
    } catch (const RuntimeError& error) {
        std::cerr << "qrvrc-publish: " << error.description() << '\n';
    } catch (const std::exception& fault) {
        std::cerr << "qrvrc-publish: " << fault.what() << '\n';
    }
    return 1;
}
