#include "practice/links/PendingAnswers.h"

#include <algorithm>

namespace practice {

int PendingAnswers::held(const QByteArray& request) const
{
    return static_cast<int>(std::count_if(m_line.cbegin(), m_line.cend(), [&](const PendingAnswer& pending) {
        return pending.held && pending.request == request;
    }));
}

void PendingAnswers::add(const PendingAnswer& pending)
{
    m_line += pending;
    m_line.last().held = m_holding.contains(pending.request);
}

bool PendingAnswers::release(const QByteArray& request)
{
    const auto oldest = std::find_if(m_line.begin(), m_line.end(), [&](const PendingAnswer& pending) {
        return pending.held && pending.request == request;
    });
    if (oldest == m_line.end())
        return false;
    oldest->held = false;
    return true;
}

void PendingAnswers::releaseAll()
{
    m_holding.clear();
    for (PendingAnswer& pending : m_line)
        pending.held = false;
}

std::optional<PendingAnswer> PendingAnswers::takeDue()
{
    QSet<const TrackerSession*> waiting;
    for (qsizetype i = 0; i < m_line.size(); ++i) {
        const PendingAnswer& pending = m_line[i];
        if (pending.held)
            waiting += pending.session;
        else if (!waiting.contains(pending.session))
            return m_line.takeAt(i);
    }
    return std::nullopt;
}

QList<PendingAnswer> PendingAnswers::takeAllOf(const TrackerSession* session)
{
    QList<PendingAnswer> all;
    m_line.removeIf([&](const PendingAnswer& pending) {
        if (pending.session != session)
            return false;
        all += pending;
        return true;
    });
    return all;
}

} // namespace practice
