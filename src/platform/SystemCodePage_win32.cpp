#include "platform/SystemCodePage.h"

#include "platform/PathBytes.h"

#include <algorithm>

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

UINT systemCodePage()
{
    static const UINT codePage = settingOfTheSystem();
    return codePage;
}

} // namespace

std::array<char16_t, 256> hostCharacters()
{
    std::array<char16_t, 256> characters{};
    for (std::size_t value = 0; value < characters.size(); ++value) {
        const char single = static_cast<char>(value);
        const auto character = static_cast<char16_t>(wideOf(std::string_view(&single, 1)).front());
        const auto end = characters.begin() + static_cast<std::ptrdiff_t>(value);
        const bool isTaken = std::find(characters.begin(), end, character) != end;
        characters[value] = isTaken ? static_cast<char16_t>(value) : character;
    }
    return characters;
}

std::wstring wideOf(std::string_view bytes)
{
    std::wstring text(bytes.size(), L'\0'); // one byte a character
    if (!bytes.empty()) {
        MultiByteToWideChar(systemCodePage(), 0, bytes.data(), static_cast<int>(bytes.size()), text.data(),
                            static_cast<int>(text.size()));
    }
    return text;
}

std::string bytesOf(std::wstring_view text)
{
    std::string bytes(text.size(), '\0');
    if (!text.empty()) {
        const int size = WideCharToMultiByte(systemCodePage(), 0, text.data(), static_cast<int>(text.size()),
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
