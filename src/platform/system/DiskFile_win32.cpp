#include "platform/system/DiskFile.h"

#include <algorithm>
#include <memory>
#include <utility>

#include <windows.h>

#include <aclapi.h>
#include <sddl.h>

namespace fs = std::filesystem;

namespace {

// The owner and, as on every system, those who run the machine; nothing is inherited from the folder.
constexpr wchar_t ownerRights[] = L"D:P(A;;FA;;;OW)(A;;FA;;;SY)(A;;FA;;;BA)";
constexpr DWORD everybodyShares = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;
constexpr DWORD diskQuotaExceeded = 1295;                     // which not all headers name
constexpr std::size_t largestTransfer = std::size_t{1} << 30; // what one call takes

struct LocalMemory
{
    void operator()(void* memory) const { LocalFree(memory); }
};
using SecurityDescriptor = std::unique_ptr<void, LocalMemory>;

HANDLE handleOf(std::intptr_t value)
{
    return reinterpret_cast<HANDLE>(value);
}

std::intptr_t noFile()
{
    return reinterpret_cast<std::intptr_t>(INVALID_HANDLE_VALUE);
}

std::error_code faultOf(DWORD error)
{
    const auto known = [](std::errc number) { return std::make_error_code(number); };
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
    case ERROR_PATH_NOT_FOUND:
    case ERROR_INVALID_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_PATHNAME:
        return known(std::errc::no_such_file_or_directory);
    case ERROR_DIRECTORY:
        return known(std::errc::not_a_directory);
    case ERROR_FILENAME_EXCED_RANGE:
        return known(std::errc::filename_too_long);
    case ERROR_ACCESS_DENIED:
    case ERROR_SHARING_VIOLATION: // somebody else holds it open
    case ERROR_LOCK_VIOLATION:
    case ERROR_USER_MAPPED_FILE:
    case ERROR_DELETE_PENDING:
        return known(std::errc::permission_denied);
    case ERROR_WRITE_PROTECT:
        return known(std::errc::read_only_file_system);
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
    case diskQuotaExceeded:
        return known(std::errc::no_space_on_device);
    case ERROR_NOT_SAME_DEVICE:
        return known(std::errc::cross_device_link);
    case ERROR_FILE_TOO_LARGE:
        return known(std::errc::file_too_large);
    default:
        return {static_cast<int>(error), std::system_category()};
    }
}

std::error_code lastFault()
{
    return faultOf(GetLastError());
}

std::error_code faultUnless(BOOL success)
{
    return success ? std::error_code() : lastFault();
}

HANDLE open(const fs::path& path, DiskFile::Mode mode, Access access)
{
    if (mode == DiskFile::Mode::Read) {
        return CreateFileW(path.c_str(), GENERIC_READ, everybodyShares, nullptr, OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL,
                           nullptr);
    }
    if (mode == DiskFile::Mode::Settle) {
        return CreateFileW(path.c_str(), GENERIC_WRITE | WRITE_DAC, everybodyShares, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    PSECURITY_DESCRIPTOR made = nullptr;
    if (access == Access::OwnerOnly)
        ConvertStringSecurityDescriptorToSecurityDescriptorW(ownerRights, SDDL_REVISION_1, &made, nullptr);
    const SecurityDescriptor descriptor(made);
    SECURITY_ATTRIBUTES attributes{sizeof attributes, made, FALSE};
    if (mode == DiskFile::Mode::CreateNew) {
        return CreateFileW(path.c_str(), GENERIC_WRITE | WRITE_DAC, FILE_SHARE_READ | FILE_SHARE_DELETE, &attributes,
                           CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    return CreateFileW(path.c_str(), GENERIC_WRITE, everybodyShares, &attributes, OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL,
                       nullptr);
}

} // namespace

DiskFile::DiskFile(const fs::path& path, Mode mode, Access access)
    : m_handle(reinterpret_cast<std::intptr_t>(open(path, mode, access)))
{
    if (m_handle == noFile()) {
        m_fault = lastFault();
        return;
    }
    if (LARGE_INTEGER nothing{};
        mode == Mode::Append && !SetFilePointerEx(handleOf(m_handle), nothing, nullptr, FILE_END))
        m_fault = lastFault();
}

DiskFile::~DiskFile()
{
    if (m_handle != noFile())
        CloseHandle(handleOf(m_handle));
}

std::uintmax_t DiskFile::size(std::error_code& fault) const
{
    LARGE_INTEGER size{};
    if (GetFileType(handleOf(m_handle)) != FILE_TYPE_DISK)
        fault = std::make_error_code(std::errc::permission_denied);
    else
        fault = faultUnless(GetFileSizeEx(handleOf(m_handle), &size));
    return static_cast<std::uintmax_t>(size.QuadPart);
}

std::size_t DiskFile::read(char* bytes, std::size_t space, std::error_code& fault)
{
    DWORD received = 0;
    fault = faultUnless(
        ReadFile(handleOf(m_handle), bytes, static_cast<DWORD>(std::min(space, largestTransfer)), &received, nullptr));
    return received;
}

std::error_code DiskFile::write(std::string_view bytes)
{
    while (!bytes.empty()) {
        DWORD written = 0;
        const auto portion = static_cast<DWORD>(std::min(bytes.size(), largestTransfer));
        if (!WriteFile(handleOf(m_handle), bytes.data(), portion, &written, nullptr))
            return lastFault();
        bytes.remove_prefix(written);
    }
    return {};
}

std::error_code DiskFile::flush()
{
    return faultUnless(FlushFileBuffers(handleOf(m_handle)));
}

void DiskFile::cutTo(std::uintmax_t size)
{
    LARGE_INTEGER end{};
    end.QuadPart = static_cast<LONGLONG>(size);
    if (SetFilePointerEx(handleOf(m_handle), end, nullptr, FILE_BEGIN))
        SetEndOfFile(handleOf(m_handle));
}

std::error_code DiskFile::takeRightsOf(const fs::path& other)
{
    PSECURITY_DESCRIPTOR made = nullptr;
    PACL rights = nullptr;
    if (GetNamedSecurityInfoW(other.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &rights,
                              nullptr, &made) != ERROR_SUCCESS)
        return {}; // a disk without rights
    const SecurityDescriptor descriptor(made);
    SECURITY_DESCRIPTOR_CONTROL control = 0;
    DWORD revision = 0;
    GetSecurityDescriptorControl(made, &control, &revision);
    const SECURITY_INFORMATION kind =
        DACL_SECURITY_INFORMATION |
        (control & SE_DACL_PROTECTED ? PROTECTED_DACL_SECURITY_INFORMATION : UNPROTECTED_DACL_SECURITY_INFORMATION);
    const DWORD error = SetSecurityInfo(handleOf(m_handle), SE_FILE_OBJECT, kind, nullptr, nullptr, rights, nullptr);
    return error == ERROR_SUCCESS ? std::error_code() : faultOf(error);
}

std::error_code DiskFile::close()
{
    return faultUnless(CloseHandle(handleOf(std::exchange(m_handle, noFile()))));
}

std::error_code renameOver(const fs::path& from, const fs::path& to)
{
    return faultUnless(MoveFileExW(from.c_str(), to.c_str(), MOVEFILE_REPLACE_EXISTING | MOVEFILE_WRITE_THROUGH));
}
