#include "admins/AccountSteps.h"

#include "link/Ask.h"
#include "link/clsWinSock.h"

#include <QPointer>

#include <algorithm>
#include <utility>

AccountSteps::AccountSteps(clsWinSock& link) : m_link(link)
{
    connect(&m_link, &clsWinSock::linkLost, this, &AccountSteps::stop);
}

void AccountSteps::add(AccountStep step)
{
    m_waiting.push_back(std::move(step));
}

void AccountSteps::work()
{
    if (m_isWorking)
        return;
    m_isWorking = true;
    const QPointer<AccountSteps> self(this);
    while (!m_waiting.empty() && m_link.isLoggedIn()) {
        m_current = std::move(m_waiting.front());
        m_waiting.pop_front();
        const Request request = m_current->request;
        const WaitEnd end = ask(m_link, request);
        if (!self)
            return; // closed while its events ran
        // A step that was stopped is gone; what waits now was added after a later login.
        if (std::exchange(m_current, {}) && end != WaitEnd::Done)
            break;
        Q_EMIT moved();
    }
    m_waiting.clear();
    m_isWorking = false;
    Q_EMIT moved();
}

void AccountSteps::stop()
{
    m_waiting.clear();
    m_current.reset();
}

void AccountSteps::dropReads()
{
    std::erase_if(m_waiting, [](const AccountStep& step) { return !step.act; });
}

void AccountSteps::dropChecklists()
{
    std::erase_if(m_waiting,
                  [](const AccountStep& step) { return !step.checklistOf.empty() && step.checklistOf != newAdmin; });
}

template <typename Predicate>
bool AccountSteps::holds(Predicate predicate) const
{
    return (m_current && predicate(*m_current)) || std::any_of(m_waiting.begin(), m_waiting.end(), predicate);
}

bool AccountSteps::carriesOut(AccountAct act) const
{
    return holds([act](const AccountStep& step) { return step.act == act; });
}

bool AccountSteps::asksFor(const AccountHome& home, const std::string& account) const
{
    return holds([&](const AccountStep& step) { return step.checklistOf == account && step.home.isSame(home); });
}
