#include "updates/UpdatePanel.h"

#include "diagnostics/MessageBoxes.h"
#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "platform/CodePage.h"
#include "store/AppFolder.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"
#include "updates/DiskFacts.h"
#include "updates/ListCheck.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdateQueue.h"
#include "updates/UpdatesIni.h"

#include <QHeaderView>
#include <QLabel>
#include <QProgressBar>
#include <QShortcut>

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

enum Column { Box, Name, Version, Type, ColumnCount };
enum RowState { Title = -1, Unchecked = 0, Checked = 1 };

constexpr std::array<GridColumn, ColumnCount> columns{
    {{"", 300_twips, Qt::AlignHCenter}, {"", 1400_twips}, {"", 800_twips}, {"", 1600_twips}}};
constexpr std::array<GridColumn, 1> messageColumn{{{"", 4100_twips}}};

constexpr int barSteps = 10'000;
constexpr int mostBeforeTheEnd = 99; // per cent
constexpr qsizetype maxTold = 12;    // lines of a message

/// The widths give proportions; together they fill the grid, with room for a scroll bar.
void fill(GridView& grid, std::span<const GridColumn> layout)
{
    grid.setColumns(layout);
    const int room = grid.viewport()->width() - grid.style()->pixelMetric(QStyle::PM_ScrollBarExtent);
    int whole = 0;
    for (const GridColumn& column : layout)
        whole += column.width.value;
    for (std::size_t column = 0; column < layout.size(); ++column)
        grid.setColumnWidth(static_cast<int>(column), room * layout[column].width.value / whole);
}

/// Lines for a message box, which has no scroll bar.
QString joined(QStringList lines)
{
    if (lines.size() > maxTold) {
        const qsizetype more = lines.size() - maxTold + 1;
        lines = lines.mid(0, maxTold - 1) + QStringList(u"... and %1 more"_s.arg(more));
    }
    return lines.join(u"\r\n"_s);
}

const QString restartNeeded = u"A restart of the Quorvane Ravelin RC is \r\nrequired to install the updates."_s;

} // namespace

UpdatePanel::UpdatePanel(Client& client, const UpdateServices& services, UpdateAgent& agent, UpdatePanelSetup setup,
                         const QRect& place, QWidget* parent)
    : QGroupBox(setup.title, parent),
      m_client(client),
      m_services(services),
      m_agent(agent),
      m_setup(std::move(setup))
{
    setObjectName(m_setup.frameName);
    setGeometry(place);
    buildControls();
    wireSignals();
    showButton(false);
    setBusy(false);
    clearGrid();
}

UpdatePanel::~UpdatePanel() = default;

void UpdatePanel::wireSignals()
{
    connect(cmdCheck, &ImageButton::clicked, this, &UpdatePanel::check);
    connect(cmdGetUpdates, &ImageButton::clicked, this,
            m_client.reporter.trapped("GetFilesObtain", [this] { getUpdates(); }));
    connect(cmdCancel, &ImageButton::clicked, this, [this] {
        if (m_queue)
            m_queue->cancel();
        else if (m_check)
            m_check->cancel();
    });
    connect(lstQRV, &QTableView::clicked, this, [this](const QModelIndex& cell) { toggle(cell.row()); });
    auto* space = new QShortcut(QKeySequence(Qt::Key_Space), lstQRV, nullptr, nullptr, Qt::WidgetShortcut);
    connect(space, &QShortcut::activated, this, [this] { toggle(lstQRV->selectedRow()); });
}

void UpdatePanel::setBusy(bool busy)
{
    cmdCancel->setEnabled(busy);
    if (busy && window()->isActiveWindow() && (!window()->focusWidget() || isAncestorOf(window()->focusWidget())))
        cmdCancel->setFocus(); // the button that was pressed cannot keep the keyboard
    lstQRV->setEnabled(!busy);
    busy ? parentWidget()->setCursor(Qt::WaitCursor) : parentWidget()->unsetCursor();
}

