#include "app/UpdaterHandOver.h"

#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "store/AppFolder.h"
#include "updates/InstallUpdates.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <QProcess>

HandOver handOverUpdates(const UpdateTargets& targets, const RestartOrder& order)
{
    const AppFolder& folder = targets.folder();
    if (!folder.folderExists(updatesFolder))
        return HandOver::Nothing;
    if (folder.fileNames(updatesFolder).size() > 1) {
        writeRestartOrder(folder, order);
        const bool started = QProcess::startDetached(textOf(targets.updater()), {}, textOf(folder.root()));
        return started ? HandOver::UpdaterStarted : HandOver::UpdaterMissing;
    }
    const std::filesystem::path updates = folder.path(updatesFolder);
    std::error_code fault;
    std::filesystem::remove_all(updates, fault);
    if (fault)
        throwFileError(fault, updates);
    return HandOver::Nothing;
}

std::string takeUpdateProblems(const AppFolder& folder)
{
    const std::filesystem::path file = folder.path(problemsFile);
    const std::optional<std::string> problems = readBytesIfPresent(file);
    if (!problems)
        return {};
    std::error_code fault;
    std::filesystem::remove(file, fault);
    if (fault)
        throwFileError(fault, file);
    return *problems;
}
