#pragma once

#include "base/Bounds.h"

#include <QHash>
#include <QStringList>

class HelpBook;

/// What stands on the pages of a help book, for a search in them.
class HelpPageTexts
{
public:
    /// Reads every page of the contents; one that is damaged has no text.
    explicit HelpPageTexts(const HelpBook& book, const Bounds& bounds = {});

    /// Whether all of `words` stand on the page, in any letter case; parts of words count.
    /// @param page  as in the contents
    bool holdAll(const QString& page, const QStringList& words) const;

private:
    QHash<QString, QString> m_texts; ///< from the page's name, without the place in it
};
