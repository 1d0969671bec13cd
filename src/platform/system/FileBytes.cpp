#include "platform/system/FileBytes.h"

#include "base/RuntimeError.h"
#include "platform/system/DiskFile.h"
#include "platform/system/PathBytes.h"

#include <algorithm>
#include <random>
#include <utility>

namespace fs = std::filesystem;

namespace {

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
    fs::path::string_type name = target.filename().native().substr(0, takenOver);
    return target.parent_path() / fs::path(".").concat(name).concat('.' + std::to_string(random()) + ".tmp");
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
    if (condition == std::errc::no_space_on_device || condition == std::errc::file_too_large)
        return ErrorNumber::DiskFull;
    return ErrorNumber::DeviceInputOutput;
}

void writeWhole(const fs::path& file, std::string_view bytes, Access access, bool isFlushed, std::source_location where)
{
    const fs::path target = behindLinks(file);
    std::error_code fault;
    const fs::file_status old = fs::status(target, fault);
    const bool replaces = fs::exists(old);
    if (replaces && !fs::is_regular_file(old))
        throw RuntimeError(ErrorNumber::PermissionDenied, PrivateName(bytesOf(file)), where);

    TemporaryFile temporary{temporaryNameFor(target)};
    DiskFile opened(temporary.path, DiskFile::Mode::CreateNew, replaces ? Access::OwnerOnly : access);
    if (opened.fault()) {
        temporary.kept = true; // not ours
        throwFileError(opened.fault(), target, where);
    }
    fault = replaces && access != Access::OwnerOnly ? opened.takeRightsOf(target) : std::error_code();
    if (!fault)
        fault = opened.write(bytes);
    if (!fault && isFlushed)
        fault = opened.flush();
    if (const std::error_code closing = opened.close(); !fault)
        fault = closing;
    if (!fault)
        fault = renameOver(temporary.path, target);
    if (fault)
        throwFileError(fault, target, where);
    temporary.kept = true;
}

} // namespace

void throwFileError(std::error_code fault, const fs::path& path, std::source_location where)
{
    throw RuntimeError(numberOf(fault, path), PrivateName(bytesOf(path)), where);
}

std::optional<std::string> readBytesIfPresent(const fs::path& file, std::size_t maxBytes, std::source_location where)
{
    DiskFile opened(file, DiskFile::Mode::Read);
    if (const std::error_code fault = opened.fault()) {
        if (fault == std::errc::no_such_file_or_directory || fault == std::errc::not_a_directory)
            return {};
        throwFileError(fault, file, where);
    }
    std::error_code fault;
    const std::uintmax_t size = opened.size(fault);
    if (fault)
        throwFileError(fault, file, where);

    // The file may grow or shrink meanwhile, so what counts is what is read; one byte more tells that it is too long.
    const auto expected = static_cast<std::size_t>(std::min<std::uintmax_t>(size, maxBytes)) + 1;
    std::string bytes(expected, '\0');
    std::size_t filled = 0;
    for (;;) {
        const std::size_t received = opened.read(bytes.data() + filled, bytes.size() - filled, fault);
        if (fault)
            throwFileError(fault, file, where);
        filled += received;
        if (filled > maxBytes)
            throw RuntimeError(ErrorNumber::InvalidFileFormat, PrivateName(bytesOf(file)), where);
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
    writeWhole(file, bytes, access, true, where);
}

void writeCacheBytes(const fs::path& file, std::string_view bytes, std::source_location where)
{
    writeWhole(file, bytes, Access::AsUsual, false, where);
}

void appendBytes(const fs::path& file, std::string_view bytes, std::source_location where)
{
    DiskFile opened(file, DiskFile::Mode::Append);
    std::error_code fault = opened.fault();
    const std::uintmax_t oldSize = fault ? 0 : opened.size(fault);
    if (fault)
        throwFileError(fault, file, where);
    fault = opened.write(bytes);
    if (fault)
        opened.cutTo(oldSize); // half an entry would hide those that follow
    if (const std::error_code closing = opened.close(); !fault)
        fault = closing;
    if (fault)
        throwFileError(fault, file, where);
}

void copyFile(const fs::path& from, const fs::path& to, std::source_location where)
{
    TemporaryFile temporary{temporaryNameFor(to)};
    std::error_code fault;
    fs::copy_file(from, temporary.path, fault);
    if (!fault) {
        DiskFile copy(temporary.path, DiskFile::Mode::Settle);
        fault = copy.fault() ? copy.fault() : copy.flush();
    }
    if (!fault)
        fault = renameOver(temporary.path, to);
    if (fault)
        throwFileError(fault, to, where);
    temporary.kept = true;
}

void moveFile(const fs::path& from, const fs::path& to, std::source_location where)
{
    const fs::path target = behindLinks(to);
    std::error_code fault;
    const fs::file_status old = fs::status(target, fault);
    const bool replaces = fs::exists(old);
    if (replaces && !fs::is_regular_file(old))
        throw RuntimeError(ErrorNumber::PermissionDenied, PrivateName(bytesOf(to)), where);
    {
        DiskFile whole(from, DiskFile::Mode::Settle);
        fault = whole.fault();
        if (!fault && replaces)
            fault = whole.takeRightsOf(target);
        if (!fault)
            fault = whole.flush();
        if (fault)
            throwFileError(fault, from, where);
    }
    fault = renameOver(from, target);
    if (fault == std::errc::cross_device_link) {
        copyFile(from, target, where);
        std::error_code ignored; // it has arrived; what is left of it is only in the way
        fs::remove(from, ignored);
        return;
    }
    if (fault)
        throwFileError(fault, target, where);
}
