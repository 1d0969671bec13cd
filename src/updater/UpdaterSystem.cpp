#include "updater/UpdaterSystem.h"

#include <thread>
#include <utility>

namespace updater {

namespace {

constexpr const char* clientLockName = "instance.lock"; // the client holds it as long as it runs
constexpr auto pollPause = std::chrono::milliseconds(50);

} // namespace

FolderHold::FolderHold(std::filesystem::path file, int descriptor) : m_file(std::move(file)), m_descriptor(descriptor)
{}

StartedProgram::StartedProgram(std::intptr_t process) : m_process(process) {}

bool waitForClient(const std::filesystem::path& folder, std::chrono::milliseconds limit)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    while (isHeld(folder / clientLockName)) {
        if (std::chrono::steady_clock::now() >= deadline)
            return false;
        std::this_thread::sleep_for(pollPause);
    }
    return true;
}

} // namespace updater
