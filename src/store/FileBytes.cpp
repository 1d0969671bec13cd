#include "store/FileBytes.h"

#include "base/RuntimeError.h"

#include <algorithm>
#include <cerrno>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr int noFile = -1;
constexpr mode_t usualMode = 0666;
constexpr mode_t ownerMode = 0600;
constexpr mode_t rightsMask = 07777;

std::error_code lastFault()
{
    return {errno, std::generic_category()};
}

/// An open file that is closed when its scope ends.
class OpenFile
{
public:
    OpenFile(const fs::path& path, int flags, mode_t mode = usualMode)
        : m_descriptor(::open(path.c_str(), flags | O_CLOEXEC, mode))
    {}
    ~OpenFile()
    {
        if (m_descriptor != noFile)
            ::close(m_descriptor);
    }
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;

    bool isOpen() const { return m_descriptor != noFile; }
    int descriptor() const { return m_descriptor; }

    std::error_code write(std::string_view bytes)
    {
        while (!bytes.empty()) {
            const ssize_t written = ::write(m_descriptor, bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR)
                return lastFault();
            bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
        return {};
    }

    /// Closing can report that the last bytes did not fit.
    std::error_code close()
    {
        return ::close(std::exchange(m_descriptor, noFile)) == 0 ? std::error_code() : lastFault();
    }

private:
    int m_descriptor;
};

/// Removes a temporary file unless it has become the real one.
struct TemporaryFile
{
    fs::path path;
    bool kept = false;

    ~TemporaryFile()
    {
        std::error_code ignored;
        if (!kept)
            fs::remove(path, ignored);
    }
};

/// A name beside `target` that no other writer uses. Only the first characters of the target's name are taken over, so
/// that a name of full length still has a temporary one.
fs::path temporaryNameFor(const fs::path& target)
{
    constexpr std::size_t takenOver = 64;
    std::random_device random;
    const std::string name = target.filename().string().substr(0, takenOver);
    return target.parent_path() / ('.' + name + '.' + std::to_string(random()) + ".tmp");
}

/// The file that `path` finally leads to.
fs::path behindLinks(const fs::path& path)
{
    std::error_code fault;
    if (!fs::is_symlink(fs::symlink_status(path, fault)))
        return path;
    const fs::path target = fs::canonical(path, fault);
    if (fault)
        throwFileError(fault, path);
    return target;
}

ErrorNumber numberOf(std::error_code fault, const fs::path& path)
{
    const std::error_condition condition = fault.default_error_condition();
    if (condition == std::errc::no_such_file_or_directory) {
        std::error_code ignored;
        const fs::path folder = path.parent_path();
        return folder.empty() || fs::is_directory(folder, ignored) ? ErrorNumber::FileNotFound
                                                                   : ErrorNumber::PathNotFound;
    }
    if (condition == std::errc::not_a_directory || condition == std::errc::filename_too_long ||
        condition == std::errc::too_many_symbolic_link_levels)
        return ErrorNumber::PathNotFound;
    if (condition == std::errc::permission_denied || condition == std::errc::operation_not_permitted ||
        condition == std::errc::read_only_file_system || condition == std::errc::is_a_directory ||
        condition == std::errc::text_file_busy)
        return ErrorNumber::PermissionDenied;
    if (condition == std::errc::no_space_on_device || condition == std::errc::file_too_large || fault.value() == EDQUOT)
        return ErrorNumber::DiskFull;
    return ErrorNumber::DeviceInputOutput;
}

} // namespace

void throwFileError(std::error_code fault, const fs::path& path, std::source_location where)
{
    throw RuntimeError(numberOf(fault, path), path.string(), where);
}

std::optional<std::string> readBytesIfPresent(const fs::path& file, std::size_t maxBytes, std::source_location where)
{
    const OpenFile opened(file, O_RDONLY | O_NONBLOCK); // a pipe without a writer must not hold the program up
    if (!opened.isOpen()) {
        const std::error_code fault = lastFault();
        if (fault == std::errc::no_such_file_or_directory || fault == std::errc::not_a_directory)
            return {};
        throwFileError(fault, file, where);
    }
    struct stat state = {};
    if (::fstat(opened.descriptor(), &state) != 0)
        throwFileError(lastFault(), file, where);
    if (!S_ISREG(state.st_mode))
        throw RuntimeError(ErrorNumber::PermissionDenied, file.string(), where);

    // The file may grow or shrink meanwhile, so what counts is what is read; one byte more tells that it is too long.
    const auto expected = std::min(static_cast<std::size_t>(state.st_size), maxBytes) + 1;
    std::string bytes(expected, '\0');
    std::size_t filled = 0;
    for (;;) {
        const ssize_t received = ::read(opened.descriptor(), bytes.data() + filled, bytes.size() - filled);
        if (received < 0 && errno == EINTR)
            continue;
        if (received < 0)
            throwFileError(lastFault(), file, where);
        filled += static_cast<std::size_t>(received);
        if (filled > maxBytes)
            throw RuntimeError(ErrorNumber::InvalidFileFormat, file.string(), where);
        if (received == 0)
            break;
        if (filled == bytes.size())
            bytes.resize(std::min(2 * filled, maxBytes + 1));
    }
    bytes.resize(filled);
    return bytes;
}

