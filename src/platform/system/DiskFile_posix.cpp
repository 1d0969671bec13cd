#include "platform/system/DiskFile.h"

#include <algorithm>
#include <cerrno>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr std::intptr_t noFile = -1;
constexpr mode_t usualMode = 0666;
constexpr mode_t ownerMode = 0600;
constexpr mode_t rightsMask = 07777;

std::error_code lastFault()
{
    return {errno == EDQUOT ? ENOSPC : errno, std::generic_category()}; // what is full is told alike
}

int descriptorOf(std::intptr_t handle)
{
    return static_cast<int>(handle);
}

/// A pipe without a partner must not hold the program up.
int flagsOf(DiskFile::Mode mode)
{
    switch (mode) {
    case DiskFile::Mode::Read:
    case DiskFile::Mode::Settle:
        return O_RDONLY | O_NONBLOCK;
    case DiskFile::Mode::CreateNew:
        return O_WRONLY | O_CREAT | O_EXCL;
    case DiskFile::Mode::Append:
        break;
    }
    return O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK;
}

} // namespace

DiskFile::DiskFile(const fs::path& path, Mode mode, Access access)
    : m_handle(::open(path.c_str(), flagsOf(mode) | O_CLOEXEC, access == Access::OwnerOnly ? ownerMode : usualMode))
{
    if (m_handle == noFile)
        m_fault = lastFault();
}

DiskFile::~DiskFile()
{
    if (m_handle != noFile)
        ::close(descriptorOf(m_handle));
}

std::uintmax_t DiskFile::size(std::error_code& fault) const
{
    struct stat state = {};
    if (::fstat(descriptorOf(m_handle), &state) != 0)
        fault = lastFault();
    else if (!S_ISREG(state.st_mode))
        fault = std::make_error_code(std::errc::permission_denied);
    return static_cast<std::uintmax_t>(std::max<off_t>(state.st_size, 0));
}

std::size_t DiskFile::read(char* bytes, std::size_t space, std::error_code& fault)
{
    for (;;) {
        const ssize_t received = ::read(descriptorOf(m_handle), bytes, space);
        if (received >= 0)
            return static_cast<std::size_t>(received);
        if (errno != EINTR) {
            fault = lastFault();
            return 0;
        }
    }
}

std::error_code DiskFile::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptorOf(m_handle), bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return lastFault();
        bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
    }
    return {};
}

std::error_code DiskFile::flush()
{
    return ::fsync(descriptorOf(m_handle)) == 0 ? std::error_code() : lastFault();
}

void DiskFile::cutTo(std::uintmax_t size)
{
    [[maybe_unused]] const int ignored = ::ftruncate(descriptorOf(m_handle), static_cast<off_t>(size));
}

std::error_code DiskFile::takeRightsOf(const fs::path& other)
{
    struct stat state = {};
    if (::stat(other.c_str(), &state) != 0 || ::fchmod(descriptorOf(m_handle), state.st_mode & rightsMask) != 0)
        return lastFault();
    return {};
}

std::error_code DiskFile::close()
{
    return ::close(descriptorOf(std::exchange(m_handle, noFile))) == 0 ? std::error_code() : lastFault();
}

std::error_code renameOver(const fs::path& from, const fs::path& to)
{
    std::error_code fault;
    fs::rename(from, to, fault);
    return fault;
}
