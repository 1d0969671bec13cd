#include "profiles/viewer/TextPart.h"

#include "profiles/viewer/LinedText.h"

using namespace Qt::StringLiterals;

namespace {

const QString plainText = u"text/plain"_s;
constexpr std::size_t maxOwnBytes = 1 << 20;

} // namespace

TextPart::TextPart(const std::shared_ptr<const LinedText>& text, const TextRange& range, const CodePage& codePage)
    : m_range(range),
      m_codePage(codePage)
{
    if (range.size() > maxOwnBytes) {
        m_bytes = {text, &text->bytes()}; // the text's share, seen as its bytes
    } else {
        m_bytes = std::make_shared<const std::string>(text->bytes(), range.begin, range.size());
        m_range = {0, range.size()};
    }
}

QStringList TextPart::formats() const
{
    return {plainText};
}

bool TextPart::hasFormat(const QString& type) const
{
    return type == plainText;
}

QVariant TextPart::retrieveData(const QString& type, QMetaType) const
{
    if (type != plainText)
        return {};
    return m_codePage.toText(std::string_view(*m_bytes).substr(m_range.begin, m_range.size()));
}
