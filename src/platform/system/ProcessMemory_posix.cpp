#include "platform/system/ProcessMemory.h"

#if defined(__GLIBC__)
#include <malloc.h>
#endif

void trimProcessMemory()
{
#if defined(__GLIBC__)
    malloc_trim(0);
#endif
}
