#pragma once

#include <QEventLoop>
#include <QObject>
#include <QTimer>

#include <chrono>
#include <optional>

/// How a wait ended.
enum class WaitEnd {
    Done,    ///< what was waited for has happened
    Broken,  ///< it cannot happen any more, or the program quits
    TimedOut ///< nothing was heard for the wait's limit
};

/// The one nested event loop of the program. It sleeps until something happens, and it always ends: on one of the
/// named endings, on silence, and when the program quits. While it runs, all other events are handled, so its caller
/// reads shared state afresh afterwards and keeps a QPointer on everything that might be gone.
class EventWait
{
public:
    /// @param limit  how long silence may last; it counts anew after every signal given to `restartsLimitOn`
    explicit EventWait(std::chrono::milliseconds limit);
    /// A wait that silence does not end: for what the user decides.
    EventWait();
    EventWait(const EventWait&) = delete;
    EventWait& operator=(const EventWait&) = delete;
    ~EventWait() = default;

    /// Ends the wait as `how` when `sender` emits `signal`; the first ending counts.
    template <typename Sender, typename Signal>
    EventWait& endsOn(const Sender* sender, Signal signal, WaitEnd how)
    {
        QObject::connect(sender, signal, &m_loop, [this, how] { end(how); });
        return *this;
    }

    template <typename Sender, typename Signal>
    EventWait& restartsLimitOn(const Sender* sender, Signal signal)
    {
        QObject::connect(sender, signal, &m_silence, qOverload<>(&QTimer::start));
        return *this;
    }

    /// From this signal on the limit no longer counts: the answer is there and being handled.
    template <typename Sender, typename Signal>
    EventWait& stopsLimitOn(const Sender* sender, Signal signal)
    {
        QObject::connect(sender, signal, &m_silence, &QTimer::stop);
        return *this;
    }

    [[nodiscard]] WaitEnd run();

    /// How many waits run now, one inside the other.
    static int running();

private:
    void end(WaitEnd how);

    QEventLoop m_loop;
    QTimer m_silence;
    std::optional<WaitEnd> m_end;
    bool m_isLimited = true;
};

/// Lets events run for `pause`; ends early when the program quits.
/// @return whether the program goes on
bool pauseFor(std::chrono::milliseconds pause);

/// Lets events run until `sender` emits `signal`, however long that takes; ends early when `sender` goes or the program
/// quits.
/// @return whether the signal came
template <typename Sender, typename Signal>
[[nodiscard]] bool waitForSignal(const Sender* sender, Signal signal)
{
    return EventWait()
               .endsOn(sender, signal, WaitEnd::Done)
               .endsOn(sender, &QObject::destroyed, WaitEnd::Broken)
               .run() == WaitEnd::Done;
}
