#pragma once

#include "admins/AccountDrafts.h"
#include "admins/AdminRecords.h"

#include <QGroupBox>

#include <optional>
#include <string>
#include <vector>

class CodePage;
class ImageButton;
class PictureStore;
class PrivilegeGrid;
class QComboBox;
class QLabel;
class QLineEdit;

/// The frame in which an account is shown with its checklist, or a new one is made, and where the user changes it. It
/// knows no request: what it shows is handed to it, and it gives back what the user made of that.
class AccountForm : public QGroupBox
{
    Q_OBJECT

public:
    /// Code page and pictures outlive the form.
    AccountForm(const CodePage& codePage, PictureStore& pictures, QWidget* parent);

    /// Offers these accounts to choose from, behind the new one. What is shown stays, also when it is not among them.
    void offer(const std::vector<AdminAccount>& accounts);
    /// Shows a new account without name and password, with the privileges that a new one starts from.
    void showNew();
    /// Shows what `draft()` gave back earlier.
    void restore(const AccountDraft& draft);
    /// Takes the privileges of an account, or of `newAdmin`; those of another one than is shown are not shown. What the
    /// user has changed in the rows before stays changed.
    /// @param isWhole  whether all of the answer could be read; what is damaged does not replace what is whole
    void takeChecklist(const std::string& account, Checklist rows, bool isWhole);
    /// What a new account starts from is not known any more.
    void forgetTemplate() { m_template.reset(); }
    /// @param text  plain text below the buttons
    void note(const QString& text);
    /// Gives the keyboard to the list of names.
    void takeKeyboard();
    void enableSaving(bool add, bool modify);

    /// The account that is shown, as the tracker told it; nothing for a new one.
    const std::optional<AdminAccount>& account() const { return m_account; }
    /// The same as requests name it.
    std::string accountName() const;
    /// Whether all privileges of what is shown have arrived. Without them it is not to be saved.
    bool hasChecklist() const { return m_isWhole; }
    /// Whether there is something of the user's that was not saved.
    bool isEdited() const;
    AccountDraft draft() const;
    /// What is wrong with what was typed, in words for the user; nothing when it can be sent.
    std::optional<QString> fault() const;
    /// In the host's code page.
    AccountFields fields() const;
    const Checklist& checklist() const;

Q_SIGNALS:
    /// The user has chosen a name. Another account is shown by then, or the same one, and its privileges are wanted
    /// unless they are there.
    void accountChosen();
    /// What is shown is to be added, or modified when it is an account.
    void saveWanted();

private:
    void buildFields();
    void buildSaving(PictureStore& pictures);
    void layOut();
    void wireSignals();
    void chooseName(int index);
    void showAccount(std::optional<AdminAccount> account);

    const CodePage& m_codePage;
    std::vector<AdminAccount> m_offered; ///< name by name, behind the first
    std::optional<AdminAccount> m_account;
    std::optional<Checklist> m_template; ///< what a new account starts from
    bool m_isWhole = false;

    QComboBox* cboUser = nullptr;
    QLineEdit* txtUser = nullptr;
    QLineEdit* txtPass = nullptr;
    PrivilegeGrid* lstSections = nullptr;
    ImageButton* cmdAddUser = nullptr;
    ImageButton* cmdModify = nullptr;
    QLabel* lblNote = nullptr;
};
