#include "platform/system/KernelName.h"

#include <sys/utsname.h>

std::string kernelName()
{
    utsname names = {};
    if (uname(&names) != 0)
        return "unknown system";
    return std::string(names.sysname) + ' ' + names.release + ' ' + names.machine;
}
