#include "diagnostics/help/HelpPageTexts.h"

#include "base/RuntimeError.h"
#include "diagnostics/help/HelpBook.h"
#include "diagnostics/help/HelpBounds.h"
#include "diagnostics/help/HelpBrowser.h"

#include <QTextDocumentFragment>

#include <algorithm>

HelpPageTexts::HelpPageTexts(const HelpBook& book, const Bounds& bounds)
{
    for (const HelpContentsEntry& entry : book.contents()) {
        QString& text = m_texts[bookUrl(fromBook(entry.page)).path()];
        if (!text.isNull())
            continue;
        try {
            const std::string content = book.page(entry.page).value_or(std::string());
            text = canBeLaidOut(content, bounds) ? QTextDocumentFragment::fromHtml(fromBook(content)).toPlainText()
                                                 : fromBook(pageAsText(content, bounds.helpPageBytes));
        } catch (const RuntimeError&) {
            text = QLatin1String(""); // its place in the contents says what is wrong with it
        }
    }
}

bool HelpPageTexts::holdAll(const QString& page, const QStringList& words) const
{
    const QString text = m_texts.value(bookUrl(page).path());
    return std::all_of(words.begin(), words.end(),
                       [&text](const QString& word) { return text.contains(word, Qt::CaseInsensitive); });
}
