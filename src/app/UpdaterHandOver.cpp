#include "app/UpdaterHandOver.h"

#include "store/AppFolder.h"
#include "store/FileBytes.h"

#include <QProcess>

namespace {

QString asText(const std::filesystem::path& path)
{
    return QString::fromStdU16String(path.u16string());
}

void removeIfPresent(const std::filesystem::path& path)
{
    std::error_code fault;
    std::filesystem::remove_all(path, fault);
    if (fault)
        throwFileError(fault, path);
}

} // namespace

HandOver handOverUpdates(const AppFolder& folder)
{
    if (!folder.folderExists("\\Updates"))
        return HandOver::Nothing;
    if (folder.fileNames("\\Updates").size() > 1) {
        const bool started =
            QProcess::startDetached(asText(folder.path("\\QRVV3Updater.exe")), {}, asText(folder.root()));
        return started ? HandOver::UpdaterStarted : HandOver::UpdaterMissing;
    }
    removeIfPresent(folder.path("\\Updates"));
    return HandOver::Nothing;
}
