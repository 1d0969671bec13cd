#pragma once

#include <QString>

#include <array>
#include <string>
#include <string_view>

/// The one place where bytes of the host become text for a widget, and a widget's text becomes bytes for the host.
/// Single-byte, Windows-1252 (on Windows the system's own, if that is a single-byte one) unless told otherwise: all 256
/// values have a character of their own, so bytes survive the way there and back.
class CodePage
{
public:
    static constexpr std::string_view usual = "windows-1252";

    CodePage();

    /// Changes to the code page of that name, one of `codePageTables`; any other name changes nothing.
    /// @return whether there is such a code page
    bool use(std::string_view name);

    /// The name of the one in use.
    const std::string& name() const { return m_name; }

    QString toText(std::string_view bytes) const;
    /// Characters that the code page lacks become "?"; `firstForeign` tells beforehand.
    std::string toBytes(QStringView text) const;
    /// The first character of `text` that the host could not be sent, or an empty text.
    QString firstForeign(QStringView text) const;
    /// Why `text` cannot be sent to the host, as it is told to the user; empty when it can.
    QString sendFault(QStringView text) const;

private:
    /// The byte for `character`, or -1.
    int byteFor(char16_t character) const;

    std::string m_name;
    std::array<char16_t, 256> m_characters;
};
