#pragma once

#include <chrono>
#include <cstddef>
#include <deque>

/// Counts how often something has happened of late.
class RateLimit
{
public:
    using Clock = std::chrono::steady_clock;

    explicit RateLimit(Clock::duration period) : m_period(period) {}

    void add(Clock::time_point now) { m_times.push_back(now); }
    /// How often within the period that ends now.
    std::size_t count(Clock::time_point now)
    {
        while (!m_times.empty() && now - m_times.front() >= m_period)
            m_times.pop_front();
        return m_times.size();
    }
    void reset() { m_times.clear(); }

private:
    Clock::duration m_period;
    std::deque<Clock::time_point> m_times;
};
