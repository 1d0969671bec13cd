#include "link/RawRequestQueue.h"

#include "link/Ask.h"
#include "link/Request.h"
#include "link/clsWinSock.h"

#include <QScopedValueRollback>

RawRequestQueue::RawRequestQueue(clsWinSock& link, const AppFolder& folder, const clsMFD& store)
    : m_link(link),
      m_files(folder, store)
{}

void RawRequestQueue::serve()
{
    if (m_isServing || !m_link.isConnected() || m_link.pending())
        return;
    const QScopedValueRollback serving(m_isServing, true);
    m_files.look();
    while (m_link.isConnected()) {
        std::optional<std::string> text = m_files.takeNext();
        if (!text)
            break;
        if (ask(m_link, rawRequest(*std::move(text))) == WaitEnd::Broken)
            return;
    }
    if (const std::optional<RuntimeError> fault = m_files.takeFault())
        throw *fault;
}
