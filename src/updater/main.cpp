// Installs the updates that wait in "\Updates" of the program folder while the client is not running, and starts the
// client again. The client starts it without arguments, in the program folder.

#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "platform/system/StandardStreams.h"
#include "store/AppFolder.h"
#include "updater/UpdaterSystem.h"
#include "updates/InstallUpdates.h"
#include "updates/UpdateState.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <chrono>
#include <iostream>
#include <optional>
#include <string_view>
#include <thread>

namespace fs = std::filesystem;
using namespace std::chrono_literals;

namespace {

constexpr int badUsage = 2;
constexpr auto clientLimit = 20s; // what the client may take to end
constexpr auto trialLimit = 10s;  // what a new client may take to start
constexpr auto trialPause = 50ms;

// The client's checks for updates look for this in the file.
[[gnu::used]] constexpr char fileVersionMark[] = "QRVRC-FILE-VERSION:" QRVRC_VERSION;

constexpr std::string_view help =
    "Usage: QRVV3Updater [option]\n"
    "Installs the updates of the client that wait in the folder 'Updates' of the current\n"
    "folder, or of its own, and starts the client again.\n"
    "\n"
    "  --restore   put back what the last update replaced, and drop what still waits\n"
    "  --version   print the version and end\n"
    "  --help      print this text and end\n";

int complain(std::string_view text, int status = 1)
{
    tellCaller("QRVV3Updater: " + std::string(text));
    return status;
}

/// Whether a client keeps its state in the folder: it left an order to be started again there, or lies there itself.
bool belongsToClient(const AppFolder& folder)
{
    if (!updater::isOwn(folder.root()))
        return false;
    std::error_code fault;
    if (fs::is_regular_file(folder.root() / updater::clientName, fault))
        return true;
    const fs::path program = readRestartOrder(folder).program;
    return !program.empty() && fs::is_regular_file(program, fault) && updater::isOwn(program);
}

/// The current folder when a client has left something there for the updater, otherwise the updater's own.
std::optional<AppFolder> programFolder(const char* calledAs)
{
    const AppFolder current(fs::current_path());
    const bool isMeant = current.folderExists(updatesFolder) || current.folderExists(replacedFolder);
    const AppFolder folder = isMeant ? current : AppFolder(updater::ownFolder(calledAs));
    return belongsToClient(folder) ? std::optional(folder) : std::nullopt;
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

/// Starts the client, and watches its first seconds when it has never started before.
/// @return whether it runs, or has ended in order
bool startsWell(const RestartOrder& order, const UpdateState& state)
{
    const std::unique_ptr<updater::StartedProgram> client =
        updater::StartedProgram::start(order.program, order.arguments);
    if (!client)
        return false;
    const auto deadline = std::chrono::steady_clock::now() + trialLimit;
    while (state.isOnTrial() && std::chrono::steady_clock::now() < deadline) {
        if (const std::optional<int> status = client->exitStatus())
            return *status == 0;
        std::this_thread::sleep_for(trialPause);
    }
    return true;
}

int run(bool restores, const char* calledAs)
{
    const std::optional<AppFolder> found = programFolder(calledAs);
    if (!found)
        return complain("neither the current folder nor the updater's own is a client's");
    const AppFolder& folder = *found;
    std::error_code fault;
    const std::unique_ptr<FileLock> hold = FileLock::take(folder.root() / updater::holdName, updaterLockText, fault);
    if (!hold)
        return complain("another updater is at work in '" + folder.root().string() +
                        "', or nothing can be written there");
    const UpdateState state(folder);
    std::unique_ptr<FileLock> client = updater::takeFromClient(folder.root(), clientLimit, fault);
    if (!client) {
        state.noteHandOver(UpdateState::HandOver::None);
        return complain(fault ? "the client's lock cannot be taken: " + fault.message()
                              : "the client is still running; the updates wait for its next start");
    }

    const RestartOrder order = restartOrder(folder, calledAs);
    const UpdateTargets targets(folder, order.program, platformSystemFolder());
    std::vector<std::string> problems = restores ? restoreReplaced(targets) : installWaiting(targets);
    client.reset(); // the one that is started takes it, or another one that the user starts first
    bool isStarted = startsWell(order, state);
    if (!isStarted && state.isOnTrial()) {
        client = updater::takeFromClient(folder.root(), clientLimit, fault);
        if (!client)
            return complain("the new program did not start, and another one keeps the old one from being put back");
        problems = restoreReplaced(targets);
        problems.insert(problems.begin(),
                        "The new program did not start. What the update replaced is back in its place.");
        writeProblems(folder, problems);
        client.reset();
        isStarted = startsWell(order, state);
    }
    for (const std::string& problem : problems)
        complain(problem);
    if (!isStarted)
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
