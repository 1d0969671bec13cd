#pragma once

#include <QByteArray>

#include <chrono>
#include <optional>

namespace practice {

/// One way in which a web page misbehaves. The default is none at all.
struct PageFault
{
    enum class Kind {
        None,
        NotFound,  ///< answered with 404
        ErrorPage, ///< a page that says "Page not found" with the status 200
        Status,    ///< answered with the status `number`
        CutOff,    ///< the first `number` bytes of the body, then the connection closes
        Slow,      ///< the body in pieces of `number` bytes, `pause` apart
        Never,     ///< the head of the answer and nothing more
        NoLength,  ///< the whole body, whose length is not told
        Redirect,  ///< a redirect to a page that is not there
        Loop,      ///< a redirect to itself
    };

    Kind kind = Kind::None;
    int number = 0;
    std::chrono::milliseconds pause{20};

    /// Reads "notfound", "errorpage", "status:N", "cutoff:N", "slow:N[:MS]", "never", "nolength", "redirect", "loop",
    /// "none"; nothing for any other text.
    static std::optional<PageFault> parse(const QByteArray& text);
    /// The forms that `parse` reads, joined by ", ".
    static QByteArray names();
};

} // namespace practice
