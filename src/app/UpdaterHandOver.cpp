#include "app/UpdaterHandOver.h"

#include "platform/PathText.h"
#include "store/AppFolder.h"
#include "store/FileBytes.h"

#include <QProcess>

HandOver handOverUpdates(const AppFolder& folder)
{
    if (!folder.folderExists("\\Updates"))
        return HandOver::Nothing;
    if (folder.fileNames("\\Updates").size() > 1) {
        const bool started =
            QProcess::startDetached(textOf(folder.path("\\QRVV3Updater.exe")), {}, textOf(folder.root()));
        return started ? HandOver::UpdaterStarted : HandOver::UpdaterMissing;
    }
    const std::filesystem::path updates = folder.path("\\Updates");
    std::error_code fault;
    std::filesystem::remove_all(updates, fault);
    if (fault)
        throwFileError(fault, updates);
    return HandOver::Nothing;
}
