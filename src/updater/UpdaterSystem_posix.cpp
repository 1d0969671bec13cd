#include "updater/UpdaterSystem.h"

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace updater {

std::unique_ptr<StartedProgram> StartedProgram::start(const fs::path& program,
                                                      const std::vector<std::string>& arguments)
{
    std::vector<std::string> words{program.string()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);

    posix_spawnattr_t attributes;
    ::posix_spawnattr_init(&attributes);
    ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
    pid_t process = 0;
    const int fault = ::posix_spawn(&process, program.c_str(), nullptr, &attributes, pointers.data(), environ);
    ::posix_spawnattr_destroy(&attributes);
    return fault == 0 ? std::unique_ptr<StartedProgram>(new StartedProgram(process)) : nullptr;
}

StartedProgram::~StartedProgram()
{
    exitStatus(); // what has ended is to be nobody's any more
}

std::optional<int> StartedProgram::exitStatus()
{
    int status = 0;
    if (::waitpid(static_cast<pid_t>(m_process), &status, WNOHANG) <= 0)
        return {};
    constexpr int byFault = 128; // as shells count it
    return WIFEXITED(status) ? WEXITSTATUS(status) : byFault + WTERMSIG(status);
}

bool isOwn(const fs::path& path)
{
    struct stat facts = {};
    return ::stat(path.c_str(), &facts) == 0 && (facts.st_uid == ::geteuid() || facts.st_uid == 0);
}

fs::path ownFolder(const char* calledAs)
{
    std::error_code fault;
    const fs::path self = fs::read_symlink("/proc/self/exe", fault);
    return (fault ? fs::absolute(calledAs) : self).parent_path();
}

} // namespace updater
