#include "profiles/editor/ScriptCheck.h"

#include "diagnostics/report/MessageBoxes.h"
#include "link/EventWait.h"
#include "platform/net/Inet.h"
#include "platform/system/CodePage.h"

#include <QPointer>

#include <utility>

using namespace Qt::StringLiterals;

ScriptCheck::ScriptCheck(Inet& inet, MessageBoxes& boxes, const CodePage& codePage, std::chrono::milliseconds limit)
    : m_inet(inet),
      m_boxes(boxes),
      m_codePage(codePage),
      m_limit(limit)
{}

ScriptCheck::~ScriptCheck() = default;

ScriptFinding ScriptCheck::run(const Script& script)
{
    const QPointer<ScriptCheck> self(this);
    m_isStopped = false;
    const auto found =
        answersYes(u"Looking for the scripts:"_s, scriptCheckAddress(script.system, script.url), script.system);
    if (!found)
        return ScriptFinding::Stopped;
    if (!*found)
        return ScriptFinding::Missing;
    const bool validates =
        m_boxes.confirm(u"Link Validated"_s, u"The URL you entered is valid and the Quorvane Serverside Scripts "
                                             "were found!\r\n\r\nWould you like to validate the Server ID Code?"_s);
    if (!self || m_isStopped) // while the box was open
        return ScriptFinding::Stopped;
    if (!validates)
        return ScriptFinding::Found;
    const auto known = answersYes(u"Validating the Server ID Code:"_s,
                                  serverIdCheckAddress(script.system, script.url, script.serverId), script.system);
    if (!known)
        return ScriptFinding::Stopped;
    return *known ? ScriptFinding::Validated : ScriptFinding::UnknownId;
}

void ScriptCheck::stop()
{
    m_isStopped = true;
    if (m_fetch)
        m_fetch->cancel();
}

/// Fetches a page and judges its answer.
/// @return nothing when the check was stopped; this object may be gone then
std::optional<bool> ScriptCheck::answersYes(const QString& doing, const std::string& address, const std::string& system)
{
    const QPointer<ScriptCheck> self(this);
    const QString shown = m_codePage.toText(address);
    const bool isOver = fetch(doing, shown);
    if (!self)
        return {};
    const auto fetched = std::exchange(m_fetch, nullptr);
    Q_EMIT fetchingChanged();
    if (!isOver || m_isStopped) {
        Q_EMIT told(u"The check was stopped."_s, {});
        return {};
    }
    return judge(*fetched, system, shown);
}

/// Lets events run until the page is there, or the check is stopped.
/// @return whether the transfer is over; not when this object is gone, or the program quits
bool ScriptCheck::fetch(const QString& doing, const QString& address)
{
    m_fetch = m_inet.get(QUrl(address), m_limit);
    Q_EMIT told(doing, address);
    Q_EMIT fetchingChanged();
    return !m_fetch->isExecuting() || waitForSignal(m_fetch.get(), &PageFetch::finished);
}

/// Whether the page said yes; tells why not.
bool ScriptCheck::judge(const PageFetch& fetched, const std::string& system, const QString& address)
{
    const PageAnswer& answer = fetched.answer();
    const std::string_view body(answer.body.constData(), static_cast<std::size_t>(answer.body.size()));
    const bool isYes = answer.isGood() && isScriptYes(system, body);
    if (isYes)
        Q_EMIT told({}, {});
    else if (answer.status == 0)
        Q_EMIT told(u"There was no answer from:"_s, address);
    else if (!answer.isGood())
        Q_EMIT told(u"The answer was error %1 from:"_s.arg(answer.status), address);
    else
        Q_EMIT told(u"The answer was another one than expected, from:"_s, address);
    return isYes;
}
