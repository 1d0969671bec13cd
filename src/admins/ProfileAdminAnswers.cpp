// What the window of the accounts shows of the tracker's answers. What it asks is in qrvrcProfileAdmin.cpp.

#include "admins/qrvrcProfileAdmin.h"

#include "admins/PrivilegeGrid.h"
#include "link/Client.h"
#include "link/PackedReply.h"
#include "platform/CodePage.h"
#include "store/clsMFD.h"
#include "ui/ImageButton.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QScopeGuard>
#include <QScrollBar>
#include <QSignalBlocker>

#include <iterator>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

const QString unreadable = u"The tracker's answer could not be read."_s;

} // namespace

void qrvrcProfileAdmin::showAdmins(std::string_view body)
{
    if (body.empty() || body == "True")
        return;
    Admins admins;
    // What cannot be read ends the list; what came before it is shown all the same.
    const auto show = qScopeGuard([&] { fill(std::move(admins)); });
    const PackedReply packed = splitPackedReply(body);
    const std::string text = m_client.store.DecompressString(packed.data, packed.length);
    const AdminsText parts = splitAdminsText(text);
    for (const std::string_view line : parts.log)
        admins.log += m_client.codePage.toText(line);
    for (const std::string_view element : parts.accounts)
        admins.accounts.push_back(decodeAdminAccount(element));
    admins.isWhole = true;
}

void qrvrcProfileAdmin::fill(Admins admins)
{
    const bool wasEdited = isEdited();
    const bool mayView = may("View Users");
    const bool mayViewLog = may("View Connectivity Log");
    const QString selected = mfgUsers->rows().text(mfgUsers->selectedRow(), Username);
    m_accounts = mayView ? std::move(admins.accounts) : std::vector<AdminAccount>();
    fillUsers(!mayView ? u"You may not view the accounts."_s : admins.isWhole ? u"No accounts"_s : unreadable);
    fillLog(mayViewLog ? admins.log : QStringList(), !mayViewLog      ? u"You may not view the log."_s
                                                     : admins.isWhole ? u"The log is empty."_s
                                                                      : unreadable);
    if (const int row = selected.isEmpty() ? -1 : rowOf(m_client.codePage.toBytes(selected)); row >= 0)
        mfgUsers->selectRow(row);

    const bool isSaved = m_current && m_current->saved && isTaken(*m_current->saved, admins.isWhole);
    const bool isThere = !m_chosen || !admins.isWhole || rowOf(m_chosen->name) >= 0;
    if (!wasEdited || isSaved || !isThere)
        showNewAccount();
    fillNames();
    updateControls();
}

/// Whether the list shows what was saved; says so when it does not.
bool qrvrcProfileAdmin::isTaken(const AccountFields& saved, bool isWhole)
{
    const int row = rowOf(saved.name);
    const QString name = m_client.codePage.toText(saved.name);
    if (row >= 0 && m_accounts[static_cast<std::size_t>(row)].password == saved.password) {
        mfgUsers->selectRow(row);
        mfgUsers->scrollTo(mfgUsers->model()->index(row, Username));
        return true;
    }
    if (!may("View Users"))
        lblNote->setText(u"'%1' was sent. You may not view whether the tracker took it."_s.arg(name));
    else if (isWhole)
        lblNote->setText(u"The tracker did not take '%1'."_s.arg(name));
    return false;
}

void qrvrcProfileAdmin::fillUsers(const QString& emptyText)
{
    mfgUsers->setEmptyText(emptyText);
    const CodePage& codePage = m_client.codePage;
    std::vector<GridRow> rows;
    rows.reserve(m_accounts.size());
    for (const AdminAccount& account : m_accounts) {
        rows.push_back({{codePage.toText(account.name), codePage.toText(account.password),
                         codePage.toText(account.address), codePage.toText(account.status)},
                        {}});
    }
    const int scrolled = mfgUsers->verticalScrollBar()->value();
    mfgUsers->rows().setRows(std::move(rows));
    mfgUsers->verticalScrollBar()->setValue(scrolled);
}

