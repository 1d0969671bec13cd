#include "tour/Script.h"

#include <QCoreApplication>
#include <QTimer>

namespace tour {

namespace {

constexpr std::chrono::milliseconds lookEvery{20};

} // namespace

void Script::add(const QString& what, std::function<void()> act, std::function<bool()> until)
{
    m_steps.append({what, std::move(act), std::move(until)});
}

void Script::await(const QString& what, std::function<bool()> until)
{
    add(
        what, [] {}, std::move(until));
}

void Script::start()
{
    QTimer::singleShot(lookEvery, this, &Script::tick);
}

bool Script::isThrough() const
{
    if (m_failed)
        return false;
    const bool isAtLast = m_at + 1 == m_steps.size() && m_begun;
    return m_at == m_steps.size() || (isAtLast && m_steps.back().until());
}

QString Script::expectation() const
{
    return m_at < m_steps.size() ? m_steps[m_at].what : QString();
}

void Script::tick()
{
    if (m_failed || m_at == m_steps.size())
        return;
    // A timer of its own for each look, set before anything is done: an act that opens a modal box returns only when a
    // later step has closed it.
    QTimer::singleShot(lookEvery, this, &Script::tick);
    const Step& step = m_steps.at(m_at);
    if (!m_begun) {
        m_begun = true;
        m_sinceBegun.start();
        step.act();
    } else if (step.until()) {
        ++m_at;
        m_begun = false;
    } else if (m_sinceBegun.hasExpired(limit.count())) {
        m_failed = true;
        if (onFailure)
            onFailure();
        QCoreApplication::exit(EXIT_FAILURE);
    }
}

} // namespace tour
