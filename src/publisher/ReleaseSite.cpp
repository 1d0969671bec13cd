#include "publisher/ReleaseSite.h"

#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"
#include "publisher/ReleaseFiles.h"
#include "updates/UpdateManifest.h"

#include <stdexcept>

namespace fs = std::filesystem;

namespace {

constexpr ListNames clientNames{.folder = "", .list = "qrvv3rc_filelist.txt", .listByClock = "qrvv3_filelist.txt"};
constexpr ListNames pluginNames{
    .folder = "plugins", .list = "qrvv3rc_pluginlist.txt", .listByClock = "qrvv3_pluginlist.txt"};

/// Readable by the web server, whatever rights the build gave it.
void copyServed(const fs::path& from, const fs::path& to)
{
    if (fs::exists(to))
        throw std::runtime_error(bytesOf(from) + ": another file is asked for by the same name");
    fs::copy_file(from, to);
    fs::permissions(to,
                    fs::perms::owner_write | fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
}

} // namespace

const ListNames& listNames(ListKind kind)
{
    return kind == ListKind::Client ? clientNames : pluginNames;
}

void writeSite(const fs::path& root, const Release& release, std::string_view manifest, const fs::path& news)
{
    const fs::path location = root / locationFolder;
    for (const ListKind kind : {ListKind::Client, ListKind::Plugins}) {
        const ListNames& names = listNames(kind);
        const fs::path folder = location / names.folder;
        fs::create_directories(folder);
        for (const ReleaseFile& file : release.files) {
            if (file.kind == kind)
                copyServed(file.source, folder / pathOfBytes(requestedName(file.record.name)));
        }
        const std::string text = listText(release, kind);
        for (const std::string_view name : {names.list, names.listByClock})
            writeBytes(folder / name, text);
    }
    writeBytes(location / UpdateManifest::fileName, manifest);
    copyServed(news, root / newsFile);
    const fs::path second = root / secondLocationFolder;
    fs::create_directories(second.parent_path());
    fs::create_directory_symlink(fs::relative(location, second.parent_path()), second);
}
