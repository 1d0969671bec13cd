#include "profiles/ProfileActions.h"

#include "base/Text.h"
#include "diagnostics/MessageBoxes.h"
#include "diagnostics/Reporter.h"
#include "link/Ask.h"
#include "link/Client.h"
#include "link/ReplyDispatcher.h"
#include "link/Session.h"
#include "link/clsWinSock.h"
#include "platform/CodePage.h"
#include "profiles/ProfileRecord.h"
#include "profiles/WindowLock.h"
#include "profiles/qrvrcModify.h"
#include "profiles/qrvrcProcesses.h"
#include "profiles/qrvrcProfilesList.h"
#include "store/AppFolder.h"
#include "ui/EventWait.h"
#include "ui/WindowRegistry.h"

#include <QGuiApplication>
#include <QScopeGuard>
#include <QScopedValueRollback>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// The tracker answers before the game has followed.
constexpr auto afterAttach = 1000ms;
constexpr auto afterStop = 2000ms;
constexpr auto afterMenuAttach = 2000ms;

// How long a queued raw request may take to leave, in steps.
constexpr auto queueStep = 100ms;
constexpr int queueSteps = 30;

/// The busy pointer, for as long as this lives.
class BusyPointer
{
public:
    BusyPointer() { QGuiApplication::setOverrideCursor(Qt::BusyCursor); }
    BusyPointer(const BusyPointer&) = delete;
    BusyPointer& operator=(const BusyPointer&) = delete;
    ~BusyPointer() { QGuiApplication::restoreOverrideCursor(); }
};

} // namespace

ProfileActions::ProfileActions(Client& client, qrvrcProfilesList& list, ActionHooks hooks)
    : m_client(client),
      m_list(list),
      m_hooks(std::move(hooks))
{
    m_client.replies.on("Attach", this, [this](std::string_view body) { takeAttachReply(body); });
}

void ProfileActions::run(const QString& control)
{
    struct Entry
    {
        const char16_t* control;
        void (ProfileActions::*action)();
    };
    static constexpr std::array entries{
        Entry{u"cmdAttach", &ProfileActions::attachByButton}, Entry{u"mnuAttach", &ProfileActions::attachByMenu},
        Entry{u"cmdDetach", &ProfileActions::detach},         Entry{u"mnuDetach", &ProfileActions::detach},
        Entry{u"cmdStart", &ProfileActions::startGame},       Entry{u"mnuStart", &ProfileActions::startGame},
        Entry{u"cmdStop", &ProfileActions::stopGame},         Entry{u"mnuStop", &ProfileActions::stopGame},
        Entry{u"mnuDelete", &ProfileActions::deleteProfile},  Entry{u"cmdModify", &ProfileActions::modify},
        Entry{u"mnuModify", &ProfileActions::modify},         Entry{u"mnuPlayers", &ProfileActions::viewPlayers},
        Entry{u"mnuFileManager", &ProfileActions::viewFiles},
    };
    for (const Entry& entry : entries) {
        if (control == QStringView(entry.control))
            runAlone(entry.action);
    }
}

void ProfileActions::runAlone(void (ProfileActions::*action)())
{
    if (m_isBusy)
        return;
    const QScopedValueRollback busy(m_isBusy, true);
    (this->*action)();
}

WaitEnd ProfileActions::send(const Request& request)
{
    if (!m_client.link.isLoggedIn())
        return WaitEnd::LinkDropped;
    return ask(m_client.link, request);
}

void ProfileActions::takeAttachReply(std::string_view body)
{
    m_processes.clear();
    m_attachAnswer = isAttachOutcome(body) ? AttachAnswer::Outcome : AttachAnswer::Processes;
    if (m_attachAnswer == AttachAnswer::Outcome)
        return;
    for (const std::string_view element : splitProcessList(body)) // an error keeps the processes before it
        m_processes.push_back(decodeProcess(element));
}

/// The whole attach: asks for the processes, lets one be chosen and attaches it.
/// @return whether the tracker attached, or tried to
bool ProfileActions::attach()
{
    const auto profile = m_list.selectedRecord();
    if (!profile)
        return false;
    m_attachAnswer = AttachAnswer::None;
    m_processes.clear();
    const WaitEnd end = [&] {
        const BusyPointer pointer;
        return send(attachRequest(m_client.session.user, profile->id));
    }();
    if (end == WaitEnd::Replied && m_attachAnswer == AttachAnswer::Processes)
        chooseProcess(profile->id);
    else if (end == WaitEnd::Replied && m_attachAnswer == AttachAnswer::None)
        m_client.reporter.ReportMsg(MessageKind::Failed, u"The tracker's answer was lost. Please try again."_s);
    return m_attachAnswer == AttachAnswer::Outcome;
}

