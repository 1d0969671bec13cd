#include "platform/system/SystemCodePage.h"

#include "platform/system/PathBytes.h"

#include <windows.h>

namespace {

constexpr UINT westernCodePage = 1252;

/// Asks for the system's setting itself: what the program's manifest makes the process use says nothing about the host.
UINT settingOfTheSystem()
{
    DWORD number = 0;
    const int length = GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                                      reinterpret_cast<LPWSTR>(&number), sizeof number / sizeof(wchar_t));
    CPINFO info{};
    const bool isUsable = length > 0 && GetCPInfo(number, &info) && info.MaxCharSize == 1;
    return isUsable ? number : westernCodePage;
}

UINT codePageNumber()
{
    static const UINT codePage = settingOfTheSystem();
    return codePage;
}

} // namespace

std::string systemCodePage()
{
    return "windows-" + std::to_string(codePageNumber());
}

std::wstring wideOf(std::string_view bytes)
{
    std::wstring text(bytes.size(), L'\0'); // one byte a character
    if (!bytes.empty()) {
        MultiByteToWideChar(codePageNumber(), 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                            static_cast<int>(text.size()));
    }
    return text;
}

std::string bytesOf(std::wstring_view text)
{
    std::string bytes(text.size(), '\0');
    if (!text.empty()) {
        const int size = WideCharToMultiByte(codePageNumber(), 0, text.data(), static_cast<int>(text.size()),
                                             bytes.data(), static_cast<int>(bytes.size()), "?", nullptr);
        bytes.resize(static_cast<std::size_t>(size));
    }
    return bytes;
}

std::string bytesOf(const std::filesystem::path& path)
{
    return bytesOf(std::wstring_view(path.native()));
}

std::filesystem::path pathOfBytes(std::string_view bytes)
{
    return wideOf(bytes);
}
