#include "store/AppFolder.h"

#include "Check.h"

#include <algorithm>
#include <fstream>
#include <string>

#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// A program folder with what might lead out of it, beside a folder that nothing may reach.
struct Tree
{
    fs::path base = fs::temp_directory_path() / ("appFolder." + std::to_string(getpid()));
    fs::path root = base / "root";

    Tree()
    {
        fs::create_directories(root / "Imgs" / "deep");
        fs::create_directories(base / "rooted");
        std::ofstream(root / "a") << "x";
        std::ofstream(base / "rooted" / "s") << "x";
        fs::create_directory_symlink("Imgs", root / "in");
        fs::create_directory_symlink("../rooted", root / "out");
        fs::create_directory_symlink("..", root / "Imgs" / "up");
        fs::create_directory_symlink("../..", root / "Imgs" / "top");
        fs::create_symlink("../rooted/s", root / "s");
        fs::create_symlink("../rooted/none", root / "d");
        fs::create_symlink("l", root / "l");
    }
    ~Tree()
    {
        std::error_code ignored;
        fs::remove_all(base, ignored);
    }
};

bool liesBelow(const fs::path& folder, const fs::path& path)
{
    return std::mismatch(folder.begin(), folder.end(), path.begin(), path.end()).first == folder.end();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const Tree tree;
    const AppFolder folder(tree.root);
    const std::string_view name = viewOf(data, size);

    fs::path path;
    const auto error = raisedBy([&] { path = folder.path(name); });
    check(!error || error == ErrorNumber::PermissionDenied);
    if (!error) {
        std::error_code fault;
        check(path.native().find('\0') == std::string::npos);
        check(std::find(path.begin(), path.end(), "..") == path.end());
        check(liesBelow(tree.root, path));
        const fs::path real = fs::weakly_canonical(path, fault);
        check(fault || liesBelow(fs::canonical(tree.root), real));
        if (fs::exists(fs::symlink_status(path, fault)))
            check(fs::exists(path, fault)); // no link that leads nowhere
        folder.fileExists(name);
        folder.fileNames(name);
    }
    if (isPlainFileName(name)) {
        const fs::path asPart = name;
        check(asPart.has_filename() && !asPart.has_parent_path() && asPart != "." && asPart != "..");
    }
    return 0;
}
