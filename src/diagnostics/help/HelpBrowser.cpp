#include "diagnostics/help/HelpBrowser.h"

#include "base/RuntimeError.h"
#include "diagnostics/help/HelpBounds.h"

#include <QBuffer>
#include <QImageReader>
#include <QTextCursor>
#include <QTimer>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

QString bookScheme()
{
    return u"book"_s;
}

} // namespace

QString fromBook(const std::string& text)
{
    const QString utf8 = QString::fromUtf8(text.data(), qsizetype(text.size()));
    return utf8.contains(QChar::ReplacementCharacter) ? QString::fromLatin1(text.data(), qsizetype(text.size())) : utf8;
}

QUrl bookUrl(const QString& name)
{
    QString path = name.section(u'#', 0, 0).replace(u'\\', u'/');
    if (!path.startsWith(u'/'))
        path.prepend(u'/');
    QUrl url;
    url.setScheme(bookScheme());
    url.setPath(path);
    if (name.contains(u'#'))
        url.setFragment(name.section(u'#', 1));
    return url;
}

QString messagePage(const QString& title, const QString& explanation)
{
    return u"<html><head><title>%1</title></head><body><h2>%1</h2><p>%2</p></body></html>"_s.arg(
        title.toHtmlEscaped(), explanation.toHtmlEscaped());
}

bool isInBook(const QUrl& address)
{
    return address.scheme() == bookScheme();
}

HelpBrowser::HelpBrowser(Source source, const Bounds& bounds) : m_source(std::move(source)), m_bounds(bounds)
{
    setOpenLinks(false);
}

QVariant HelpBrowser::loadResource(int type, const QUrl& name)
{
    if (!isInBook(name))
        return {};
    const bool isPage = type == QTextDocument::HtmlResource || type == QTextDocument::MarkdownResource;
    try {
        const std::string wanted = name.path(QUrl::FullyDecoded).toStdString();
        if (const std::optional<std::string> found = m_source(wanted)) {
            if (isPage)
                return laidOut(name, *found);
            const QByteArray bytes(found->data(), qsizetype(found->size()));
            if (type == QTextDocument::ImageResource)
                return picture(bytes);
            m_styleRules += styleRules(*found);
            return m_styleRules <= m_bounds.helpStyleRules ? bytes : QByteArray();
        }
        if (isPage)
            return messagePage(tr("This page is missing"),
                               tr("The help file has no page \"%1\".").arg(name.path().mid(1)));
    } catch (const RuntimeError& error) {
        if (isPage)
            return messagePage(tr("This page cannot be read"), fromBook(error.description()));
    }
    return {};
}

/// The page as it may be laid out.
QString HelpBrowser::laidOut(const QUrl& name, const std::string& page)
{
    m_points = 0;
    m_styleRules = 0;
    m_page = name;
    if (name != std::exchange(m_asText, {}) && canBeLaidOut(page, m_bounds))
        return fromBook(page);
    const QString text = fromBook(pageAsText(page, m_bounds.helpTextBytes));
    const QString note = page.size() > m_bounds.helpTextBytes
                             ? tr("This page is too large to be laid out. This is the beginning of its text.")
                             : tr("This page is too large to be laid out. This is its text.");
    return u"<html><body><p><i>%1</i></p><pre style=\"white-space: pre-wrap\">%2</pre></body></html>"_s.arg(
        note, text.toHtmlEscaped());
}

/// What the head of a picture says of its size is judged before anything is decoded.
QImage HelpBrowser::picture(const QByteArray& bytes)
{
    static constexpr std::array formats{"gif", "png", "jpeg", "jpg", "bmp"};
    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    const QSize size = reader.size();
    if (std::find(formats.begin(), formats.end(), reader.format()) == formats.end() || size.isEmpty())
        return {};
    const bool wasWithin = m_points <= m_bounds.helpPicturePoints;
    m_points += std::int64_t{size.width()} * size.height();
    if (m_points <= m_bounds.helpPicturePoints)
        return reader.read();
    if (wasWithin) // once; behind the layout, which is asking for pictures
        QTimer::singleShot(0, this, [this, page = m_page] {
            if (page != m_page)
                return;
            m_asText = page;
            reload();
        });
    return {};
}

void HelpBrowser::mark(const QStringList& words)
{
    QList<ExtraSelection> marks;
    const auto limit = static_cast<qsizetype>(m_bounds.helpMarks);
    for (const QString& word : words) {
        for (QTextCursor at = document()->find(word, 0); !at.isNull() && marks.size() < limit;
             at = document()->find(word, at)) {
            ExtraSelection marked;
            marked.cursor = at;
            marked.format.setBackground(QColor(0xFF, 0xE9, 0x8A));
            marks.append(marked);
        }
    }
    if (!marks.isEmpty()) {
        const auto first = std::min_element(marks.begin(), marks.end(), [](const auto& left, const auto& right) {
            return left.cursor.selectionStart() < right.cursor.selectionStart();
        });
        QTextCursor before = first->cursor;
        before.clearSelection();
        setTextCursor(before);
        ensureCursorVisible();
    }
    setExtraSelections(marks);
}