std::string readBytes(const fs::path& file, std::size_t maxBytes, std::source_location where)
{
    if (std::optional<std::string> bytes = readBytesIfPresent(file, maxBytes, where))
        return *std::move(bytes);
    throwFileError(std::make_error_code(std::errc::no_such_file_or_directory), file, where);
}

void writeBytes(const fs::path& file, std::string_view bytes, Access access, std::source_location where)
{
    const fs::path target = behindLinks(file);
    struct stat old = {};
    const bool replaces = ::stat(target.c_str(), &old) == 0;
    if (replaces && !S_ISREG(old.st_mode))
        throw RuntimeError(ErrorNumber::PermissionDenied, file.string(), where);

    const bool asUsual = !replaces && access == Access::AsUsual;
    TemporaryFile temporary{temporaryNameFor(target)};
    OpenFile opened(temporary.path, O_WRONLY | O_CREAT | O_EXCL, asUsual ? usualMode : ownerMode);
    if (!opened.isOpen()) {
        temporary.kept = true; // not ours
        throwFileError(lastFault(), target, where);
    }
    std::error_code fault;
    if (replaces && ::fchmod(opened.descriptor(), old.st_mode & rightsMask) != 0)
        fault = lastFault();
    if (!fault)
        fault = opened.write(bytes);
    if (!fault && ::fsync(opened.descriptor()) != 0)
        fault = lastFault();
    if (const std::error_code closing = opened.close(); !fault)
        fault = closing;
    if (!fault)
        fs::rename(temporary.path, target, fault);
    if (fault)
        throwFileError(fault, target, where);
    temporary.kept = true;
}

void appendBytes(const fs::path& file, std::string_view bytes, std::source_location where)
{
    OpenFile opened(file, O_WRONLY | O_CREAT | O_APPEND | O_NONBLOCK);
    if (!opened.isOpen())
        throwFileError(lastFault(), file, where);
    struct stat old = {};
    if (::fstat(opened.descriptor(), &old) != 0)
        throwFileError(lastFault(), file, where);
    if (!S_ISREG(old.st_mode))
        throw RuntimeError(ErrorNumber::PermissionDenied, file.string(), where);
    if (const std::error_code fault = opened.write(bytes)) {
        // Half an entry would hide those that follow. Should this fail too, the first fault is still the one to tell.
        [[maybe_unused]] const int ignored = ::ftruncate(opened.descriptor(), old.st_size);
        throwFileError(fault, file, where);
    }
    if (const std::error_code fault = opened.close())
        throwFileError(fault, file, where);
}

void copyFile(const fs::path& from, const fs::path& to, std::source_location where)
{
    TemporaryFile temporary{temporaryNameFor(to)};
    std::error_code fault;
    fs::copy_file(from, temporary.path, fault);
    if (!fault) {
        const OpenFile copy(temporary.path, O_RDONLY);
        if (!copy.isOpen() || ::fsync(copy.descriptor()) != 0)
            fault = lastFault();
    }
    if (!fault)
        fs::rename(temporary.path, to, fault);
    if (fault)
        throwFileError(fault, to, where);
    temporary.kept = true;
}

void moveFile(const fs::path& from, const fs::path& to, std::source_location where)
{
    const fs::path target = behindLinks(to);
    struct stat old = {};
    const bool replaces = ::stat(target.c_str(), &old) == 0;
    if (replaces && !S_ISREG(old.st_mode))
        throw RuntimeError(ErrorNumber::PermissionDenied, to.string(), where);
    {
        const OpenFile whole(from, O_RDONLY);
        const bool isReady = whole.isOpen() &&
                             (!replaces || ::fchmod(whole.descriptor(), old.st_mode & rightsMask) == 0) &&
                             ::fsync(whole.descriptor()) == 0;
        if (!isReady)
            throwFileError(lastFault(), from, where);
    }
    std::error_code fault;
    fs::rename(from, target, fault);
    if (fault == std::errc::cross_device_link) {
        copyFile(from, target, where);
        std::error_code ignored; // it has arrived; what is left of it is only in the way
        fs::remove(from, ignored);
        return;
    }
    if (fault)
        throwFileError(fault, target, where);
}
