#include "admins/qrvrcProfileAdmin.h"

#include "admins/PrivilegeGrid.h"
#include "diagnostics/Reporter.h"
#include "link/Ask.h"
#include "link/Client.h"
#include "link/ReplyDispatcher.h"
#include "link/Session.h"
#include "link/clsWinSock.h"
#include "navigation/PermissionRecords.h"
#include "navigation/SelectedProfile.h"
#include "platform/CodePage.h"
#include "ui/ImageButton.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view section = "Profile Admins";

const QString notConnected = u"Not connected."_s;

QString asText(std::string_view words)
{
    return QString::fromLatin1(words.data(), static_cast<qsizetype>(words.size()));
}

} // namespace

qrvrcProfileAdmin::qrvrcProfileAdmin(Client& client, const Permissions& permissions, const SelectedProfile& selected,
                                     QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_permissions(permissions),
      m_selected(selected)
{
    setObjectName(u"qrvrcProfileAdmin"_s);
    buildControls();
    placeControls();
    showNothing(notConnected);
    wireSignals();
}

void qrvrcProfileAdmin::wireSignals()
{
    connect(cboUser, &QComboBox::currentIndexChanged, this, &qrvrcProfileAdmin::nameChanged);
    connect(cboUser, &QComboBox::activated, this, &qrvrcProfileAdmin::chosenAgain);
    for (ImageButton* button : {cmdAddUser, cmdModify})
        connect(button, &ImageButton::clicked, this, [this, button] { saveAccount(button); });
    for (ImageButton* button : {cmdKickUser, cmdDeleteUser})
        connect(button, &ImageButton::clicked, this, [this, button] { actOnSelected(button); });
    for (QLineEdit* field : {txtUser, txtPass})
        connect(field, &QLineEdit::returnPressed, this, [this] { saveAccount(m_chosen ? cmdModify : cmdAddUser); });
    connect(&m_client.link, &clsWinSock::loginSucceeded, this, &qrvrcProfileAdmin::followLogin);
    connect(&m_client.link, &clsWinSock::linkLost, this, [this] {
        m_profileId = 0;
        m_steps.clear();
        showNothing(notConnected);
    });
    m_client.replies.on("GetProfileAdmins", this, [this](std::string_view body) { showAdmins(body); });
    m_client.replies.on("GetProfileAdminPrivis", this, [this](std::string_view body) { showChecklist(body); });
}

bool qrvrcProfileAdmin::may(std::string_view privilege) const
{
    return m_permissions.isSuper || m_permissions.value(section, privilege) != "0";
}

int qrvrcProfileAdmin::rowOf(std::string_view name) const
{
    const auto found = std::find_if(m_accounts.begin(), m_accounts.end(),
                                    [name](const AdminAccount& account) { return account.name == name; });
    return found == m_accounts.end() ? -1 : static_cast<int>(found - m_accounts.begin());
}

std::string qrvrcProfileAdmin::chosenName() const
{
    return m_chosen ? m_chosen->name : std::string(newAdmin);
}

AccountFields qrvrcProfileAdmin::fields() const
{
    AccountFields typed{m_client.codePage.toBytes(txtUser->text()), m_client.codePage.toBytes(txtPass->text()), {}};
    if (m_chosen)
        typed.currentName = m_chosen->name;
    return typed;
}

bool qrvrcProfileAdmin::isEdited() const
{
    const AccountFields typed = fields();
    const AdminAccount kept = m_chosen.value_or(AdminAccount());
    return typed.name != kept.name || typed.password != kept.password ||
           (m_checklistOf == chosenName() && lstSections->isEdited());
}

void qrvrcProfileAdmin::Form_Activate()
{
    m_client.helpSection = u"Profile Admins"_s;
    const QWidget* focused = QApplication::focusWidget();
    if (!focused || !isAncestorOf(focused))
        cboUser->setFocus();
    // Behind the click that led here, which holds the tab strips: they are not to wait for the tracker.
    QTimer::singleShot(0, this, &qrvrcProfileAdmin::reload);
}

void qrvrcProfileAdmin::followLogin()
{
    if (m_user != m_client.session.user) { // what somebody else has typed is not his
        m_chosen.reset();
        m_checklistOf.clear();
        txtUser->clear();
        txtPass->clear();
    }
    showNothing(notConnected);
}

void qrvrcProfileAdmin::reload()
{
    if (!m_client.link.isLoggedIn()) {
        showNothing(notConnected);
        return;
    }
    if (std::exchange(m_profileId, m_selected.id) != m_selected.id)
        showNothing(u"Asking the tracker for the accounts..."_s); // what is shown is another profile's
    if (m_profileId == 0) {
        showNothing(u"No profile is selected. Select one in the profile list."_s);
        return;
    }
    m_user = m_client.session.user;
    lblNote->setText(u"Accounts of profile %1"_s.arg(m_profileId));
    m_steps.push_back({getProfileAdminsRequest(m_user, m_profileId)});
    m_steps.push_back({getProfileAdminPrivisRequest(m_user, m_profileId, newAdmin), std::string(newAdmin)});
    work();
}

void qrvrcProfileAdmin::work()
{
    if (m_isWorking)
        return; // whoever works goes on with what is new
    m_isWorking = true;
    const QPointer<QWidget> self(this);
    while (!m_steps.empty() && m_client.link.isLoggedIn()) {
        m_current = std::move(m_steps.front());
        m_steps.pop_front();
        const WaitEnd end = ask(m_client.link, m_current->request);
        if (!self)
            return; // closed while its events ran
        const Step step = *std::exchange(m_current, {});
        if (end != WaitEnd::Replied)
            break;
        checkArrival(step);
        updateControls();
    }
    m_steps.clear();
    m_isWorking = false;
    updateControls();
}

/// A message to a plugin can take the place of an answer, and a damaged one shows nothing: boxes of somebody else
/// must not stay beside the name that is chosen now.
void qrvrcProfileAdmin::checkArrival(const Step& step)
{
    if (step.checklistOf.empty() || step.checklistOf != chosenName() || m_checklistOf == step.checklistOf)
        return;
    lstSections->setEmptyText(u"The privileges did not arrive. Choose the account again."_s);
    lstSections->showReceived({});
}

void qrvrcProfileAdmin::nameChanged(int index)
{
    const int row = index - 1;
    if (row < 0)
        m_chosen.reset();
    else if (row < static_cast<int>(m_accounts.size()))
        m_chosen = m_accounts[static_cast<std::size_t>(row)];
    m_checklistOf.clear();
    showFieldsOfChosen();
    askForChecklist();
}

void qrvrcProfileAdmin::chosenAgain()
{
    const std::string name = chosenName();
    const bool isUnderWay =
        std::any_of(m_steps.begin(), m_steps.end(), [&name](const Step& step) { return step.checklistOf == name; }) ||
        (m_current && m_current->checklistOf == name);
    if (!isUnderWay && (m_checklistOf != name || !m_isChecklistWhole))
        askForChecklist();
}

void qrvrcProfileAdmin::askForChecklist()
{
    if (!m_client.link.isLoggedIn() || m_profileId == 0)
        return;
    // Who walks through the names wants the privileges of the last one only.
    std::erase_if(m_steps, [](const Step& step) { return !step.checklistOf.empty() && step.checklistOf != newAdmin; });
    const std::string name = chosenName();
    m_steps.push_back({getProfileAdminPrivisRequest(m_client.session.user, m_profileId, name), name});
    QTimer::singleShot(0, this,
                       &qrvrcProfileAdmin::work); // behind the key or click, which the list has not yet finished
}

void qrvrcProfileAdmin::saveAccount(ImageButton* button)
{
    if (!button->isEnabled())
        return;
    m_client.reporter.trap(button == cmdAddUser ? "cmdAddUser_Click" : "cmdModify_Click",
                           [this, button] { sendAccount(button); });
}

void qrvrcProfileAdmin::sendAccount(ImageButton* button)
{
    const AccountFields typed = fields();
    if (const auto fault = firstFault(typed)) {
        m_client.reporter.ReportMsg(MessageKind::Error, asText(*fault));
        return;
    }
    const QString foreign = m_client.codePage.firstForeign(txtUser->text() + txtPass->text());
    if (!foreign.isEmpty()) {
        m_client.reporter.ReportMsg(MessageKind::Error,
                                    u"The character '%1' cannot be sent to the host!"_s.arg(foreign));
        return;
    }
    if (!m_client.link.isLoggedIn())
        return;
    if (m_profileId == 0) {
        m_client.reporter.ReportMsg(MessageKind::ActionRequired, u"You must select a profile from the list!"_s);
        return;
    }
    const bool isChecklistThere = m_checklistOf == chosenName() && m_isChecklistWhole;
    const bool isNewWithout = !m_chosen && lstSections->checklist().empty(); // it starts without privileges
    if (!isChecklistThere && !isNewWithout) {
        m_client.reporter.ReportMsg(MessageKind::Error,
                                    u"The privileges of this account have not arrived. Choose it again in the list!"_s);
        return;
    }
    enqueueWithRefresh(saveProfileAdminRequest(m_client.session.user, m_profileId, typed, lstSections->checklist()),
                       button, typed);
}

void qrvrcProfileAdmin::actOnSelected(ImageButton* button)
{
    if (m_accounts.empty() || !m_client.link.isLoggedIn() || m_profileId == 0)
        return;
    const int row = mfgUsers->selectedRow();
    if (row < 0) {
        lblNote->setText(u"Select a user in the list first."_s);
        return;
    }
    const std::string name = m_accounts.at(static_cast<std::size_t>(row)).name;
    if (name.empty())
        return;
    const auto request = button == cmdKickUser ? kickProfileAdminRequest : deleteProfileAdminRequest;
    enqueueWithRefresh(request(m_client.session.user, m_profileId, name), button, {});
}

void qrvrcProfileAdmin::enqueueWithRefresh(Request request, ImageButton* button, std::optional<AccountFields> saved)
{
    lblNote->setText(u"Accounts of profile %1"_s.arg(m_profileId));
    m_steps.push_back({std::move(request), {}, button});
    m_steps.push_back({getProfileAdminsRequest(m_client.session.user, m_profileId), {}, button, std::move(saved)});
    const QPointer<QWidget> focused = QApplication::focusWidget();
    updateControls();
    if (focused && !focused->isEnabled()) {
        m_focusBefore = focused;
        m_focusMeanwhile = QApplication::focusWidget();
    }
    work();
}

bool qrvrcProfileAdmin::isBusy(const ImageButton* button) const
{
    return (m_current && m_current->button == button) ||
           std::any_of(m_steps.begin(), m_steps.end(), [button](const Step& step) { return step.button == button; });
}

void qrvrcProfileAdmin::updateControls()
{
    const std::pair<ImageButton*, std::string_view> rules[] = {
        {cmdAddUser, "Add New User"},
        {cmdModify, "Modify User"},
        {cmdDeleteUser, "Delete User"},
        {cmdKickUser, "Kick User"},
    };
    for (const auto& [button, privilege] : rules)
        button->setEnabled(may(privilege) && !isBusy(button));
    const bool mayViewLog = may("View Connectivity Log");
    fmeLog->setEnabled(mayViewLog);
    lstLog->setEnabled(mayViewLog);
    if (!m_focusBefore || m_isWorking)
        return;
    // The keyboard goes back to where it was, unless the user has taken it elsewhere.
    QWidget* before = std::exchange(m_focusBefore, nullptr);
    if (QApplication::focusWidget() == m_focusMeanwhile && isVisible())
        (before->isVisible() && before->isEnabled() ? before : cboUser)->setFocus();
}
