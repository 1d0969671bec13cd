#include "platform/system/StandardStreams.h"

#include "platform/system/SystemCodePage.h"

#include <cstdio>
#include <iostream>

#include <windows.h>

namespace {

bool leadsSomewhere(DWORD stream)
{
    const HANDLE handle = GetStdHandle(stream);
    return handle && handle != INVALID_HANDLE_VALUE && GetFileType(handle) != FILE_TYPE_UNKNOWN;
}

} // namespace

void joinCallersConsole()
{
    if (leadsSomewhere(STD_OUTPUT_HANDLE) || leadsSomewhere(STD_ERROR_HANDLE) || !AttachConsole(ATTACH_PARENT_PROCESS))
        return;
    static_cast<void>(std::freopen("CONOUT$", "w", stdout));
    static_cast<void>(std::freopen("CONOUT$", "w", stderr));
}

void tellCaller(const std::string& line)
{
    if (leadsSomewhere(STD_ERROR_HANDLE) || GetConsoleWindow())
        std::cerr << line << std::endl;
    else
        MessageBoxW(nullptr, wideOf(line).c_str(), L"QRVRC", MB_OK | MB_ICONERROR);
}
