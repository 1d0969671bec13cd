// What the C++ layer of qrvrc_plugin.hpp stands on: errors, values of the client, texts.
#ifndef QRVRC_VALUES_HPP
#define QRVRC_VALUES_HPP

#include "qrvrc_plugin.h"

#include <cstddef>
#include <cstdint>
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

// Every library has its own of everything here, also where it is built with all names visible: the loader would let
// libraries share what stands in inline functions and templates.
#if defined(_WIN32)
#define QRVRC_LOCAL
#else
#define QRVRC_LOCAL __attribute__((visibility("hidden")))
#endif

namespace qrvrc QRVRC_LOCAL {

/// A run-time error with a number of its own. Other exceptions reach the client as number 51 with their what().
class Error : public std::exception
{
public:
    Error(std::int32_t number, std::string description) : m_number(number), m_description(std::move(description)) {}

    std::int32_t number() const noexcept { return m_number; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    std::int32_t m_number;
    std::string m_description;
};

/// Names and values of one permission record, in the tracker's order.
using Privileges = std::vector<std::pair<std::string, std::string>>;

namespace detail {

inline const QrvrcHost*& attachedHost()
{
    static const QrvrcHost* host = nullptr;
    return host;
}

inline bool isSameName(std::string_view left, std::string_view right)
{
    const auto lower = [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; };
    if (left.size() != right.size())
        return false;
    for (std::size_t index = 0; index < left.size(); ++index) {
        if (lower(left[index]) != lower(right[index]))
            return false;
    }
    return true;
}

/// Runs what may throw for the client, which expects a number.
template <typename Body>
std::int32_t atBorder(Body&& body) noexcept
{
    const QrvrcHost* host = attachedHost();
    const auto say = [host](const char* text) {
        if (host)
            host->set_error(host, text, std::char_traits<char>::length(text));
    };
    try {
        body();
        return 0;
    } catch (const Error& error) {
        say(error.what());
        return error.number() != 0 ? error.number() : QRVRC_ERROR_INTERNAL;
    } catch (const std::bad_alloc&) {
        return QRVRC_ERROR_OUT_OF_MEMORY;
    } catch (const std::exception& error) {
        say(error.what());
        return QRVRC_ERROR_INTERNAL;
    } catch (...) {
        say("an exception of an unknown type");
        return QRVRC_ERROR_INTERNAL;
    }
}

/// Passes an error number of the client on.
inline void demand(std::int32_t fault, const char* what)
{
    if (fault != 0)
        throw Error(fault, what);
}

/// Reads and writes one value of the client.
class Value
{
public:
    explicit Value(QrvrcValue* value) : m_value(value) {}

    bool toBoolean() const
    {
        std::int32_t number = 0;
        demand(host().get_boolean(m_value, &number), "a Boolean was expected");
        return number != 0;
    }
    std::int32_t toInt32() const
    {
        std::int32_t number = 0;
        demand(host().get_int32(m_value, &number), "a number was expected");
        return number;
    }
    std::string toString() const
    {
        const char* data = nullptr;
        std::size_t size = 0;
        demand(host().get_string(m_value, &data, &size), "a text was expected");
        return std::string(data, size);
    }
    std::vector<std::string> toStrings() const
    {
        std::size_t count = 0;
        demand(host().list_size(m_value, &count), "a list was expected");
        std::vector<std::string> texts;
        for (std::size_t index = 0; index < count; ++index)
            texts.push_back(Value(host().list_at(m_value, index)).toString());
        return texts;
    }
    Privileges toPrivileges() const
    {
        Privileges privileges;
        for (const std::string& text : toStrings()) {
            const std::size_t equals = text.find('=');
            privileges.emplace_back(text.substr(0, equals),
                                    equals == std::string::npos ? std::string() : text.substr(equals + 1));
        }
        return privileges;
    }

    void set(bool boolean) { demand(host().set_boolean(m_value, boolean ? -1 : 0), "the value cannot be set"); }
    void set(const std::string& text)
    {
        demand(host().set_string(m_value, text.data(), text.size()), "the value cannot be set");
    }
    void set(const std::vector<std::string>& texts)
    {
        demand(host().list_clear(m_value), "the list cannot be set");
        for (const std::string& text : texts)
            Value(host().list_append(m_value)).set(text);
    }
    void set(QrvrcObject* object)
    {
        demand(host().set_object(attachedHost(), m_value, object), "the object cannot be handed over");
    }

private:
    static const QrvrcHost& host() { return *attachedHost(); }

    QrvrcValue* m_value;
};

} // namespace detail

/// The client's state folder, as a path of the file system.
inline std::string applicationFolder()
{
    const QrvrcHost* host = detail::attachedHost();
    return host->application_folder(host);
}

namespace detail {

/// The characters of the 256 byte values in the host's code page; in Windows-1252 where the client is too old to tell.
inline const std::uint16_t* characters()
{
    struct Western
    {
        std::uint16_t units[256];

        Western()
        {
            constexpr std::uint16_t high[32] = {
                0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
                0x2039, 0x0152, 0x8D,   0x017D, 0x8F,   0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
                0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178,
            };
            for (unsigned value = 0; value < 256; ++value)
                units[value] = value >= 0x80 && value < 0xA0 ? high[value - 0x80] : static_cast<std::uint16_t>(value);
        }
    };
    static const Western western;
    const QrvrcHost* host = attachedHost();
    return host && host->size > offsetof(QrvrcHost, characters) ? host->characters(host) : western.units;
}

} // namespace detail

/// The name of the host's code page, such as "windows-1251".
inline std::string codePage()
{
    const QrvrcHost* host = detail::attachedHost();
    return host->code_page(host);
}

/// UTF-8 for a text in the host's code page; values without a character become control characters.
inline std::string toUtf8(std::string_view bytes)
{
    const std::uint16_t* characters = detail::characters();
    std::string text;
    for (const char c : bytes) {
        const unsigned character = characters[static_cast<unsigned char>(c)];
        if (character < 0x80) {
            text += static_cast<char>(character);
        } else if (character < 0x800) {
            text += static_cast<char>(0xC0 | (character >> 6));
            text += static_cast<char>(0x80 | (character & 0x3F));
        } else {
            text += static_cast<char>(0xE0 | (character >> 12));
            text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
            text += static_cast<char>(0x80 | (character & 0x3F));
        }
    }
    return text;
}

} // namespace QRVRC_LOCAL

#endif
