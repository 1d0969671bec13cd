#include "profiles/list/ProfileActions.h"

#include "base/Text.h"
#include "client/Client.h"
#include "client/Preferences.h"
#include "client/StatusSlot.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/Reporter.h"
#include "link/Ask.h"
#include "link/EventWait.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "platform/system/CodePage.h"
#include "profiles/editor/qrvrcModify.h"
#include "profiles/list/ProfileRecord.h"
#include "profiles/list/qrvrcProcesses.h"
#include "profiles/list/qrvrcProfilesList.h"
#include "store/AppFolder.h"
#include "ui/BusyPointer.h"
#include "ui/WindowLock.h"
#include "ui/WindowRegistry.h"

#include <QGuiApplication>
#include <QScopeGuard>
#include <QScopedValueRollback>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr std::size_t mostWaiting = 8;

// The tracker answers before the game has followed.
constexpr auto afterAttach = 1000ms;
constexpr auto afterStop = 2000ms;
constexpr auto afterMenuAttach = 2000ms;

// How long a queued raw request may take to leave, in steps.
constexpr auto queueStep = 100ms;
constexpr int queueSteps = 30;

} // namespace

ProfileActions::ProfileActions(Client& client, qrvrcProfilesList& list, ActionHooks hooks)
    : m_client(client),
      m_list(list),
      m_hooks(std::move(hooks))
{
    m_client.replies.on("Attach", this, [this](std::string_view body) { takeAttachReply(body); });
    connect(&m_client.link, &clsWinSock::linkLost, this, [this] {
        m_waiting.clear();
        m_isOver = true;
    });
}

void ProfileActions::run(ProfileAction action, const ProfileAim& aim)
{
    const auto isOrdered = [&](const Order& order) {
        return order.action == action && order.aim.profile.id == aim.profile.id;
    };
    if (!m_current) {
        const QScopedValueRollback busy(m_current);
        const auto forget = qScopeGuard([this] { m_waiting.clear(); }); // what an error leaves
        m_waiting.push_back({action, aim});
        while (!m_waiting.empty()) {
            m_current = m_waiting.front();
            m_waiting.pop_front();
            perform(*m_current);
        }
    } else if (m_waiting.size() >= mostWaiting) {
        m_client.reporter.ReportMsg(MessageKind::ActionRequired,
                                    u"Please wait until what you have chosen before is done."_s);
    } else if (!isOrdered(*m_current) && std::none_of(m_waiting.begin(), m_waiting.end(), isOrdered)) {
        m_waiting.push_back({action, aim});
    }
}

void ProfileActions::perform(const Order& order)
{
    using Procedure = void (ProfileActions::*)(const ProfileAim&);
    static constexpr std::array<Procedure, 9> procedures{
        &ProfileActions::attachByButton, &ProfileActions::attachByMenu, &ProfileActions::detach,
        &ProfileActions::startGame,      &ProfileActions::stopGame,     &ProfileActions::deleteProfile,
        &ProfileActions::modify,         &ProfileActions::viewPlayers,  &ProfileActions::viewFiles,
    };
    const auto profile = m_list.find(order.aim.profile.id);
    m_isGone = !profile;
    m_isOver = false;
    if (profile)
        (this->*procedures.at(static_cast<std::size_t>(order.action)))({*profile, order.aim.choice});
    if (m_isGone)
        m_list.tellGone(order.aim.profile);
}

/// Sends what is about the profile as soon as the link is free, unless the profile, or the link that the action began
/// with, is gone by then.
/// @return Done only when it was sent and its answer was handled
WaitEnd ProfileActions::send(const Request& request, const ProfileRecord& profile)
{
    if (m_isOver || !m_client.link.isLoggedIn() || untilFree(m_client.link) != WaitEnd::Done)
        return WaitEnd::Broken;
    if (m_isOver)
        return WaitEnd::Broken;
    m_isGone = !m_list.find(profile.id); // the link may have been busy with a list
    return m_isGone ? WaitEnd::Broken : ask(m_client.link, request);
}

void ProfileActions::takeAttachReply(std::string_view body)
{
    m_processes.clear();
    m_isAttachOutcome = isAttachOutcome(body);
    if (m_isAttachOutcome)
        return;
    for (const std::string_view element :
         splitProcessList(body, m_client.bounds.shortListEntries)) // an error keeps the processes before it
        m_processes.push_back(decodeProcess(element));
}

/// The whole attach: asks for the processes and lets one be chosen, again and again while the tracker answers with what
/// can be chosen now.
/// @return whether the tracker attached, or tried to
bool ProfileActions::attach(const ProfileRecord& profile)
{
    WaitEnd end = [&] {
        const BusyPointer pointer;
        return send(attachRequest(m_client.link.user(), profile.id), profile);
    }();
    while (end == WaitEnd::Done && !m_isAttachOutcome) {
        const auto process = chooseProcess(profile);
        if (!process)
            return false;
        end = send(attachToProcessRequest(m_client.link.user(), profile.id, process->id), profile);
    }
    return end == WaitEnd::Done;
}

