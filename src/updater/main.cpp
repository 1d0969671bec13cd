// Installs the updates that wait in "\Updates" of the program folder while the client is not running, and starts the
// client again. The client starts it without arguments, in the program folder.

#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "platform/system/StandardStreams.h"
#include "store/AppFolder.h"
#include "updater/UpdaterSystem.h"
#include "updates/InstallUpdates.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <iostream>
#include <string_view>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr int badUsage = 2;
constexpr auto clientLimit = 20s; // what the client may take to end

// The client's checks for updates look for this in the file.
[[gnu::used]] constexpr char fileVersionMark[] = "QRVRC-FILE-VERSION:" QRVRC_VERSION;

constexpr std::string_view help =
    "Usage: QRVV3Updater [option]\n"
    "Installs the updates of the client that wait in the folder 'Updates' of the current\n"
    "folder, or of its own, and starts the client again.\n"
    "\n"
    "  --restore   put back what the last updates replaced, until the client has started\n"
    "  --version   print the version and end\n"
    "  --help      print this text and end\n";

int complain(std::string_view text, int status = 1)
{
    tellCaller("QRVV3Updater: " + std::string(text));
    return status;
}

/// The current folder when the client has left something there for the updater, otherwise the updater's own.
AppFolder programFolder(const char* calledAs)
{
    AppFolder current(fs::current_path());
    if (current.folderExists(updatesFolder) || current.folderExists(replacedFolder))
        return current;
    return AppFolder(updater::ownFolder(calledAs));
}

/// The client that asked to be started again; without such an order, the one beside this program.
RestartOrder restartOrder(const AppFolder& folder, const char* calledAs)
{
    RestartOrder order;
    try {
        order = readRestartOrder(folder);
    } catch (const RuntimeError& error) {
        complain(error.description());
    }
    if (order.program.empty())
        order = {.program = updater::ownFolder(calledAs) / updater::clientName,
                 .arguments = {"--app-folder", folder.root().string()}};
    return order;
}

int run(bool restores, const char* calledAs)
{
    const AppFolder folder = programFolder(calledAs);
    const std::unique_ptr<updater::FolderHold> hold = updater::FolderHold::take(folder.root());
    if (!hold)
        return complain("another updater is at work in '" + folder.root().string() +
                        "', or nothing can be written there");
    if (!updater::waitForClient(folder.root(), clientLimit))
        return complain("the client is still running; the updates wait for its next start");

    const RestartOrder order = restartOrder(folder, calledAs);
    const UpdateTargets targets(folder, order.program, platformSystemFolder());
    const std::vector<std::string> problems = restores ? restoreReplaced(targets) : installWaiting(targets);
    for (const std::string& problem : problems)
        complain(problem);
    if (!updater::startProgram(order.program, order.arguments))
        return complain("the client '" + order.program.string() + "' cannot be started");
    return problems.empty() ? 0 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    joinCallersConsole();
    const std::string_view option = argc > 1 ? argv[1] : "";
    if (argc > 2 || (argc == 2 && option != "--restore" && option != "--version" && option != "--help"))
        return complain("unknown arguments (see --help)", badUsage);
    if (option == "--help" || option == "--version") {
        std::cout << (option == "--help" ? help : "QRVV3Updater " QRVRC_VERSION "\n");
        return 0;
    }
    try {
        return run(option == "--restore", argv[0]);
    } catch (const std::exception& fault) {
        return complain(fault.what());
    }
}
