#include "platform/system/CodePage.h"

#include "platform/system/SystemCodePage.h"

#include <algorithm>

using namespace Qt::StringLiterals;

CodePage::CodePage()
{
    if (!use(systemCodePage()))
        use(usual);
}

bool CodePage::use(std::string_view name)
{
    const std::shared_ptr<const CodePageMap> map = CodePageMap::named(name);
    if (map)
        m_map = map;
    return map != nullptr;
}

QString CodePage::toText(std::string_view bytes) const
{
    if (m_map->isDoubleByte())
        return QString::fromStdU16String(m_map->toText(bytes));
    QString text(static_cast<qsizetype>(bytes.size()), Qt::Uninitialized);
    std::transform(bytes.begin(), bytes.end(), text.begin(), [&characters = m_map->characters()](char byte) {
        return QChar(characters[static_cast<unsigned char>(byte)]);
    });
    return text;
}

std::string CodePage::toBytes(QStringView text) const
{
    return m_map->toBytes({text.utf16(), static_cast<std::size_t>(text.size())});
}

QString CodePage::firstForeign(QStringView text) const
{
    for (qsizetype at = 0; at < text.size(); ++at) {
        if (!m_map->has(text[at].unicode()))
            return text.sliced(at, at + 1 < text.size() && text[at].isHighSurrogate() ? 2 : 1).toString();
    }
    return {};
}

QString CodePage::sendFault(QStringView text) const
{
    const QString foreign = firstForeign(text);
    return foreign.isEmpty() ? QString() : u"The character '%1' cannot be sent to the host!"_s.arg(foreign);
}
