#pragma once

#include "platform/system/CodePageMap.h"

#include <QString>

#include <memory>
#include <string>
#include <string_view>

/// The one place where bytes of the host become text for a widget, and a widget's text becomes bytes for the host.
/// Windows-1252 (on Windows the system's own) unless told otherwise. Bytes survive the way there and back.
class CodePage
{
public:
    static constexpr std::string_view usual = "windows-1252";

    CodePage();

    /// Changes to the code page of that name, one of `codePageTables` or `doubleByteCodePages`; one that is not to be
    /// had changes nothing.
    /// @return whether there is such a code page
    bool use(std::string_view name);

    /// The name of the one in use.
    const std::string& name() const { return m_map->name(); }
    const CodePageMap& map() const { return *m_map; }

    QString toText(std::string_view bytes) const;
    /// Characters that the code page lacks become "?"; `firstForeign` tells beforehand.
    std::string toBytes(QStringView text) const;
    /// The first character of `text` that the host could not be sent, or an empty text.
    QString firstForeign(QStringView text) const;
    /// Why `text` cannot be sent to the host, as it is told to the user; empty when it can.
    QString sendFault(QStringView text) const;

private:
    std::shared_ptr<const CodePageMap> m_map;
};
