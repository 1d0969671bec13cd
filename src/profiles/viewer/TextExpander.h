#pragma once

#include "link/ReplyAssembler.h"
#include "profiles/viewer/LinedText.h"

#include <QFutureWatcher>

#include <memory>

class RuntimeError;
struct PackedReply;

/// Makes the packed text of a reply readable: expands it and finds its lines. A large text is expanded in another
/// thread, so that nobody waits for it; the newest text counts, an older one that is still under way is dropped.
class TextExpander : public QObject
{
    Q_OBJECT

public:
    /// Bytes of text up to which it is expanded at once.
    static constexpr std::int32_t maxDirectBytes = 1 << 20;

    explicit TextExpander(QObject* parent);
    ~TextExpander() override;

    /// Emits `ready` before it returns, or `started` when the text is large.
    /// @param owner  holds the packed text; a share in it is kept as long as it is needed
    /// @throws RuntimeError for a small text that cannot be expanded
    void expand(const PackedReply& packed, const ReplyOwner& owner);
    /// Drops what is under way.
    void stop();

Q_SIGNALS:
    void started();
    void ready(std::shared_ptr<const LinedText> text);
    /// A large text cannot be expanded.
    void failed(const RuntimeError& error);

private:
    using Text = std::shared_ptr<const LinedText>;

    void takeResult();

    QFutureWatcher<Text> m_watcher;
    bool m_isExpanding = false; ///< a text is under way in the other thread
};
