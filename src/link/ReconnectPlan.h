#pragma once

#include <chrono>
#include <vector>

/// When a connection that was lost is tried again. Knows no clock and no socket: it is told what happens, and says what
/// is to follow.
class ReconnectPlan
{
public:
    enum class State {
        Idle,    ///< nothing is tried: nobody was logged in, or it was given up
        Armed,   ///< somebody is logged in; a loss begins the tries
        Waiting, ///< for the next try
        Trying,
    };
    using Wait = std::chrono::milliseconds;

    /// @param waits  before the first try, the second and so on; the last one before all others. Not empty
    explicit ReconnectPlan(std::vector<Wait> waits = usualWaits()) : m_waits(std::move(waits)) {}

    State state() const { return m_state; }
    bool isUnderWay() const { return m_state == State::Waiting || m_state == State::Trying; }
    /// Number of the try that is waited for or under way, from 1 on; 0 while there is none.
    int attempt() const { return m_attempt; }
    /// How long the next try is waited for; while waiting.
    Wait wait() const { return m_wait; }

    void loggedIn();
    /// The connection, or the try, came to nothing.
    /// @param chance  from 0 to 1: where the wait lies between its usual length and a tenth more, so that clients which
    ///                lost their host together do not come back together
    void lost(double chance);
    /// The wait is over, or the user does not want to wait.
    void due();
    void giveUp();

    static std::vector<Wait> usualWaits();

private:
    std::vector<Wait> m_waits;
    State m_state = State::Idle;
    int m_attempt = 0;
    Wait m_wait{0};
};
