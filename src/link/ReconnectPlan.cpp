#include "link/ReconnectPlan.h"

#include <algorithm>

using namespace std::chrono_literals;

namespace {

constexpr double mostJitter = 0.1; // of a wait

} // namespace

std::vector<ReconnectPlan::Wait> ReconnectPlan::usualWaits()
{
    return {5s, 10s, 20s, 40s, 60s};
}

void ReconnectPlan::loggedIn()
{
    m_state = State::Armed;
    m_attempt = 0;
}

void ReconnectPlan::lost(double chance)
{
    if (m_state != State::Armed && m_state != State::Trying)
        return;
    m_state = State::Waiting;
    const Wait usual = m_waits[std::min(static_cast<std::size_t>(m_attempt), m_waits.size() - 1)];
    m_wait = usual + std::chrono::duration_cast<Wait>(usual * (mostJitter * std::clamp(chance, 0.0, 1.0)));
    ++m_attempt;
}

void ReconnectPlan::due()
{
    if (m_state == State::Waiting)
        m_state = State::Trying;
}

void ReconnectPlan::giveUp()
{
    m_state = State::Idle;
    m_attempt = 0;
}
