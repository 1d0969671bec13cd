#include "platform/system/SystemCodePage.h"

#include "platform/system/CodePageMap.h"
#include "platform/system/PathBytes.h"

#include <windows.h>

namespace {

/// Asks for the system's setting itself: what the program's manifest makes the process use says nothing about the host.
std::shared_ptr<const CodePageMap> settingOfTheSystem()
{
    DWORD number = 0;
    GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                   reinterpret_cast<LPWSTR>(&number), sizeof number / sizeof(wchar_t));
    std::shared_ptr<const CodePageMap> map = CodePageMap::named("windows-" + std::to_string(number));
    return map ? map : CodePageMap::named("windows-1252");
}

const CodePageMap& systemMap()
{
    static const std::shared_ptr<const CodePageMap> map = settingOfTheSystem();
    return *map;
}

} // namespace

std::string systemCodePage()
{
    return systemMap().name();
}

std::wstring wideOf(std::string_view bytes)
{
    const std::u16string text = systemMap().toText(bytes);
    return {text.begin(), text.end()};
}

std::string bytesOf(std::wstring_view text)
{
    return systemMap().toBytes(std::u16string(text.begin(), text.end()));
}

std::string bytesOf(const std::filesystem::path& path)
{
    return bytesOf(std::wstring_view(path.native()));
}

std::filesystem::path pathOfBytes(std::string_view bytes)
{
    return wideOf(bytes);
}
