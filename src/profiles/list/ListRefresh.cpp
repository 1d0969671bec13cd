#include "profiles/list/ListRefresh.h"

#include "link/Ask.h"
#include "link/Request.h"

#include <QTimer>

#include <utility>

ListRefresh::ListRefresh(clsWinSock& link, std::function<Request()> question)
    : m_link(link),
      m_question(std::move(question))
{
    connect(&m_link, &clsWinSock::linkLost, this, &ListRefresh::forget);
}

void ListRefresh::start(Wish wish)
{
    if (!m_link.isLoggedIn())
        return;
    if (m_wish) {
        m_next = std::move(wish);
        return;
    }
    const Request question = m_question(); // before the wish stands: it may throw
    m_wish = std::move(wish);
    // What ends the wait without an answer ends the link too, and with it the wish.
    static_cast<void>(ask(m_link, question, m_wish->asked));
}

ListRefresh::Wish ListRefresh::takeWish()
{
    // Behind the answer, in which nobody waits. The wait for it may still stand below other waits then.
    QTimer::singleShot(0, this, [this] {
        if (m_next && !m_wish)
            start(*std::exchange(m_next, {}));
    });
    return std::exchange(m_wish, {}).value_or(Wish());
}

void ListRefresh::forget()
{
    m_wish.reset();
    m_next.reset();
}
