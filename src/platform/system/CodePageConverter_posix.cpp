#include "platform/system/CodePageConverter.h"

#include <iconv.h>

#include <array>
#include <cstdint>

namespace {

class Iconv
{
public:
    Iconv(const std::string& to, const std::string& from) : m_iconv(iconv_open(to.c_str(), from.c_str())) {}
    Iconv(const Iconv&) = delete;
    Iconv& operator=(const Iconv&) = delete;
    ~Iconv()
    {
        if (isOpen())
            iconv_close(m_iconv);
    }

    /// All of `bytes`, or nothing.
    std::string convert(std::string_view bytes) const
    {
        std::array<char, 16> out{};
        std::string in(bytes);
        char* from = in.data();
        std::size_t left = in.size();
        char* to = out.data();
        std::size_t room = out.size();
        if (!isOpen())
            return {};
        iconv(m_iconv, nullptr, nullptr, nullptr, nullptr);
        if (iconv(m_iconv, &from, &left, &to, &room) != 0 || left != 0)
            return {};
        return {out.data(), out.size() - room};
    }

private:
    bool isOpen() const { return reinterpret_cast<std::intptr_t>(m_iconv) != -1; }

    iconv_t m_iconv;
};

} // namespace

class CodePageConverter::Impl
{
public:
    explicit Impl(const std::string& name) : toText("UTF-16LE", name), toBytes(name, "UTF-16LE") {}

    Iconv toText;
    Iconv toBytes;
};

CodePageConverter::CodePageConverter(unsigned number) : m_impl(std::make_unique<Impl>("CP" + std::to_string(number))) {}

CodePageConverter::~CodePageConverter() = default;

char16_t CodePageConverter::characterOf(std::string_view bytes) const
{
    const std::string unit = m_impl->toText.convert(bytes);
    if (unit.size() != sizeof(char16_t))
        return 0;
    return static_cast<char16_t>(static_cast<unsigned char>(unit[0]) | static_cast<unsigned char>(unit[1]) << 8);
}

std::string CodePageConverter::bytesOf(char16_t character) const
{
    const std::array unit{static_cast<char>(character & 0xFF), static_cast<char>(character >> 8)};
    return m_impl->toBytes.convert({unit.data(), unit.size()});
}
