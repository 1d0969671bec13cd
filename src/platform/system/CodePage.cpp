#include "platform/system/CodePage.h"

#include "platform/system/CodePageTables.h"
#include "platform/system/SystemCodePage.h"

#include <algorithm>

using namespace Qt::StringLiterals;

CodePage::CodePage()
{
    for (std::size_t value = 0; value < 0x80; ++value)
        m_characters[value] = static_cast<char16_t>(value);
    if (!use(systemCodePage()))
        use(usual);
}

bool CodePage::use(std::string_view name)
{
    const auto table = std::find_if(codePageTables.begin(), codePageTables.end(),
                                    [name](const CodePageTable& known) { return known.name == name; });
    if (table == codePageTables.end())
        return false;
    m_name = name;
    std::copy(table->upper.begin(), table->upper.end(), m_characters.begin() + 0x80);
    return true;
}

QString CodePage::toText(std::string_view bytes) const
{
    QString text(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
    std::transform(bytes.begin(), bytes.end(), text.begin(),
                   [this](char byte) { return QChar(m_characters[static_cast<unsigned char>(byte)]); });
    return text;
}

int CodePage::byteFor(char16_t character) const
{
    if (character < 0x100 && m_characters[character] == character)
        return character;
    const auto found = std::find(m_characters.begin() + 0x80, m_characters.end(), character);
    return found == m_characters.end() ? -1 : static_cast<int>(found - m_characters.begin());
}

std::string CodePage::toBytes(QStringView text) const
{
    std::string bytes;
    bytes.reserve(static_cast<std::size_t>(text.size()));
    for (const QChar character : text) {
        const int value = byteFor(character.unicode());
        if (!character.isLowSurrogate() || value >= 0)
            bytes += value < 0 ? '?' : static_cast<char>(value);
    }
    return bytes;
}

QString CodePage::firstForeign(QStringView text) const
{
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (byteFor(text[at].unicode()) < 0)
            return text.sliced(at, at + 1 < text.size() && text[at].isHighSurrogate() ? 2 : 1).toString();
    }
    return {};
}

QString CodePage::sendFault(QStringView text) const
{
    const QString foreign = firstForeign(text);
    return foreign.isEmpty() ? QString() : u"The character '%1' cannot be sent to the host!"_s.arg(foreign);
}
