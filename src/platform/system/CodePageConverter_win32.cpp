#include "platform/system/CodePageConverter.h"

#include <windows.h>

#include <array>

class CodePageConverter::Impl
{
public:
    UINT number;
};

CodePageConverter::CodePageConverter(unsigned number) : m_impl(std::make_unique<Impl>(Impl{number})) {}

CodePageConverter::~CodePageConverter() = default;

char16_t CodePageConverter::characterOf(std::string_view bytes) const
{
    std::array<wchar_t, 4> units{};
    const int count = MultiByteToWideChar(m_impl->number, MB_ERR_INVALID_CHARS, bytes.data(),
                                          static_cast<int>(bytes.size()), units.data(), static_cast<int>(units.size()));
    return count == 1 ? static_cast<char16_t>(units[0]) : u'\0';
}

std::string CodePageConverter::bytesOf(char16_t character) const
{
    std::array<char, 4> bytes{};
    const auto unit = static_cast<wchar_t>(character);
    BOOL isLacking = FALSE;
    const int size = WideCharToMultiByte(m_impl->number, WC_NO_BEST_FIT_CHARS, &unit, 1, bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, &isLacking);
    return size > 0 && !isLacking ? std::string(bytes.data(), static_cast<std::size_t>(size)) : std::string();
}
