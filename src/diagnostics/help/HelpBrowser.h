#pragma once

#include <QTextBrowser>
#include <QUrl>

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

/// The page of the help viewer. It takes everything from the book and knows no other source.
class HelpBrowser : public QTextBrowser
{
    Q_OBJECT

public:
    /// What the book holds under a name, or nothing; may throw RuntimeError.
    using Source = std::function<std::optional<std::string>(const std::string& name)>;

    explicit HelpBrowser(Source source);

    QVariant loadResource(int type, const QUrl& name) override;
    /// Marks every place of the page in which one of `words` stands, until the page changes.
    void mark(const QStringList& words);

private:
    Source m_source;
};