/// One of the two buttons is shown; the keyboard goes with it.
void UpdatePanel::showButton(bool offersDownload)
{
    const bool hadFocus = cmdCheck->hasFocus() || cmdGetUpdates->hasFocus() || cmdCancel->hasFocus();
    cmdGetUpdates->setVisible(offersDownload);
    cmdCheck->setVisible(!offersDownload);
    if (hadFocus)
        (offersDownload ? cmdGetUpdates : cmdCheck)->setFocus();
}

void UpdatePanel::clearGrid()
{
    m_records.clear();
    lstQRV->rows().clear();
    fill(*lstQRV, columns);
}

void UpdatePanel::check()
{
    clearGrid();
    pbDwnld->setValue(0); // what it shows is of an earlier download
    lblPer->setText(u"0%"_s);
    lstQRV->setEmptyText(u"Looking for updates..."_s);
    setBusy(true);
    cmdCheck->setEnabled(false);
    m_check = std::make_unique<ListCheck>(m_services, m_setup.order, m_services.listLimit);
    // Behind the check's own doings: what follows opens boxes.
    connect(m_check.get(), &ListCheck::finished, this, &UpdatePanel::showCandidates, Qt::QueuedConnection);
}

void UpdatePanel::showCandidates()
{
    setBusy(false);
    if (!m_check->hasList()) {
        lstQRV->setEmptyText(u"Unable to obtain update info!"_s);
        m_client.reporter.ReportMsg(MessageKind::Failed, u"Unable to obtain update info!"_s);
        cmdCheck->setEnabled(true);
        cmdCheck->setFocus();
        return;
    }
    const Candidates& found = m_check->candidates();
    m_rows.clear();
    addGroup(u"Updated Files Available"_s, found.updated, true);
    addGroup(u"New Files Available"_s, found.added, true);
    addGroup(u"Changed Files"_s, found.changed, false);
    if (m_rows.empty()) {
        showNothing();
        cmdCheck->setEnabled(true);
        cmdCheck->setFocus();
    } else {
        lstQRV->rows().setRows(std::exchange(m_rows, {}));
        showButton(true);
        lstQRV->selectRow(1);
        cmdGetUpdates->setFocus();
    }
    tellRefused(found.refused);
}

void UpdatePanel::addGroup(const QString& title, const std::vector<UpdateRecord>& records, bool checked)
{
    if (records.empty())
        return;
    m_rows.push_back({.cells = {title, title, title, title}, .pictures = {}, .data = Title, .title = true});
    m_records.emplace_back();
    const CodePage& codePage = m_client.codePage;
    for (const UpdateRecord& record : records) {
        m_rows.push_back(
            {.cells = {{}, codePage.toText(record.name), codePage.toText(record.version), codePage.toText(record.type)},
             .pictures = {{Box, checked ? m_checked : m_unchecked, checked ? u"checked"_s : u"not checked"_s}},
             .data = checked ? Checked : Unchecked,
             .toolTip = codePage.toText(record.description)});
        m_records.emplace_back(record);
    }
}

void UpdatePanel::showNothing()
{
    fill(*lstQRV, messageColumn);
    lstQRV->rows().setRows({GridRow{.cells = {u"No Updates Available!"_s}, .pictures = {}, .data = Title}});
}

/// A list that names files elsewhere is broken or means harm; either way the user is to know.
void UpdatePanel::tellRefused(const std::vector<UpdateRecord>& refused)
{
    if (refused.empty())
        return;
    QStringList lines;
    for (const UpdateRecord& record : refused)
        lines += m_client.codePage.toText(record.folder + record.name);
    m_client.reporter.ReportMsg(MessageKind::Error,
                                u"The update list names files outside the program folder. They are refused:\r\n\r\n"_s +
                                    joined(lines));
}

