#pragma once

#include "base/Bounds.h"

#include <QTextBrowser>
#include <QUrl>

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

/// Books of the time are written in the code page of their makers; names and titles are ASCII or Latin in practice.
QString fromBook(const std::string& text);

/// The address of a page or picture inside the book; what stands behind "#" in `name` is the place in it.
QUrl bookUrl(const QString& name);

/// Whether an address names something inside the book.
bool isInBook(const QUrl& address);

/// A page of our own, for what the book cannot show.
QString messagePage(const QString& title, const QString& explanation);

/// The page of the help viewer. It takes everything from the book and knows no other source. A page that is too much
/// for the layout, by itself or by its pictures, is shown as text.
class HelpBrowser : public QTextBrowser
{
    Q_OBJECT

public:
    /// What the book holds under a name, or nothing; may throw RuntimeError.
    using Source = std::function<std::optional<std::string>(const std::string& name)>;

    explicit HelpBrowser(Source source, const Bounds& bounds = {});

    QVariant loadResource(int type, const QUrl& name) override;
    /// Marks the places of the page in which one of `words` stands, the first of very many, until the page changes.
    void mark(const QStringList& words);

private:
    QString laidOut(const QUrl& name, const std::string& page);
    QImage picture(const QByteArray& bytes);

    Source m_source;
    const Bounds m_bounds;
    QUrl m_page;                  ///< the one that was asked for last
    QUrl m_asText;                ///< the page whose pictures are too large
    std::int64_t m_points = 0;    ///< of the pictures of the page so far
    std::size_t m_styleRules = 0; ///< of the style sheets that the page has taken in so far
};
