#include "platform/system/ProcessMemory.h"

#include <windows.h>

void trimProcessMemory()
{
    SetProcessWorkingSetSize(GetCurrentProcess(), static_cast<SIZE_T>(-1), static_cast<SIZE_T>(-1));
}
