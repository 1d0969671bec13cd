#include "platform/CodePage.h"

#include <algorithm>

namespace {

// 0x80 to 0x9F of Windows-1252. The five values without a character of their own keep their control codes, as the
// system's own conversion does.
constexpr std::array<char16_t, 32> upperControls{0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                 0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                 0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

} // namespace

CodePage::CodePage()
{
    for (std::size_t value = 0; value < m_characters.size(); ++value)
        m_characters[value] = static_cast<char16_t>(value);
    std::copy(upperControls.begin(), upperControls.end(), m_characters.begin() + 0x80);
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
    const auto found = std::find(m_characters.begin() + 0x80, m_characters.begin() + 0xA0, character);
    return found == m_characters.begin() + 0xA0 ? -1 : static_cast<int>(found - m_characters.begin());
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
