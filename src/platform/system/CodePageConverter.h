#pragma once

#include <memory>
#include <string>
#include <string_view>

/// The system's own conversion of one code page. Not to be used by two threads at once.
class CodePageConverter
{
public:
    /// @param number  such as 932; one that the system does not know makes a converter without characters
    explicit CodePageConverter(unsigned number);
    ~CodePageConverter();

    /// The character that the bytes are as a whole; 0 when they are none, or one of more than one UTF-16 unit.
    char16_t characterOf(std::string_view bytes) const;
    /// The bytes of a character; empty when the code page lacks it.
    std::string bytesOf(char16_t character) const;

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};
