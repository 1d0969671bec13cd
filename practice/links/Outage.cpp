#include "practice/links/Outage.h"

#include "practice/links/SupportSide.h"
#include "practice/links/Tracker.h"

namespace practice {

Outage::Outage(Tracker& tracker, SupportSide& support, Span every, Span lasting, quint32 seed, QObject* parent)
    : QObject(parent),
      m_tracker(tracker),
      m_support(support),
      m_every(every),
      m_lasting(lasting),
      m_chance(seed)
{
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &Outage::turn);
    m_next.start(around(m_every));
}

void Outage::turn()
{
    if (m_isThere)
        goAway();
    else if (!comeBack()) { // somebody else has taken the port
        m_next.start(m_lasting);
        return;
    }
    m_isThere = !m_isThere;
    m_next.start(around(m_isThere ? m_every : m_lasting));
    Q_EMIT turned(m_isThere);
}

void Outage::goAway()
{
    m_tracker.stopListening();
    m_support.stopListening();
    if (m_chance() % 2 == 0)
        m_tracker.closeLinks();
    else
        m_tracker.resetLinks();
    m_support.closeLinks();
}

bool Outage::comeBack()
{
    return m_tracker.listen(m_tracker.port()) && m_support.listen(m_support.port());
}

Outage::Span Outage::around(Span span)
{
    return std::uniform_int_distribution<Span::rep>(span.count() / 2, span.count() * 3 / 2)(m_chance) * Span(1);
}

} // namespace practice
