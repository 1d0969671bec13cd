#include "profiles/viewer/TextExpander.h"

#include "base/RuntimeError.h"
#include "link/PackedReply.h"
#include "platform/system/Background.h"
#include "store/clsMFD.h"

#include <utility>

TextExpander::TextExpander(QObject* parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &TextExpander::takeResult);
}

TextExpander::~TextExpander() = default;

void TextExpander::expand(const PackedReply& packed, const ReplyOwner& owner)
{
    stop();
    if (packed.length <= maxDirectBytes) {
        Q_EMIT ready(std::make_shared<const LinedText>(clsMFD::DecompressString(packed.data, packed.length)));
        return;
    }
    m_watcher.setFuture(inBackground([packed, owner]() -> Text {
        return std::make_shared<const LinedText>(clsMFD::DecompressString(packed.data, packed.length));
    }));
    m_isExpanding = true;
    Q_EMIT started();
}

void TextExpander::stop()
{
    m_isExpanding = false;
    m_watcher.setFuture({});
}

void TextExpander::takeResult()
{
    if (!std::exchange(m_isExpanding, false))
        return; // the end of no text
    try {
        const Text text = m_watcher.result();
        m_watcher.setFuture({}); // it keeps a share of the text otherwise
        Q_EMIT ready(text);
    } catch (const RuntimeError& error) {
        Q_EMIT failed(error);
    } catch (const std::bad_alloc&) {
        Q_EMIT failed(RuntimeError(ErrorNumber::OutOfMemory, "compressed text"));
    }
}
