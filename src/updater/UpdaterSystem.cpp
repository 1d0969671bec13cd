#include "updater/UpdaterSystem.h"

#include "updates/InstallUpdates.h"

#include <thread>

namespace updater {

namespace {

constexpr const char* clientLockName = "instance.lock"; // the client holds it as long as it runs
constexpr auto pollPause = std::chrono::milliseconds(50);

} // namespace

StartedProgram::StartedProgram(std::intptr_t process) : m_process(process) {}

std::unique_ptr<FileLock> takeFromClient(const std::filesystem::path& folder, std::chrono::milliseconds limit,
                                         std::error_code& fault)
{
    const auto deadline = std::chrono::steady_clock::now() + limit;
    for (;;) {
        std::unique_ptr<FileLock> lock = FileLock::take(folder / clientLockName, updaterLockText, fault);
        if (lock || fault || std::chrono::steady_clock::now() >= deadline)
            return lock;
        std::this_thread::sleep_for(pollPause);
    }
}

} // namespace updater