std::optional<ProcessRecord> ProfileActions::chooseProcess(const ProfileRecord& profile)
{
    if (m_processes.empty()) {
        m_client.reporter.ReportMsg(MessageKind::ActionRequired,
                                    u"There is no process on the host that the profile could be attached to!"_s);
        return {};
    }
    std::optional<ProcessRecord> chosen;
    m_client.reporter.trap("qrvrcProcesses_Attach_Click", [&] {
        qrvrcProcesses picker(m_client, profile, std::exchange(m_processes, {}), m_list.window());
        picker.exec();
        chosen = picker.chosen();
    });
    return chosen;
}

void ProfileActions::attachByButton(const ProfileAim& aim)
{
    const WindowLock lock({&m_list});
    if (attach(aim.profile)) {
        pauseFor(afterAttach);
        m_list.reloadBehind(aim);
    }
}

void ProfileActions::attachByMenu(const ProfileAim& aim)
{
    const WindowLock lock({m_hooks.navigation, &m_list});
    static_cast<void>(attach(aim.profile)); // refreshed in any case
    if (m_client.link.isLoggedIn())
        pauseFor(afterMenuAttach);
    m_list.reloadBehind(aim);
}

/// @param isAsked   whether the user wants to be asked
/// @param question  with a place for the profile's name
bool ProfileActions::isMeant(bool isAsked, const QString& question, const ProfileRecord& profile)
{
    return !isAsked ||
           m_client.boxes.confirm(u"Confirmation Required!"_s, question.arg(m_client.codePage.toText(profile.name)));
}

void ProfileActions::detach(const ProfileAim& aim)
{
    if (!isMeant(m_client.preferences.asksBefore.detach,
                 u"Are you sure you want to detach the profile '%1' from its game?"_s, aim.profile))
        return;
    const BusyPointer pointer;
    // The list shows what has become of it.
    const bool isAnswered = send(detachRequest(m_client.link.user(), aim.profile.id), aim.profile) == WaitEnd::Done;
    m_list.reloadBehind(aim);
    if (isAnswered)
        tellWhetherHosting(aim.profile, u"'%1' is detached."_s,
                           u"'%1' was to be detached, and still follows its game."_s);
}

void ProfileActions::stopGame(const ProfileAim& aim)
{
    if (!isMeant(m_client.preferences.asksBefore.stopGame,
                 u"Are you sure you want to stop the game of the profile '%1'?"_s, aim.profile))
        return;
    const WindowLock lock({m_hooks.navigation, &m_list});
    const bool isAnswered = send(stopGameRequest(m_client.link.user(), aim.profile.id), aim.profile) == WaitEnd::Done;
    if (isAnswered)
        pauseFor(afterStop);
    m_list.reloadBehind(aim);
    if (isAnswered)
        tellWhetherHosting(aim.profile, u"'%1' has stopped."_s, u"'%1' was asked to stop, and is still hosting."_s);
}

/// The tracker does not say what has come of an action; the list that follows it does.
void ProfileActions::tellWhetherHosting(const ProfileRecord& profile, const QString& no, const QString& yes)
{
    if (const auto now = m_list.find(profile.id))
        m_client.status.tell((now->map.empty() ? no : yes).arg(m_client.codePage.toText(profile.name)));
}

void ProfileActions::startGame(const ProfileAim& aim)
{
    const WindowLock lock({&m_list});
    const bool started = m_client.reporter.trap("cmdStart_Click", [&] { m_hooks.startGame(::chosen(aim.profile)); });
    if (!started)
        return;
    // The new process can only be offered once the tracker has been asked to start it.
    letRawRequestsOut();
    if (attach(aim.profile)) {
        pauseFor(afterAttach);
        m_list.reloadBehind(aim);
    }
}

void ProfileActions::letRawRequestsOut()
{
    const auto isQueued = [this] { return m_client.link.pending() || !m_client.folder.fileNames("\\RCData").empty(); };
    for (int step = 0; step < queueSteps && m_client.link.isLoggedIn() && isQueued(); ++step)
        pauseFor(queueStep);
}

void ProfileActions::deleteProfile(const ProfileAim& aim)
{
    if (!isMeant(true, u"Are you sure you want to delete the '%1' Profile?"_s, aim.profile))
        return;
    const WindowLock lock({m_hooks.navigation, &m_list});
    static_cast<void>(send(deleteProfileRequest(m_client.link.user(), aim.profile.name), aim.profile));
    m_list.reloadBehind(aim);
}

void ProfileActions::modify(const ProfileAim& aim)
{
    if (!trimmed(aim.profile.players).empty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed, u"You cannot modify a profile that is attached to a game."_s);
        return;
    }
    if (auto* editor = m_client.windows.window<qrvrcModify>()) {
        editor->EditMode = 1;
        open(editor->objectName(), aim);
    }
}

void ProfileActions::viewPlayers(const ProfileAim& aim)
{
    if (aim.profile.map.empty())
        m_client.reporter.ReportMsg(MessageKind::ActionRequired, u"You must select a profile that is hosting!"_s);
    else
        open(u"qrvrcPlayerStats"_s, aim);
}

void ProfileActions::viewFiles(const ProfileAim& aim)
{
    open(u"qrvrcFileManager"_s, aim);
}

void ProfileActions::open(const QString& window, const ProfileAim& aim)
{
    if (!m_list.isVisible())
        return; // the user has gone elsewhere since
    m_list.chooseOnReturn(aim);
    m_hooks.showWindow(window, ::chosen(aim.profile));
}
