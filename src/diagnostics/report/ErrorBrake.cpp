#include "diagnostics/report/ErrorBrake.h"

#include <utility>

std::optional<std::size_t> ErrorBrake::admitError(const ErrorKey& error, Time now)
{
    const auto isOver = [&](const Equal& equal) { return now - equal.admitted >= m_bounds.equalErrorsPeriod; };
    const auto found = m_errors.find(error);
    if (found != m_errors.end()) {
        Equal& equal = found->second;
        if (!isOver(equal)) {
            ++equal.heldBack;
            return {};
        }
        equal.admitted = now;
        return std::exchange(equal.heldBack, 0);
    }
    if (m_errors.size() >= m_bounds.differentErrors)
        std::erase_if(m_errors, [&](const auto& entry) { return isOver(entry.second); });
    if (m_errors.size() >= m_bounds.differentErrors)
        return {};
    m_errors.emplace(error, Equal{now});
    return 0;
}

std::optional<std::size_t> ErrorBrake::admitReport(Time now)
{
    if (m_reports.count(now) >= static_cast<std::size_t>(m_bounds.reportsPerMinute)) {
        ++m_reportsHeldBack;
        return {};
    }
    m_reports.add(now);
    return std::exchange(m_reportsHeldBack, 0);
}
