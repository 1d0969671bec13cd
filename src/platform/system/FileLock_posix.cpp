#include "platform/system/FileLock.h"

#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr mode_t ownerMode = 0600;

/// Whether the open file is still the one of that name: its last holder has removed it otherwise.
bool isStill(int descriptor, const fs::path& file)
{
    struct stat held = {};
    struct stat named = {};
    return ::fstat(descriptor, &held) == 0 && ::stat(file.c_str(), &named) == 0 && held.st_dev == named.st_dev &&
           held.st_ino == named.st_ino;
}

} // namespace

FileLock::FileLock(fs::path file, std::intptr_t handle) : m_file(std::move(file)), m_handle(handle) {}

std::unique_ptr<FileLock> FileLock::take(const fs::path& file, std::string_view text, std::error_code& fault)
{
    for (;;) {
        const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK, ownerMode);
        if (descriptor < 0) {
            fault.assign(errno, std::generic_category());
            return nullptr;
        }
        if (::flock(descriptor, LOCK_EX | LOCK_NB) != 0) {
            if (errno != EWOULDBLOCK)
                fault.assign(errno, std::generic_category());
            ::close(descriptor);
            return nullptr;
        }
        if (isStill(descriptor, file)) {
            // On a full disk it says nothing, and is held all the same.
            if (::ftruncate(descriptor, 0) == 0) [[maybe_unused]]
                const ssize_t ignored = ::write(descriptor, text.data(), text.size());
            return std::unique_ptr<FileLock>(new FileLock(file, descriptor));
        }
        ::close(descriptor);
    }
}

FileLock::~FileLock()
{
    std::error_code ignored;
    fs::remove(m_file, ignored);
    ::close(static_cast<int>(m_handle));
}