void ProfileActions::chooseProcess(const std::string& profileId)
{
    if (m_processes.empty()) {
        m_client.reporter.ReportMsg(MessageKind::ActionRequired,
                                    u"There is no process on the host that the profile could be attached to!"_s);
        return;
    }
    m_client.reporter.trap("qrvrcProcesses_Attach_Click", [&] {
        qrvrcProcesses picker(m_client, std::exchange(m_processes, {}), m_list.window());
        picker.exec();
        if (picker.chosen())
            static_cast<void>(
                send(attachToProcessRequest(m_client.session.user, profileId, picker.chosen()->id))); // True or False
    });
}

void ProfileActions::attachByButton()
{
    const WindowLock lock({&m_list});
    if (attach()) {
        pauseFor(afterAttach);
        m_list.FormReload();
    }
}

void ProfileActions::attachByMenu()
{
    const WindowLock lock({m_hooks.navigation, &m_list});
    static_cast<void>(attach()); // refreshed in any case
    if (m_client.link.isLoggedIn())
        pauseFor(afterMenuAttach);
    m_list.FormReload();
}

void ProfileActions::detach()
{
    const auto profile = m_list.selectedRecord();
    if (!profile)
        return;
    const BusyPointer pointer;
    static_cast<void>(send(detachRequest(m_client.session.user, profile->id))); // the list shows what has become of it
    m_list.FormReload();
}

void ProfileActions::stopGame()
{
    const auto profile = m_list.selectedRecord();
    if (!profile)
        return;
    const WindowLock lock({m_hooks.navigation, &m_list});
    if (send(stopGameRequest(m_client.session.user, profile->id)) == WaitEnd::Replied)
        pauseFor(afterStop);
    m_list.FormReload();
}

void ProfileActions::startGame()
{
    const auto profile = m_list.selectedRecord();
    if (!profile)
        return;
    const auto restoreHelp = qScopeGuard([this, section = std::exchange(m_client.helpSection, u"IGNORE"_s)] {
        if (m_client.helpSection == u"IGNORE"_s) // the user may have gone to another section meanwhile
            m_client.helpSection = section;
    });
    const WindowLock lock({&m_list});
    const bool started =
        m_client.reporter.trap("cmdStart_Click", [&] { m_hooks.startGame(parseInt32(profile->id).value_or(0)); });
    if (!started)
        return;
    // The new process can only be offered once the tracker has been asked to start it.
    letRawRequestsOut();
    if (attach()) {
        pauseFor(afterAttach);
        m_list.FormReload();
    }
}

void ProfileActions::letRawRequestsOut()
{
    const auto isQueued = [this] {
        return m_client.link.isAwaitingReply() || !m_client.folder.fileNames("\\RCData").empty();
    };
    for (int step = 0; step < queueSteps && m_client.link.isLoggedIn() && isQueued(); ++step)
        pauseFor(queueStep);
}

void ProfileActions::deleteProfile()
{
    const auto profile = m_list.selectedRecord();
    if (!profile)
        return;
    const QString name = m_client.codePage.toText(profile->name);
    if (!m_client.boxes.confirm(u"Confirmation Required!"_s,
                                u"Are you sure you want to delete the '%1' Profile?"_s.arg(name)))
        return;
    const WindowLock lock({m_hooks.navigation, &m_list});
    static_cast<void>(send(deleteProfileRequest(m_client.session.user, profile->name)));
    m_list.FormReload();
}

void ProfileActions::modify()
{
    const auto profile = m_list.selectedRecord();
    if (!profile)
        return;
    if (!trimmed(profile->players).empty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed, u"You cannot modify a profile that is attached to a game."_s);
        return;
    }
    const QString editor = u"qrvrcModify"_s;
    static_cast<qrvrcModify*>(m_client.windows.window(editor))->EditMode = 1;
    m_hooks.showWindow(editor);
}

void ProfileActions::viewPlayers()
{
    const auto profile = m_list.selectedRecord();
    if (!profile || profile->map.empty()) {
        m_client.reporter.ReportMsg(MessageKind::ActionRequired, u"You must select a profile that is hosting!"_s);
        return;
    }
    m_hooks.showWindow(u"qrvrcPlayerStats"_s);
}

void ProfileActions::viewFiles()
{
    m_hooks.showWindow(u"qrvrcFileManager"_s);
}
