#include "profiles/viewer/TextFinder.h"

#include "platform/system/CodePage.h"
#include "profiles/viewer/LinedText.h"

#include <QElapsedTimer>

#include <algorithm>
#include <utility>

namespace {

constexpr qint64 sliceMilliseconds = 4;
constexpr std::size_t stretchBytes = 65536;

TextSearch::Folding foldingOf(const CodePage& codePage)
{
    TextSearch::Folding folding;
    for (std::size_t byte = 0; byte < folding.size(); ++byte) {
        const char single = static_cast<char>(byte);
        const QString folded = codePage.toText({&single, 1}).toCaseFolded();
        const bool isKnown = folded.size() == 1 && codePage.firstForeign(folded).isEmpty();
        folding[byte] = static_cast<unsigned char>(isKnown ? codePage.toBytes(folded)[0] : single);
    }
    return folding;
}

} // namespace

TextFinder::TextFinder(const CodePage& codePage, QObject* parent) : QObject(parent), m_folding(foldingOf(codePage))
{
    m_next.setSingleShot(true);
    m_next.setInterval(0);
    connect(&m_next, &QTimer::timeout, this, &TextFinder::goOn);
}

void TextFinder::start(std::shared_ptr<const LinedText> text, std::string_view wanted, std::size_t from, Way way)
{
    m_text = std::move(text);
    m_search.emplace(wanted, m_folding);
    m_way = way;
    m_origin = std::min(from, m_text->size());
    m_at = m_origin;
    m_wrapped = false;
    goOn();
}

void TextFinder::stop()
{
    m_next.stop();
    m_search.reset();
    m_text.reset();
}

void TextFinder::goOn()
{
    QElapsedTimer clock;
    clock.start();
    while (!searchStretch()) {
        if (clock.elapsed() >= sliceMilliseconds) {
            m_next.start();
            return;
        }
    }
}

/// @return whether the search is over
bool TextFinder::searchStretch()
{
    const std::string_view text = m_text->bytes();
    const bool forward = m_way == Way::Forward;
    const std::size_t limit = forward ? (m_wrapped ? m_origin : text.size()) : (m_wrapped ? m_origin : 0);
    const std::size_t next =
        forward ? std::min(limit, m_at + stretchBytes) : std::max(limit, m_at - std::min(m_at, stretchBytes));
    const std::optional<std::size_t> hit =
        forward ? m_search->first(text, m_at, next) : m_search->last(text, next, m_at);
    m_at = next;
    if (hit) {
        const std::size_t size = m_search->size();
        const bool wrapped = m_wrapped;
        stop();
        Q_EMIT found(*hit, size, wrapped);
        return true;
    }
    if (m_at != limit)
        return false;
    if (std::exchange(m_wrapped, true)) {
        stop();
        Q_EMIT notFound();
        return true;
    }
    m_at = forward ? 0 : text.size();
    return false;
}
