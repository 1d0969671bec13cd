#include "platform/system/FileLock.h"

#include <utility>

#include <windows.h>

namespace fs = std::filesystem;

namespace {

constexpr DWORD beyondText = 1; // high part of the locked byte's place: what the file says can be read meanwhile

} // namespace

FileLock::FileLock(fs::path file, std::intptr_t handle) : m_file(std::move(file)), m_handle(handle) {}

std::unique_ptr<FileLock> FileLock::take(const fs::path& file, std::string_view text, std::error_code& fault)
{
    const HANDLE handle = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE,
                                      nullptr, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (handle == INVALID_HANDLE_VALUE) {
        if (GetLastError() != ERROR_SHARING_VIOLATION)
            fault.assign(static_cast<int>(GetLastError()), std::system_category());
        return nullptr;
    }
    OVERLAPPED place{};
    place.OffsetHigh = beyondText;
    if (!LockFileEx(handle, LOCKFILE_EXCLUSIVE_LOCK | LOCKFILE_FAIL_IMMEDIATELY, 0, 1, 0, &place)) {
        if (GetLastError() != ERROR_LOCK_VIOLATION && GetLastError() != ERROR_IO_PENDING)
            fault.assign(static_cast<int>(GetLastError()), std::system_category());
        CloseHandle(handle);
        return nullptr;
    }
    DWORD written = 0; // on a full disk it says nothing, and is held all the same
    SetEndOfFile(handle);
    WriteFile(handle, text.data(), static_cast<DWORD>(text.size()), &written, nullptr);
    return std::unique_ptr<FileLock>(new FileLock(file, reinterpret_cast<std::intptr_t>(handle)));
}

FileLock::~FileLock()
{
    CloseHandle(reinterpret_cast<HANDLE>(m_handle));
    std::error_code ignored; // whoever has opened it meanwhile keeps it
    fs::remove(m_file, ignored);
}
