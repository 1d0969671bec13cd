#include "app/ShippedFiles.h"

#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>

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

/// What was copied, and from what.
constexpr std::string_view copiesFile = "\\settings\\shipped.ini";
constexpr std::string_view section = "Copied";

struct Copy
{
    std::string stamp;
    std::string digest;
};

std::string digestOf(std::string_view bytes)
{
    const QByteArrayView view(bytes.data(), static_cast<qsizetype>(bytes.size()));
    return QCryptographicHash::hash(view, QCryptographicHash::Sha256).toHex().toStdString();
}

/// Tells versions of an installed file apart without reading it.
std::string stampOf(const fs::path& file)
{
    std::error_code fault;
    const std::uintmax_t size = fs::file_size(file, fault);
    const fs::file_time_type changed = fault ? fs::file_time_type() : fs::last_write_time(file, fault);
    if (fault)
        throwFileError(fault, file);
    return std::to_string(size) + '/' + std::to_string(changed.time_since_epoch().count());
}

/// Nothing is known to be a copy when the list cannot be read.
IniText readCopies(const AppFolder& folder)
{
    try {
        return IniText(readBytesIfPresent(folder.path(copiesFile)).value_or(std::string()));
    } catch (const RuntimeError&) {
        return {};
    }
}

Copy lastCopy(const IniText& copies, std::string_view name)
{
    const std::string value = copies.value(section, name).value_or(std::string());
    const std::size_t gap = std::min(value.find(' '), value.size());
    return {value.substr(0, gap), value.substr(std::min(gap + 1, value.size()))};
}

} // namespace

bool holdsPictures(const fs::path& folder)
{
    std::error_code fault;
    return fs::is_regular_file(folder / "hosting.gif", fault);
}

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
    std::error_code fault;
    if (fs::equivalent(folder.root(), installation, fault))
        return;
    IniText copies = readCopies(folder);
    bool hasCopied = false;
    for (const std::string_view name : shippedFiles) {
        if (!source.fileExists(name))
            continue;
        const std::string stamp = stampOf(source.path(name));
        const Copy last = lastCopy(copies, name);
        if (folder.fileExists(name) && (last.stamp == stamp || last.digest != digestOf(readBytes(folder.path(name)))))
            continue;
        folder.makeFolder(name.substr(0, name.rfind('\\')));
        const std::string bytes = readBytes(source.path(name));
        writeBytes(folder.path(name), bytes);
        copies.setValue(section, name, stamp + ' ' + digestOf(bytes));
        hasCopied = true;
    }
    if (!hasCopied)
        return;
    folder.makeFolder("\\settings");
    writeBytes(folder.path(copiesFile), copies.bytes());
}