void UpdatePanel::toggle(int row)
{
    if (row < 0 || row >= lstQRV->rows().rowCount() || lstQRV->rows().row(row).data == Title)
        return;
    const bool checked = lstQRV->rows().row(row).data == Unchecked;
    lstQRV->rows().setPicture(row, {Box, checked ? m_checked : m_unchecked, checked ? u"checked"_s : u"not checked"_s});
    lstQRV->rows().setRowData(row, checked ? Checked : Unchecked);
}

void UpdatePanel::getUpdates()
{
    lblPer->setText(u"0%"_s);
    pbDwnld->setRange(0, barSteps);
    pbDwnld->setValue(0);
    m_total = 0;
    m_done = 0;
    std::vector<UpdateQueue::Item> items;
    for (std::size_t row = 0; row < m_records.size(); ++row) {
        const std::optional<UpdateRecord>& record = m_records[row];
        if (!record || lstQRV->rows().row(static_cast<int>(row)).data != Checked)
            continue;
        m_total += record->size;
        items.push_back({record->name, record->folder});
        if (m_setup.order.kind == ListKind::Client && record->name == "help.chm")
            m_client.reporter.trap("GetFilesObtain", [&] { noteHelpVersion(m_services.targets, record->version); });
    }
    if (items.empty()) {
        clearGrid();
        lstQRV->setEmptyText(u"Nothing was checked."_s);
        showButton(false);
        m_client.reporter.ReportMsg(MessageKind::Failed, u"No Updates Available!"_s);
        cmdCheck->setEnabled(true);
        return;
    }
    setBusy(true);
    cmdGetUpdates->setEnabled(false);
    m_queue = std::make_unique<UpdateQueue>(m_services, m_setup.order.kind, m_check->location(), std::move(items));
    connect(m_queue.get(), &UpdateQueue::received, this, &UpdatePanel::advance);
    connect(m_queue.get(), &UpdateQueue::finished, this, &UpdatePanel::concludeDownload, Qt::QueuedConnection);
    m_queue->start();
}

void UpdatePanel::advance(qint64 bytes)
{
    m_done = std::min(m_done + bytes, m_total);
    const qint64 whole = std::max<qint64>(m_total, 1); // a list may tell no sizes
    pbDwnld->setValue(static_cast<int>(m_done * barSteps / whole));
    lblPer->setText(u"%1%"_s.arg(std::min<qint64>(m_done * 100 / whole, mostBeforeTheEnd)));
}

void UpdatePanel::concludeDownload()
{
    const std::unique_ptr<UpdateQueue> queue = std::exchange(m_queue, nullptr);
    QStringList failed;
    bool areAnyDone = false;
    for (const ObtainedFile& file : queue->results()) {
        if (file.how == ObtainedFile::How::Failed)
            failed += m_client.codePage.toText(file.name) + u": "_s + file.why;
        else
            areAnyDone = true;
    }
    setBusy(false);
    clearGrid();
    lstQRV->setEmptyText(u"Press \"%1\" to look for updates."_s.arg(m_setup.checkCaption));
    cmdGetUpdates->setEnabled(true);
    cmdCheck->setEnabled(true);
    showButton(false);
    const bool needsRestart = m_client.folder.folderExists(updatesFolder);
    if (!failed.isEmpty() || queue->isCancelled()) {
        QString text = queue->isCancelled() ? u"The download was cancelled."_s
                                            : u"Failed to obtain update file!\r\n\r\n"_s + joined(failed);
        if (areAnyDone)
            text += u"\r\n\r\nThe other files were downloaded."_s;
        if (needsRestart)
            text += u"\r\n\r\n"_s + restartNeeded;
        m_client.reporter.ReportMsg(MessageKind::Failed, text);
        return;
    }
    lblPer->setText(u"100%"_s);
    pbDwnld->setValue(barSteps);
    m_agent.forgetAvailable();
    if (needsRestart)
        m_client.boxes.show(u"Success"_s, u"Updates downloaded successfully!\r\n\r\n"_s + restartNeeded);
    else
        m_client.reporter.ReportMsg(MessageKind::Success, m_setup.success);
}
