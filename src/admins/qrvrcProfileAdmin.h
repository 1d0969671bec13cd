#pragma once

#include "admins/AdminRecords.h"
#include "ui/WorkingWindow.h"

#include <QPointer>
#include <QStringList>

#include <cstdint>
#include <deque>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class GridView;
class ImageButton;
class PrivilegeGrid;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QListWidget;
struct Client;
struct Permissions;
struct SelectedProfile;

/// The accounts that may reach the selected profile from afar: who they are, what they may do, and who came and went.
class qrvrcProfileAdmin : public WorkingWindow
{
    Q_OBJECT

public:
    /// All outlive the window.
    qrvrcProfileAdmin(Client& client, const Permissions& permissions, const SelectedProfile& selected, QWidget* parent);

    void Form_Activate() override;

private:
    enum Column { Username, Password, Address, Status, ColumnCount };

    /// One request that is sent when those before it are answered.
    struct Step
    {
        Request request;
        std::string checklistOf = {};            ///< whose privileges it asks for; empty for other requests
        ImageButton* button = nullptr;           ///< disabled until the step is over
        std::optional<AccountFields> saved = {}; ///< what the step before it has sent
    };

    /// What a reply brought, as far as it could be read.
    struct Admins
    {
        std::vector<AdminAccount> accounts;
        QStringList log;
        bool isWhole = false;
    };

    void buildControls();
    void buildAddUser();
    void buildUsersAndLog();
    void placeControls();
    void wireSignals();

    void reload();
    void nameChanged(int index);
    void chosenAgain();
    void askForChecklist();
    void saveAccount(ImageButton* button);
    void sendAccount(ImageButton* button);
    void actOnSelected(ImageButton* button);
    void enqueueWithRefresh(Request request, ImageButton* button, std::optional<AccountFields> saved);
    void work();
    void checkArrival(const Step& step);

    void showAdmins(std::string_view body);
    void fill(Admins admins);
    bool isTaken(const AccountFields& saved, bool isWhole);
    void fillUsers(const QString& emptyText);
    void fillLog(const QStringList& lines, const QString& emptyText);
    void fillNames();
    void showChecklist(std::string_view body);
    void takeChecklist(const std::string& name, Checklist rows, bool isWhole);
    void showFieldsOfChosen();
    void showNewAccount();
    void showNothing(const QString& why);
    void followLogin();
    void updateControls();

    /// Whether the logged-in account may do something here; only a "0" denies.
    bool may(std::string_view privilege) const;
    bool isBusy(const ImageButton* button) const;
    /// The row of the account of that name in `m_accounts`, or -1.
    int rowOf(std::string_view name) const;
    /// The account that is chosen, or the new one, as requests name it.
    std::string chosenName() const;
    /// Whether fields or checklist hold something of the user's that was not saved.
    bool isEdited() const;
    AccountFields fields() const;

    Client& m_client;
    const Permissions& m_permissions;
    const SelectedProfile& m_selected;
    std::int32_t m_profileId = 0;         ///< whose accounts are shown; 0 for none
    std::string m_user;                   ///< for whom they are shown
    std::vector<AdminAccount> m_accounts; ///< what the grid shows, row by row
    std::optional<AdminAccount> m_chosen; ///< the account to modify; none for a new one
    std::string m_checklistOf;            ///< whose privileges are shown; empty when it is nobody's
    bool m_isChecklistWhole = false;
    std::optional<Checklist> m_template; ///< what a new account starts from
    std::deque<Step> m_steps;
    std::optional<Step> m_current; ///< the one that waits for its answer
    bool m_isWorking = false;
    QPointer<QWidget> m_focusBefore; ///< the button that lost the keyboard when it was disabled
    QPointer<QWidget> m_focusMeanwhile;

    QGroupBox* fmeAddUser = nullptr;
    QGroupBox* fmeUsers = nullptr;
    QGroupBox* fmeLog = nullptr;
    QComboBox* cboUser = nullptr;
    QLineEdit* txtUser = nullptr;
    QLineEdit* txtPass = nullptr;
    PrivilegeGrid* lstSections = nullptr;
    QLabel* lblNote = nullptr;
    ImageButton* cmdAddUser = nullptr;
    ImageButton* cmdModify = nullptr;
    GridView* mfgUsers = nullptr;
    ImageButton* cmdKickUser = nullptr;
    ImageButton* cmdDeleteUser = nullptr;
    QListWidget* lstLog = nullptr;
    QLabel* lblLogEmpty = nullptr;
};
