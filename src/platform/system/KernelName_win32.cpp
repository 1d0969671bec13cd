#include "platform/system/KernelName.h"

#include <windows.h>

std::string kernelName()
{
    std::string name = "Windows";
    // The newer functions for programs name the release that a program was made for; the kernel itself names its own.
    const FARPROC address = GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetVersion");
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    using GetVersion = LONG(WINAPI*)(OSVERSIONINFOW*);
    if (address && reinterpret_cast<GetVersion>(reinterpret_cast<void*>(address))(&version) == 0) {
        name += ' ' + std::to_string(version.dwMajorVersion) + '.' + std::to_string(version.dwMinorVersion) + '.' +
                std::to_string(version.dwBuildNumber);
    }
    SYSTEM_INFO system{};
    GetNativeSystemInfo(&system);
    switch (system.wProcessorArchitecture) {
    case PROCESSOR_ARCHITECTURE_AMD64:
        return name + " x86_64";
    case PROCESSOR_ARCHITECTURE_ARM64:
        return name + " arm64";
    default:
        return name + " x86";
    }
}
