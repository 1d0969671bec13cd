#include "profiles/qrvrcModify.h"

#include "base/Text.h"
#include "diagnostics/MessageBoxes.h"
#include "diagnostics/Reporter.h"
#include "link/Ask.h"
#include "link/Client.h"
#include "link/ReplyDispatcher.h"
#include "link/Session.h"
#include "link/clsWinSock.h"
#include "navigation/SelectedProfile.h"
#include "platform/CodePage.h"
#include "platform/Inet.h"
#include "profiles/ScriptAddress.h"
#include "profiles/WindowLock.h"
#include "store/clsMFD.h"
#include "ui/EventWait.h"
#include "ui/ImageButton.h"
#include "ui/WindowRegistry.h"

#include <QAction>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QScopeGuard>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString lostAnswer = u"The tracker's answer was lost. Please try again."_s;

} // namespace

qrvrcModify::qrvrcModify(Client& client, const SelectedProfile& selected, QWidget* navigation, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_selected(selected),
      m_navigation(navigation)
{
    setObjectName(u"qrvrcModify"_s);
    buildControls();
    placeControls();
    wireSignals();
    clearForm();
    showSettings({});
    followState();
}

qrvrcModify::~qrvrcModify() = default;

void qrvrcModify::wireSignals()
{
    connect(cmdAddurl, &ImageButton::clicked, this, &qrvrcModify::addUrl);
    for (QLineEdit* field : {txtUrl, txtServerid})
        connect(field, &QLineEdit::returnPressed, this, &qrvrcModify::addUrl);
    connect(cmdStopCheck, &ImageButton::clicked, this, &qrvrcModify::stopCheck);
    connect(mnuRemove, &QAction::triggered, this, &qrvrcModify::removeScript);
    connect(lstUrls, &QListWidget::itemSelectionChanged, this, &qrvrcModify::followState);
    connect(cmdModify, &ImageButton::clicked, this, &qrvrcModify::save);
    connect(cmdCancel, &ImageButton::clicked, this, &qrvrcModify::closeWanted);
    m_client.replies.on("GetProfile", this, [this](std::string_view body) { takeReply(body); });
    m_client.replies.on("SetProfile", this, [this](std::string_view body) {
        m_answer = trimmed(body) == "False" ? Answer::Refused : Answer::Taken;
    });
}

void qrvrcModify::Form_Activate()
{
    m_client.helpSection = u"Modify Profile"_s;
    cboStats->setFocus();
    followState();
    // Behind the click that led here: the list's own doings are not to wait for the tracker.
    QTimer::singleShot(0, this, &qrvrcModify::readProfile);
}

WorkingWindow::Leaving qrvrcModify::Form_Deactivate()
{
    stopCheck();
    return Leaving::Keeps;
}

void qrvrcModify::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Escape && m_fetch)
        stopCheck();
    else
        WorkingWindow::keyPressEvent(event);
}

void qrvrcModify::readProfile()
{
    const QPointer<qrvrcModify> self(this);
    if (m_isBusy || !isVisible() || !mayDiscard() || !self)
        return;
    m_isRead = false;
    clearForm();
    showSettings({});
    note({});
    followState();
    if (!m_client.link.isLoggedIn() || m_selected.row == 0)
        return;
    m_id = std::to_string(m_selected.id);
    m_peer = m_client.link.peer();
    const WaitEnd end = exchange(getProfileRequest(m_client.session.user, m_id), u"Reading the profile..."_s);
    if (self && !m_isRead)
        tellUnread(end);
}

bool qrvrcModify::mayDiscard()
{
    if (!hasChanges())
        return true;
    return m_client.boxes.confirm(
        u"Confirmation Required!"_s,
        u"Changes to the profile '%1' have not been saved. Do you want to discard them?"_s.arg(txtName->text()));
}

void qrvrcModify::takeReply(std::string_view body)
{
    if (m_answer != Answer::Awaited)
        return; // nothing was asked, so nothing that is typed is overwritten
    m_answer = Answer::Broken;
    ProfileSettings read;
    // What cannot be read ends the reading; what came before is shown all the same.
    const auto show = qScopeGuard([&] { showSettings(read); });
    readProfileSettings(body, read);
    m_answer = Answer::Taken;
    m_isRead = true;
}

