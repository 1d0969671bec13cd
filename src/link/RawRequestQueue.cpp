#include "link/RawRequestQueue.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "link/Ask.h"
#include "link/Request.h"
#include "link/clsWinSock.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"

#include <QScopedValueRollback>

#include <filesystem>

RawRequestQueue::RawRequestQueue(clsWinSock& link, const AppFolder& folder, const clsMFD& store)
    : m_link(link),
      m_folder(folder),
      m_store(store)
{}

void RawRequestQueue::serve()
{
    if (m_isServing || !m_link.isConnected() || m_link.isAwaitingReply())
        return;
    const QScopedValueRollback serving(m_isServing, true);
    for (const std::string& name : m_folder.fileNames("\\RCData")) {
        if (!m_link.isConnected())
            return;
        const std::filesystem::path file = m_folder.path("\\RCData\\" + name);
        std::string text = join(m_store.ReadFile(file), {});
        std::error_code failure;
        if (!std::filesystem::remove(file, failure))
            throw RuntimeError(ErrorNumber::PermissionDenied, name);
        if (ask(m_link, rawRequest(std::move(text))) != WaitEnd::Replied)
            return;
    }
}