void qrvrcProfileAdmin::fillLog(const QStringList& lines, const QString& emptyText)
{
    const QScrollBar& bar = *lstLog->verticalScrollBar();
    const bool followsEnd = bar.value() == bar.maximum();
    const int scrolled = bar.value();
    lstLog->clear();
    lstLog->addItems(lines);
    if (followsEnd)
        lstLog->scrollToBottom();
    else
        lstLog->verticalScrollBar()->setValue(scrolled);
    lblLogEmpty->setText(emptyText);
    lblLogEmpty->setVisible(lines.isEmpty());
    lstLog->setAccessibleDescription(lines.isEmpty() ? emptyText : QString());
}

void qrvrcProfileAdmin::fillNames()
{
    const QSignalBlocker quiet(cboUser);
    QStringList names{m_client.codePage.toText(newAdmin)};
    for (const AdminAccount& account : m_accounts)
        names += m_client.codePage.toText(account.name);
    int current = 0;
    if (m_chosen) {
        const int row = rowOf(m_chosen->name);
        if (row < 0)
            names += m_client.codePage.toText(m_chosen->name);
        current = row < 0 ? static_cast<int>(names.size()) - 1 : row + 1;
    }
    cboUser->clear();
    cboUser->addItems(names);
    cboUser->setCurrentIndex(current);
}

void qrvrcProfileAdmin::showChecklist(std::string_view body)
{
    if (!m_current || m_current->checklistOf.empty() || body.find("[-]Quorvane[-]") != std::string_view::npos)
        return;
    const std::string name = m_current->checklistOf;
    if (body.empty()) {
        if (m_checklistOf != name)
            takeChecklist(name, {}, true);
        return;
    }
    Checklist rows;
    bool isWhole = false;
    // A section that cannot be read ends the list; those before it are shown all the same.
    const auto show = qScopeGuard([&] { takeChecklist(name, std::move(rows), isWhole); });
    for (const std::string_view part : splitChecklist(body)) {
        Checklist decoded = decodeSection(part);
        rows.insert(rows.end(), std::make_move_iterator(decoded.begin()), std::make_move_iterator(decoded.end()));
    }
    isWhole = true;
}

void qrvrcProfileAdmin::takeChecklist(const std::string& name, Checklist rows, bool isWhole)
{
    if (name == newAdmin && isWhole)
        m_template = rows;
    if (name != chosenName())
        return;
    lstSections->setEmptyText(isWhole ? u"The tracker knows no privileges."_s : unreadable);
    if (std::exchange(m_checklistOf, name) == name)
        lstSections->showReceivedKeepingEdits(std::move(rows));
    else
        lstSections->showReceived(std::move(rows));
    m_isChecklistWhole = isWhole;
}

void qrvrcProfileAdmin::showFieldsOfChosen()
{
    const AdminAccount account = m_chosen.value_or(AdminAccount());
    txtUser->setText(m_client.codePage.toText(account.name));
    txtPass->setText(m_client.codePage.toText(account.password));
    cmdAddUser->setVisible(!m_chosen);
    cmdModify->setVisible(m_chosen.has_value());
}

void qrvrcProfileAdmin::showNewAccount()
{
    m_chosen.reset();
    showFieldsOfChosen();
    m_checklistOf = m_template ? std::string(newAdmin) : std::string();
    m_isChecklistWhole = m_template.has_value();
    lstSections->showReceived(m_template.value_or(Checklist()));
}

void qrvrcProfileAdmin::showNothing(const QString& why)
{
    m_accounts.clear();
    m_template.reset();
    fillUsers(why);
    fillLog({}, why);
    if (!isEdited()) {
        lstSections->setEmptyText(why);
        showNewAccount();
    }
    fillNames();
    updateControls();
    lblNote->clear();
}
