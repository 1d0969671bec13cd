#include "platform/system/FileVersion.h"

#include <vector>

#include <windows.h>

std::optional<std::string> fileVersionOf(const std::filesystem::path& file)
{
    DWORD unused = 0;
    std::vector<char> resource(GetFileVersionInfoSizeW(file.c_str(), &unused));
    void* place = nullptr;
    UINT size = 0;
    if (resource.empty() ||
        !GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(resource.size()), resource.data()) ||
        !VerQueryValueW(resource.data(), L"\\", &place, &size) || size < sizeof(VS_FIXEDFILEINFO))
        return std::nullopt;
    const auto& fixed = *static_cast<const VS_FIXEDFILEINFO*>(place);
    std::string version;
    for (const DWORD pair : {fixed.dwFileVersionMS, fixed.dwFileVersionLS}) {
        version.append(version.empty() ? "" : ".")
            .append(std::to_string(HIWORD(pair)) + '.' + std::to_string(LOWORD(pair)));
    }
    return version;
}