void qrvrcModify::tellUnread(WaitEnd end)
{
    note(m_answer == Answer::Broken ? u"The profile could not be read whole, so it cannot be saved."_s
                                    : u"The profile was not read, so it cannot be saved."_s);
    if (end == WaitEnd::Replied && m_answer == Answer::Awaited)
        m_client.reporter.ReportMsg(MessageKind::Failed, lostAnswer);
}

void qrvrcModify::addUrl()
{
    if (!m_isBusy)
        m_client.reporter.trap("frmModify_AddUrl", [this] { addScript(); });
}

void qrvrcModify::addScript()
{
    const std::string url = m_client.store.validateUrl(bytesOf(txtUrl));
    const std::string id(trimmed(bytesOf(txtServerid)));
    if (id.empty())
        return complain(MessageKind::ActionRequired, u"You have not entered a Server ID Code!"_s, txtServerid);
    if (url.empty() || url.find(entrySeparator) != std::string::npos)
        return complain(MessageKind::Error, u"The URL you entered is invalid!"_s, txtUrl);
    if (id.find(entrySeparator) != std::string::npos)
        return complain(MessageKind::ActionRequired, u"The Server ID Code must not contain '|'!"_s, txtServerid);
    if (!isSendable(txtUrl) || !isSendable(txtServerid))
        return;

    const QPointer<qrvrcModify> self(this);
    const std::string system = m_client.codePage.toBytes(cboStats->currentText());
    const auto found = answersYes(u"Looking for the scripts:"_s, scriptCheckAddress(system, url), system);
    if (!found)
        return;
    if (!*found)
        return complain(MessageKind::Failed,
                        u"The URL you entered is valid, but the Quorvane Serverside Scripts were not found!"_s, txtUrl);
    const bool validates = m_client.boxes.confirm(
        u"Link Validated"_s, u"The URL you entered is valid and the Quorvane Serverside Scripts "
                             "were found!\r\n\r\nWould you like to validate the Server ID Code?"_s);
    if (!self)
        return;
    if (validates) {
        const auto known =
            answersYes(u"Validating the Server ID Code:"_s, serverIdCheckAddress(system, url, id), system);
        if (!known)
            return;
        if (!*known)
            return complain(MessageKind::Failed, u"Server ID Validation Failed!"_s, txtServerid);
    }
    lstUrls->addItem(m_client.codePage.toText(scriptEntry(url, id)));
    lstUrls->scrollToBottom();
    clearEntry();
    txtUrl->setFocus();
    if (validates)
        m_client.reporter.ReportMsg(MessageKind::Success, u"Server ID Validated Successfully."_s);
}

/// Fetches a page and judges its answer.
/// @return nothing when the check was stopped; the window may be gone then
std::optional<bool> qrvrcModify::answersYes(const QString& doing, const std::string& address, const std::string& system)
{
    if (!isVisible())
        return {}; // another window has taken its place while a box was open
    const QPointer<qrvrcModify> self(this);
    const QString shown = m_client.codePage.toText(address);
    m_isStopped = false;
    m_fetch = m_client.inet.get(QUrl(shown), checkLimit);
    setBusy(true);
    note(doing, shown);
    cmdStopCheck->setFocus();
    const bool isOver = !m_fetch->isExecuting() || waitForSignal(m_fetch.get(), &PageFetch::finished);
    if (!self)
        return {};
    const auto fetch = std::exchange(m_fetch, nullptr);
    const bool hadFocus = cmdStopCheck->hasFocus();
    setBusy(false);
    if (hadFocus)
        cmdAddurl->setFocus();
    if (!isOver || m_isStopped) {
        note(u"The check was stopped."_s);
        return {};
    }
    const PageAnswer& answer = fetch->answer();
    const std::string_view body(answer.body.constData(), static_cast<std::size_t>(answer.body.size()));
    const bool isYes = answer.isGood() && isScriptYes(system, body);
    if (isYes)
        note({});
    else if (answer.status == 0)
        note(u"There was no answer from:"_s, shown);
    else if (!answer.isGood())
        note(u"The answer was error %1 from:"_s.arg(answer.status), shown);
    else
        note(u"The answer was another one than expected, from:"_s, shown);
    return isYes;
}

