#pragma once

#include "admins/AccountDrafts.h"
#include "admins/AccountHome.h"
#include "admins/AccountSteps.h"
#include "admins/AdminRecords.h"
#include "link/ReplyAssembler.h"
#include "platform/system/Background.h"
#include "ui/WorkingWindow.h"

#include <QPointer>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

class AccountForm;
class AccountTable;
class ConnectivityLog;
struct Client;
struct Permissions;
struct SelectedProfile;

/// The accounts that may reach a profile from afar: who they are, what they may do, and who came and went. The window
/// keeps to the profile that was selected when it was last activated; what was typed for another one waits until that
/// is shown again.
class qrvrcProfileAdmin : public WorkingWindow
{
    Q_OBJECT

public:
    /// All outlive the window.
    qrvrcProfileAdmin(Client& client, const Permissions& permissions, const SelectedProfile& selected, QWidget* parent);

    QString helpSection() const override { return QStringLiteral("Profile Admins"); }
    void Form_Activate() override;

private:
    void layOut();
    void wireSignals();

    void openFor(const std::optional<AccountHome>& home);
    void moveTo(std::optional<AccountHome> home);
    void followLogin();
    void followDrop();
    void askForChecklist();
    void saveAccount();
    void actOnSelected(AccountAct act);
    bool isMeant(AccountAct act, const AdminAccount& account) const;
    void carryOut(AccountAct act, Request request, std::optional<AccountDraft> saved);
    AccountStep readAccounts() const;
    AccountStep readChecklist(const std::string& account) const;

    void takeAdmins(std::string_view body, const ReplyOwner& owner);
    void takeList(AdminList list, const AccountStep& step);
    void showAdmins(AdminList list, const std::optional<AccountDraft>& saved);
    void showNobody(const QString& why);
    void tellOutcome(const AccountDraft& saved, bool isWhole);
    void tellHome();
    void takeChecklist(std::string_view body);
    void updateControls();
    void giveKeyboardBack();

    /// Whether the logged-in account may do something here; only a "0" denies.
    bool may(std::string_view privilege) const;
    bool isShown(const AccountHome& home) const { return m_home && m_home->isSame(home); }
    /// Whether one of the accounts is what was saved.
    bool hold(const std::vector<AdminAccount>& accounts, const AccountDraft& saved) const;

    Client& m_client;
    const Permissions& m_permissions;
    const SelectedProfile& m_selected;
    std::optional<AccountHome> m_home; ///< of the accounts in the table and of what the form holds
    AccountDrafts m_drafts;
    AccountSteps m_steps;
    NewestWork<AdminList> m_reading;
    std::optional<AccountStep> m_readFor; ///< what the list that is being read is the answer to
    QPointer<QWidget> m_focusBefore;      ///< the button that lost the keyboard when it was disabled
    QPointer<QWidget> m_focusMeanwhile;

    AccountForm* fmeAddUser = nullptr;
    AccountTable* fmeUsers = nullptr;
    ConnectivityLog* fmeLog = nullptr;
};
