#include "admins/AccountTable.h"

#include "platform/system/CodePage.h"
#include "ui/CutNote.h"
#include "ui/GridView.h"
#include "ui/ImageButton.h"

#include <QGridLayout>
#include <QScrollBar>

#include <algorithm>
#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins insets(7, 2, 7, 7); // from the frame to what it holds
constexpr int gap = 10;
constexpr int buttonWidth = 130;

} // namespace

AccountTable::AccountTable(const CodePage& codePage, PictureStore& pictures, QWidget* parent)
    : QGroupBox(u"Users"_s, parent),
      m_codePage(codePage),
      m_accounts(std::make_shared<const std::vector<AdminAccount>>())
{
    static constexpr std::array<GridColumn, ColumnCount> columns{{
        {"Username", 1800_twips, Qt::AlignLeft},
        {"Password", 1800_twips, Qt::AlignLeft},
        {"IP Address", 2200_twips, Qt::AlignHCenter},
        {"Status", 2500_twips, Qt::AlignHCenter},
    }};
    setObjectName(u"fmeUsers"_s);
    mfgUsers = new GridView(u"mfgUsers"_s, this);
    mfgUsers->setAccessibleName(u"Users"_s);
    mfgUsers->setColumns(columns);
    lblUsersCut = new CutNote(u"lblUsersCut"_s, this);
    cmdKickUser = new ImageButton(u"cmdKickUser"_s, u"Kick User"_s, pictures, this);
    cmdDeleteUser = new ImageButton(u"cmdDeleteUser"_s, u"Delete User"_s, pictures, this);
    layOut();
    connect(cmdKickUser, &ImageButton::clicked, this, &AccountTable::kickWanted);
    connect(cmdDeleteUser, &ImageButton::clicked, this, &AccountTable::deleteWanted);
}

void AccountTable::layOut()
{
    auto* cells = new QGridLayout(this);
    cells->setContentsMargins(insets);
    cells->setSpacing(gap);
    cells->addWidget(mfgUsers, 0, 0, 3, 1);
    cells->setRowStretch(2, 1); // below the buttons
    cells->addWidget(lblUsersCut, 3, 0);
    int row = 0;
    for (const ImageButton* button : {cmdKickUser, cmdDeleteUser}) {
        button->face()->setFixedWidth(buttonWidth);
        cells->addWidget(button->face(), row++, 1);
    }
}

std::optional<int> AccountTable::rowOf(std::string_view name) const
{
    const auto found = std::find_if(m_accounts->begin(), m_accounts->end(),
                                    [name](const AdminAccount& account) { return account.name == name; });
    return found == m_accounts->end() ? std::nullopt : std::optional(static_cast<int>(found - m_accounts->begin()));
}

std::optional<AdminAccount> AccountTable::selected() const
{
    const int row = mfgUsers->selectedRow();
    return row < 0 ? std::nullopt : std::optional(m_accounts->at(static_cast<std::size_t>(row)));
}

void AccountTable::showAccounts(std::vector<AdminAccount> accounts, const QString& emptyText, bool isCut)
{
    const std::optional<AdminAccount> before = selected();
    const int scrolled = mfgUsers->verticalScrollBar()->value();
    m_accounts = std::make_shared<const std::vector<AdminAccount>>(std::move(accounts));
    mfgUsers->setEmptyText(emptyText);
    mfgUsers->rows().setRows(static_cast<int>(m_accounts->size()), [this, shown = m_accounts](int row) -> GridRow {
        const AdminAccount& account = shown->at(static_cast<std::size_t>(row));
        return {{m_codePage.toText(account.name), m_codePage.toText(account.password),
                 m_codePage.toText(account.address), m_codePage.toText(account.status)},
                {}};
    });
    lblUsersCut->tell(isCut, std::ssize(*m_accounts));
    mfgUsers->verticalScrollBar()->setValue(scrolled);
    if (const std::optional<int> row = before ? rowOf(before->name) : std::nullopt)
        mfgUsers->selectRow(*row);
}

void AccountTable::pointAt(std::string_view name)
{
    if (const std::optional<int> row = rowOf(name)) {
        mfgUsers->selectRow(*row);
        mfgUsers->scrollTo(mfgUsers->model()->index(*row, Username));
    }
}

void AccountTable::enableActs(bool kick, bool remove)
{
    cmdKickUser->setEnabled(kick);
    cmdDeleteUser->setEnabled(remove);
}