void qrvrcModify::stopCheck()
{
    m_isStopped = true;
    if (m_fetch)
        m_fetch->cancel();
}

void qrvrcModify::removeScript()
{
    for (QListWidgetItem* item : lstUrls->selectedItems())
        delete item;
}

void qrvrcModify::save()
{
    if (m_isBusy || !m_isRead)
        return;
    if (cboStats->currentIndex() == 0)
        return complain(MessageKind::ActionRequired, u"You have not selected a Stats System!"_s, cboStats);
    const ProfileSettings now = typed();
    const QPointer<qrvrcModify> self(this);
    if (isAccepted(now) && self)
        send(withChanges(m_read, m_shown, now));
}

/// Whether what was typed can be sent, and to whom; says why not.
bool qrvrcModify::isAccepted(const ProfileSettings& now)
{
    const std::array numbers{std::pair{txtPadnum, &ProfileSettings::padPlayers},
                             std::pair{txtPadtime, &ProfileSettings::padMinutes}};
    for (const auto& [field, setting] : numbers) {
        const std::string& text = now.*setting;
        if (text != m_shown.*setting && !(isNumeric(text) && parseInt32(text))) {
            complain(MessageKind::ActionRequired, u"'%1' must be a number!"_s.arg(field->accessibleName()), field);
            return false;
        }
    }
    if (!isSendable(txtSrHost))
        return false;
    if (!m_client.link.isLoggedIn()) {
        m_client.reporter.ReportMsg(
            MessageKind::Failed,
            u"The profile was not modified: there is no connection to the host. What you entered is kept."_s);
        return false;
    }
    // Profiles are told apart by numbers, and another host has the same ones.
    return m_peer == m_client.link.peer() ||
           m_client.boxes.confirm(u"Confirmation Required!"_s,
                                  u"The profile '%1' was read from %2, but you are connected to %3 now. Do you want to "
                                  "modify the profile with the number %4 there?"_s.arg(
                                      txtName->text(), m_peer, m_client.link.peer(), m_client.codePage.toText(m_id)));
}

void qrvrcModify::send(const ProfileSettings& settings)
{
    const QPointer<qrvrcModify> self(this);
    const WaitEnd end =
        exchange(setProfileRequest(m_client.session.user, m_id, settings), u"Modifying the profile..."_s);
    if (!self)
        return;
    const std::array<std::pair<bool, QString>, 3> failures{{
        {end != WaitEnd::Replied, u"The tracker did not confirm that the profile was modified. What you entered is "
                                  "kept: open the profile again to try once more."_s},
        {m_answer == Answer::Awaited, lostAnswer},
        {m_answer == Answer::Refused, u"The tracker refused to modify the profile. What you entered is kept."_s},
    }};
    for (const auto& [hasFailed, text] : failures) {
        if (hasFailed)
            return m_client.reporter.ReportMsg(MessageKind::Failed, text);
    }
    m_read = settings;
    m_shown = typed();
    m_client.reporter.ReportMsg(MessageKind::Success, u"Profile Modified"_s);
    if (!self)
        return;
    // While the box was open another window may have taken this one's place.
    if (isVisible())
        Q_EMIT closeWanted();
    else
        m_client.windows.unload(objectName());
}

WaitEnd qrvrcModify::exchange(const Request& request, const QString& doing)
{
    const QPointer<qrvrcModify> self(this);
    const WindowLock lock({m_navigation, this});
    setBusy(true);
    note(doing);
    m_answer = Answer::Awaited;
    const WaitEnd end = ask(m_client.link, request);
    if (self) {
        setBusy(false);
        note({});
    }
    return end;
}
