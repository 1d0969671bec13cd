#include "app/ShippedFiles.h"

#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"

#include <array>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

namespace fs = std::filesystem;

constexpr std::array<std::string_view, 9> shippedFiles{
    "\\imgs\\butup.gif", "\\imgs\\butdown.gif", "\\background.gif", "\\hosting.gif", "\\nothosting.gif",
    "\\notactive.gif",   "\\scoring.gif",       "\\loading.gif",    "\\help.chm",
};

bool isWritable(const fs::path& folder)
{
#if defined(_WIN32)
    return _waccess(folder.c_str(), 2) == 0;
#else
    return ::access(folder.c_str(), W_OK) == 0;
#endif
}

bool holdsPictures(const fs::path& folder)
{
    std::error_code fault;
    return fs::is_regular_file(folder / "hosting.gif", fault);
}

} // namespace

fs::path chooseAppFolder(const fs::path& executableFolder, const fs::path& userFolder)
{
    return isWritable(executableFolder) && holdsPictures(executableFolder) ? executableFolder : userFolder;
}

fs::path installationFolder(const fs::path& executableFolder)
{
    return holdsPictures(executableFolder) ? executableFolder : executableFolder.parent_path() / "share" / "qrvv3rc";
}

void fillAppFolder(const AppFolder& folder, const fs::path& installation)
{
    const AppFolder source(installation);
    for (const std::string_view name : shippedFiles) {
        if (folder.fileExists(name) || !source.fileExists(name))
            continue;
        folder.makeFolder(name.substr(0, name.rfind('\\')));
        writeBytes(folder.path(name), readBytes(source.path(name)));
    }
}
