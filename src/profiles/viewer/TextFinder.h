#pragma once

#include "profiles/viewer/TextSearch.h"

#include <QObject>
#include <QTimer>

#include <memory>
#include <optional>

class CodePage;
class LinedText;

/// Looks for a text in a large one without holding the program up: a few milliseconds at a time, from a place to the
/// end, then round to that place again. Letter case does not count.
class TextFinder : public QObject
{
    Q_OBJECT

public:
    enum class Way { Forward, Backward };

    TextFinder(const CodePage& codePage, QObject* parent);

    /// Begins anew. What is near is told before this returns.
    /// @param wanted  not empty
    /// @param from    Forward: the first place that counts; Backward: the first one that does not
    void start(std::shared_ptr<const LinedText> text, std::string_view wanted, std::size_t from, Way way);
    void stop();
    bool isSearching() const { return m_search.has_value(); }

Q_SIGNALS:
    /// @param wrapped  found beyond an end of the text
    void found(std::size_t at, std::size_t size, bool wrapped);
    void notFound();

private:
    void goOn();
    bool searchStretch();

    TextSearch::Folding m_folding;
    QTimer m_next;
    std::shared_ptr<const LinedText> m_text;
    std::optional<TextSearch> m_search;
    Way m_way = Way::Forward;
    std::size_t m_origin = 0;
    std::size_t m_at = 0; ///< where the next stretch begins, or for Backward ends
    bool m_wrapped = false;
};
