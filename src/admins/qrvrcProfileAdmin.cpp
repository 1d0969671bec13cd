#include "admins/qrvrcProfileAdmin.h"

#include "admins/AccountForm.h"
#include "admins/AccountTable.h"
#include "admins/ConnectivityLog.h"
#include "client/Client.h"
#include "client/PermissionRecords.h"
#include "client/Preferences.h"
#include "client/StatusSlot.h"
#include "diagnostics/report/Reporter.h"
#include "link/PackedReply.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "platform/system/CodePage.h"

#include <QApplication>
#include <QGridLayout>
#include <QScopeGuard>
#include <QTimer>

#include <algorithm>
#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view section = "Profile Admins";

/// Bytes of a list up to which it is read at once.
constexpr std::int32_t maxDirectBytes = 64 * 1024;

// Pixels.
constexpr QMargins pageMargins(8, 2, 8, 8);
constexpr int frameGap = 6;
constexpr int logWidth = 235;

const QString notConnected = u"Not connected."_s;

} // namespace

qrvrcProfileAdmin::qrvrcProfileAdmin(Client& client, const Permissions& permissions, const SelectedProfile& selected,
                                     QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_permissions(permissions),
      m_selected(selected),
      m_steps(client.link)
{
    setObjectName(u"qrvrcProfileAdmin"_s);
    fmeAddUser = new AccountForm(m_client.codePage, m_client.pictures, this);
    fmeUsers = new AccountTable(m_client.codePage, m_client.pictures, this);
    fmeLog = new ConnectivityLog(this);
    layOut();
    moveTo({});
    wireSignals();
}

void qrvrcProfileAdmin::layOut()
{
    fmeLog->setFixedWidth(logWidth);
    auto* page = new QGridLayout(this);
    page->setContentsMargins(pageMargins);
    page->setSpacing(frameGap);
    page->addWidget(fmeAddUser, 0, 0);
    page->addWidget(fmeLog, 0, 1);
    page->addWidget(fmeUsers, 1, 0, 1, 2);
    page->setRowStretch(1, 1); // the accounts take what is left
}

void qrvrcProfileAdmin::wireSignals()
{
    connect(fmeAddUser, &AccountForm::accountChosen, this, &qrvrcProfileAdmin::askForChecklist);
    connect(fmeAddUser, &AccountForm::saveWanted, this, &qrvrcProfileAdmin::saveAccount);
    connect(fmeUsers, &AccountTable::kickWanted, this, [this] { actOnSelected(AccountAct::Kick); });
    connect(fmeUsers, &AccountTable::deleteWanted, this, [this] { actOnSelected(AccountAct::Delete); });
    connect(&m_steps, &AccountSteps::moved, this, &qrvrcProfileAdmin::updateControls);
    connect(&m_client.link, &clsWinSock::loginSucceeded, this, &qrvrcProfileAdmin::followLogin);
    connect(&m_client.link, &clsWinSock::linkLost, this, &qrvrcProfileAdmin::followDrop);
    m_client.replies.on("GetProfileAdmins", this,
                        [this](std::string_view body, const ReplyOwner& owner) { takeAdmins(body, owner); });
    m_client.replies.on("GetProfileAdminPrivis", this, [this](std::string_view body) { takeChecklist(body); });
}

bool qrvrcProfileAdmin::may(std::string_view privilege) const
{
    return m_permissions.isSuper || m_permissions.value(section, privilege) != "0";
}

bool qrvrcProfileAdmin::hold(const std::vector<AdminAccount>& accounts, const AccountDraft& saved) const
{
    const std::string name = m_client.codePage.toBytes(saved.name);
    const std::string password = m_client.codePage.toBytes(saved.password);
    return std::any_of(accounts.begin(), accounts.end(), [&](const AdminAccount& account) {
        return account.name == name && account.password == password;
    });
}

void qrvrcProfileAdmin::Form_Activate()
{
    std::optional<AccountHome> home;
    if (m_selected.profile)
        home = {m_client.link.connection(), *m_selected.profile};
    // Behind the click that led here, which holds the tab strips: they are not to wait for the tracker.
    QTimer::singleShot(0, this, [this, home] { openFor(home); });
}

void qrvrcProfileAdmin::openFor(const std::optional<AccountHome>& home)
{
    if (!m_client.link.isLoggedIn()) {
        showNobody(notConnected);
        return;
    }
    moveTo(home);
    const QWidget* focused = QApplication::focusWidget();
    if (!focused || !isAncestorOf(focused))
        fmeAddUser->takeKeyboard();
    if (!m_home)
        return;
    tellHome();
    m_steps.dropReads();
    m_steps.add(readAccounts());
    m_steps.add(readChecklist(std::string(newAdmin)));
    if (fmeAddUser->account() && !fmeAddUser->hasChecklist())
        m_steps.add(readChecklist(fmeAddUser->accountName()));
    m_steps.work();
}

/// What was typed stays with the home it was typed for, and comes back when that is shown again.
void qrvrcProfileAdmin::moveTo(std::optional<AccountHome> home)
{
    const bool isSameHome = home && isShown(*home);
    if (m_home && !isSameHome && fmeAddUser->isEdited())
        m_drafts.keep(*m_home, fmeAddUser->draft());
    m_home = std::move(home);
    fmeAddUser->setEnabled(m_home.has_value());
    if (isSameHome)
        return;
    fmeAddUser->forgetTemplate();
    fmeAddUser->showNew();
    if (const std::optional<AccountDraft> draft = m_home ? m_drafts.take(*m_home) : std::nullopt)
        fmeAddUser->restore(*draft);
    showNobody(m_home ? u"Asking the tracker for the accounts..."_s
                      : u"No profile is selected. Select one in the profile list."_s);
    tellHome();
}

void qrvrcProfileAdmin::tellHome()
{
    QString text;
    if (m_home)
        text = u"Accounts of profile %1, "_s.arg(m_home->profile.id) + m_client.codePage.toText(m_home->profile.name);
    fmeAddUser->note(text);
}

void qrvrcProfileAdmin::followLogin()
{
    if (m_home && !m_home->connection.isSameAccount(m_client.link.connection()))
        moveTo({}); // what somebody else has typed is not his
}

void qrvrcProfileAdmin::followDrop()
{
    m_reading.drop();
    fmeAddUser->forgetTemplate();
    if (!fmeAddUser->isEdited())
        fmeAddUser->showNew();
    showNobody(notConnected);
}

AccountStep qrvrcProfileAdmin::readAccounts() const
{
    return {getProfileAdminsRequest(m_home->connection.user, m_home->profile.id), *m_home};
}

AccountStep qrvrcProfileAdmin::readChecklist(const std::string& account) const
{
    return {getProfileAdminPrivisRequest(m_home->connection.user, m_home->profile.id, account), *m_home, account};
}

void qrvrcProfileAdmin::askForChecklist()
{
    const std::string account = fmeAddUser->accountName();
    if (!m_home || !m_client.link.isLoggedIn() || fmeAddUser->hasChecklist() || m_steps.asksFor(*m_home, account))
        return;
    m_steps.dropChecklists(); // who walks through the names wants the privileges of the last one only
    m_steps.add(readChecklist(account));
    // Behind the key or click, which the list of names has not yet finished.
    QTimer::singleShot(0, &m_steps, &AccountSteps::work);
}

void qrvrcProfileAdmin::saveAccount()
{
    const AccountAct act = fmeAddUser->account() ? AccountAct::Modify : AccountAct::Add;
    m_client.reporter.trap(act == AccountAct::Add ? "cmdAddUser_Click" : "cmdModify_Click", [this, act] {
        if (const std::optional<QString> fault = fmeAddUser->fault())
            m_client.reporter.ReportMsg(MessageKind::Error, *fault);
        else if (!m_home || !m_client.link.isLoggedIn())
            return;
        else if (!fmeAddUser->hasChecklist())
            m_client.reporter.ReportMsg(
                MessageKind::Error, u"The privileges of this account have not arrived. Choose it again in the list!"_s);
        else
            carryOut(act,
                     saveProfileAdminRequest(m_home->connection.user, m_home->profile.id, fmeAddUser->fields(),
                                             fmeAddUser->checklist()),
                     fmeAddUser->draft());
    });
}

void qrvrcProfileAdmin::actOnSelected(AccountAct act)
{
    if (fmeUsers->accounts().empty() || !m_home || !m_client.link.isLoggedIn())
        return;
    const std::optional<AdminAccount> account = fmeUsers->selected();
    if (!account) {
        fmeAddUser->note(u"Select a user in the list first."_s);
        return;
    }
    if (account->name.empty())
        return;
    // Settled before the question: other answers may come while it is open.
    const AccountHome home = *m_home;
    const auto request = act == AccountAct::Kick ? kickProfileAdminRequest : deleteProfileAdminRequest;
    const Request wanted = request(home.connection.user, home.profile.id, account->name);
    if (!isMeant(act, *account))
        return;
    if (m_client.link.isLoggedIn() && isShown(home) && fmeUsers->has(account->name))
        carryOut(act, wanted, {});
    else
        m_client.status.tell(u"The account '%1' is no longer there."_s.arg(m_client.codePage.toText(account->name)));
}

bool qrvrcProfileAdmin::isMeant(AccountAct act, const AdminAccount& account) const
{
    const bool isKick = act == AccountAct::Kick;
    const Preferences::AskBefore& asks = m_client.preferences.asksBefore;
    const QString question = isKick ? u"Are you sure you want to kick the account '%1'?"_s
                                    : u"Are you sure you want to delete the account '%1'?"_s;
    return !(isKick ? asks.kick : asks.deleteAccount) ||
           m_client.boxes.confirm(u"Confirmation Required!"_s, question.arg(m_client.codePage.toText(account.name)));
}

void qrvrcProfileAdmin::carryOut(AccountAct act, Request request, std::optional<AccountDraft> saved)
{
    tellHome();
    AccountStep outcome = readAccounts();
    outcome.act = act;
    outcome.saved = std::move(saved);
    m_steps.add({.request = std::move(request), .home = *m_home, .act = act});
    m_steps.add(std::move(outcome));
    const QPointer<QWidget> focused = QApplication::focusWidget();
    updateControls();
    if (focused && !focused->isEnabled()) {
        m_focusBefore = focused;
        m_focusMeanwhile = QApplication::focusWidget();
    }
    m_steps.work();
}

void qrvrcProfileAdmin::takeAdmins(std::string_view body, const ReplyOwner& owner)
{
    if (!m_steps.current() || body.empty() || body == "True")
        return;
    AccountStep step = *m_steps.current();
    PackedReply packed;
    try {
        packed = splitPackedReply(body);
    } catch (const RuntimeError& error) {
        takeList({.damage = error}, step);
        return;
    }
    if (packed.length <= maxDirectBytes) {
        m_reading.drop(); // what is older
        takeList(readAdmins(packed, m_client.bounds), step);
        return;
    }
    // This list tells the outcome of what the one that it overtakes was asked for.
    if (m_reading.isUnderWay() && !step.saved && m_readFor->home.isSame(step.home))
        step.saved = m_readFor->saved;
    m_readFor = std::move(step);
    m_reading.start([packed, owner, bounds = m_client.bounds] { return readAdmins(packed, bounds); },
                    [this](AdminList list) {
                        m_client.reporter.trap("HandleData", [&] { takeList(std::move(list), *m_readFor); });
                    });
}

/// What cannot be read ends the list; what came before it is shown all the same.
/// @throws RuntimeError for what ended it
void qrvrcProfileAdmin::takeList(AdminList list, const AccountStep& step)
{
    const std::optional<RuntimeError> damage = list.damage;
    if (isShown(step.home))
        showAdmins(std::move(list), step.saved);
    else if (step.saved && hold(list.accounts, *step.saved))
        m_drafts.forgetSaved(step.home, *step.saved);
    if (damage)
        throw *damage;
}

void qrvrcProfileAdmin::showAdmins(AdminList list, const std::optional<AccountDraft>& saved)
{
    const QString reason = u"The tracker's answer could not be read."_s;
    const bool isWhole = !list.damage;
    const bool mayView = may("View Users");
    const bool mayViewLog = may("View Connectivity Log");
    if (!mayView)
        list.accounts.clear();
    fmeUsers->showAccounts(std::move(list.accounts),
                           !mayView  ? u"You may not view the accounts."_s
                           : isWhole ? u"No accounts"_s
                                     : reason,
                           mayView && list.areAccountsCut);
    QStringList lines;
    for (const std::string_view line : list.log)
        lines += m_client.codePage.toText(line);
    fmeLog->showLines(mayViewLog ? lines : QStringList(),
                      !mayViewLog ? u"You may not view the log."_s
                      : isWhole   ? u"The log is empty."_s
                                  : reason,
                      mayViewLog && list.isLogCut);
    // Whether an account is gone or was not taken is known of a list that is there to its end.
    const bool isComplete = isWhole && !list.areAccountsCut;
    const bool isSaved = saved && hold(fmeUsers->accounts(), *saved) && fmeAddUser->draft() == *saved;
    const std::optional<AdminAccount>& account = fmeAddUser->account();
    const bool isGone = account && isComplete && !fmeUsers->has(account->name);
    if (saved)
        tellOutcome(*saved, isComplete);
    if (!fmeAddUser->isEdited() || isSaved || isGone)
        fmeAddUser->showNew();
    fmeAddUser->offer(fmeUsers->accounts());
    updateControls();
}

void qrvrcProfileAdmin::tellOutcome(const AccountDraft& saved, bool isWhole)
{
    if (hold(fmeUsers->accounts(), saved)) {
        fmeUsers->pointAt(m_client.codePage.toBytes(saved.name));
    } else if (!may("View Users")) {
        fmeAddUser->note(u"'%1' was sent. You may not view whether the tracker took it."_s.arg(saved.name));
    } else if (isWhole) {
        fmeAddUser->note(u"The tracker did not take '%1'."_s.arg(saved.name));
    }
}

void qrvrcProfileAdmin::showNobody(const QString& why)
{
    fmeUsers->showAccounts({}, why);
    fmeLog->showLines({}, why);
    fmeAddUser->offer({});
    updateControls();
}

void qrvrcProfileAdmin::takeChecklist(std::string_view body)
{
    const AccountStep* step = m_steps.current();
    if (!step || !isShown(step->home) || body.empty() || body.find("[-]Quorvane[-]") != std::string_view::npos)
        return;
    Checklist rows;
    bool isWhole = false;
    // A section that cannot be read ends the list; those before it are shown all the same.
    const auto show =
        qScopeGuard([&, account = step->checklistOf] { fmeAddUser->takeChecklist(account, std::move(rows), isWhole); });
    const std::size_t most = m_client.bounds.shortListEntries;
    for (const std::string_view part : splitChecklist(body, most)) {
        Checklist decoded = decodeSection(part, most - std::min(most, rows.size()));
        rows.insert(rows.end(), std::make_move_iterator(decoded.begin()), std::make_move_iterator(decoded.end()));
    }
    isWhole = true;
}

void qrvrcProfileAdmin::updateControls()
{
    const auto isOpen = [this](std::string_view privilege, AccountAct act) {
        return may(privilege) && !m_steps.carriesOut(act);
    };
    fmeAddUser->enableSaving(isOpen("Add New User", AccountAct::Add), isOpen("Modify User", AccountAct::Modify));
    fmeUsers->enableActs(isOpen("Kick User", AccountAct::Kick), isOpen("Delete User", AccountAct::Delete));
    fmeLog->setEnabled(may("View Connectivity Log"));
    if (m_focusBefore && !m_steps.isWorking())
        giveKeyboardBack();
}

/// The keyboard goes back to where it was, unless the user has taken it elsewhere.
void qrvrcProfileAdmin::giveKeyboardBack()
{
    QWidget* before = std::exchange(m_focusBefore, nullptr);
    if (QApplication::focusWidget() != m_focusMeanwhile || !isVisible())
        return;
    if (before->isVisible() && before->isEnabled())
        before->setFocus();
    else
        fmeAddUser->takeKeyboard();
}
