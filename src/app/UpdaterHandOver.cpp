#include "app/UpdaterHandOver.h"

#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "store/AppFolder.h"
#include "updates/InstallUpdates.h"
#include "updates/UpdateState.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <QProcess>

namespace {

HandOver handOver(const UpdateTargets& targets, const RestartOrder& order)
{
    const UpdateState state(targets.folder());
    switch (state.handOver()) {
    case UpdateState::HandOver::Told:
        return HandOver::SetAside;
    case UpdateState::HandOver::Started:
        state.noteHandOver(UpdateState::HandOver::Told);
        return HandOver::UpdaterSilent;
    case UpdateState::HandOver::None:
        break;
    }
    state.noteHandOver(UpdateState::HandOver::Started);
    if (startUpdater(targets, order, {}))
        return HandOver::UpdaterStarted;
    state.noteHandOver(UpdateState::HandOver::None);
    return HandOver::UpdaterMissing;
}

} // namespace

bool startUpdater(const UpdateTargets& targets, const RestartOrder& order, const QStringList& arguments)
{
    writeRestartOrder(targets.folder(), order);
    return QProcess::startDetached(textOf(targets.updater()), arguments, textOf(targets.folder().root()));
}

HandOver handOverUpdates(const UpdateTargets& targets, const RestartOrder& order)
{
    const AppFolder& folder = targets.folder();
    if (!folder.folderExists(updatesFolder))
        return HandOver::Nothing;
    if (folder.fileNames(updatesFolder).size() > 1)
        return handOver(targets, order);
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
