#pragma once

#include "admins/AdminRecords.h"

#include <QGroupBox>

#include <memory>
#include <optional>
#include <string_view>
#include <vector>

class CodePage;
class CutNote;
class GridView;
class ImageButton;
class PictureStore;

/// The frame that lists the accounts of a profile, with what can be done to the selected one.
class AccountTable : public QGroupBox
{
    Q_OBJECT

public:
    /// Code page and pictures outlive the table.
    AccountTable(const CodePage& codePage, PictureStore& pictures, QWidget* parent);

    /// What is selected stays selected, by its name.
    /// @param emptyText  why there are no accounts, if there are none
    /// @param isCut      whether there are more
    void showAccounts(std::vector<AdminAccount> accounts, const QString& emptyText, bool isCut = false);
    const std::vector<AdminAccount>& accounts() const { return *m_accounts; }
    /// Whether there is an account of that name.
    bool has(std::string_view name) const { return rowOf(name).has_value(); }
    std::optional<AdminAccount> selected() const;
    /// Selects the account of that name and brings it into sight.
    void pointAt(std::string_view name);
    void enableActs(bool kick, bool remove);

Q_SIGNALS:
    /// The selected account, if there is one, is to be kicked.
    void kickWanted();
    /// The same for deleting.
    void deleteWanted();

private:
    enum Column { Username, Password, Address, Status, ColumnCount };

    void layOut();
    std::optional<int> rowOf(std::string_view name) const;

    const CodePage& m_codePage;
    std::shared_ptr<const std::vector<AdminAccount>> m_accounts; ///< row by row; never null

    GridView* mfgUsers = nullptr;
    CutNote* lblUsersCut = nullptr;
    ImageButton* cmdKickUser = nullptr;
    ImageButton* cmdDeleteUser = nullptr;
};
