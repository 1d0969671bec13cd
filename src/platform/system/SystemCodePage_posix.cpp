#include "platform/system/SystemCodePage.h"

std::string systemCodePage()
{
    return "windows-1252";
}
