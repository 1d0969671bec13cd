#include "live/qrvrcPlayerStats.h"

#include "base/RuntimeError.h"
#include "diagnostics/Reporter.h"
#include "link/Ask.h"
#include "link/Client.h"
#include "link/ReplyDispatcher.h"
#include "link/Session.h"
#include "link/clsWinSock.h"
#include "live/StatisticsRows.h"
#include "navigation/SelectedProfile.h"
#include "platform/CodePage.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"
#include "ui/StripTabBar.h"

#include <QGroupBox>
#include <QLabel>
#include <QPointer>
#include <QScopeGuard>
#include <QScrollBar>
#include <QShortcut>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// One request under way and one behind it, which will tell all that there is to tell by then.
constexpr int mostRequests = 2;

const QString unreadable = u"The tracker's answer could not be read."_s;

/// Replaces the rows and leaves selection and view where they are.
void refill(GridView& grid, std::size_t count, std::function<GridRow(int)> make)
{
    const int selected = grid.selectedRow();
    const int scrolled = grid.verticalScrollBar()->value();
    const int rows = static_cast<int>(count);
    grid.rows().setRows(rows, std::move(make));
    if (selected >= 0 && rows > 0)
        grid.selectRow(std::min(selected, rows - 1));
    grid.verticalScrollBar()->setValue(scrolled);
}

} // namespace

qrvrcPlayerStats::qrvrcPlayerStats(Client& client, const SelectedProfile& selected, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_selected(selected),
      m_profileId(selected.id),
      m_players(std::make_shared<const Table<PlayerRow>>())
{
    setObjectName(u"qrvrcPlayerStats"_s);
    buildControls();
    wireSignals();
    explain(u"Not connected."_s);
}

qrvrcPlayerStats::~qrvrcPlayerStats() = default;

void qrvrcPlayerStats::wireSignals()
{
    // What may wait or open a box runs behind the event that led to it: when it is over the window may be gone.
    constexpr Qt::ConnectionType behind = Qt::QueuedConnection;
    connect(tsMain, &QTabBar::currentChanged, this, &qrvrcPlayerStats::UpdateGrid, behind);
    connect(cmdRefresh, &ImageButton::activated, this, &qrvrcPlayerStats::refresh, behind);
    connect(cmdClose, &ImageButton::activated, this, &qrvrcPlayerStats::closeWanted);
    auto* refreshKey = new QShortcut(QKeySequence::Refresh, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    refreshKey->setAutoRepeat(false);
    connect(refreshKey, &QShortcut::activated, this, &qrvrcPlayerStats::refresh, behind);
    connect(fgPlayers->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &qrvrcPlayerStats::takeSelectedPlayer);
    connect(fgPlayers, &QTableView::activated, tsMain, [this] { tsMain->setCurrentIndex(Weapons); });
    connect(&m_client.link, &clsWinSock::linkLost, this, [this] { explain(u"Not connected."_s); });
    m_client.replies.on("GetPlayerStats", this, [this](std::string_view body) { showStatistics(body); });
}

qrvrcPlayerStats::Tab qrvrcPlayerStats::chosenTab() const
{
    return tsMain->currentIndex() == Weapons ? Weapons : Players;
}

void qrvrcPlayerStats::Form_Activate()
{
    m_client.helpSection = u"View Player Stats"_s;
    if (std::exchange(m_isLoaded, true))
        return;
    fgPlayers->setFocus();
    // Behind the click that led here: the list and its actions are not to wait for the tracker.
    QTimer::singleShot(0, this, &qrvrcPlayerStats::refresh);
}

void qrvrcPlayerStats::resizeEvent(QResizeEvent* event)
{
    WorkingWindow::resizeEvent(event);
    placeControls();
}

void qrvrcPlayerStats::refresh()
{
    if (!m_client.link.isLoggedIn() || m_openRequests >= mostRequests)
        return;
    const QPointer<QWidget> self(this);
    ++m_openRequests;
    m_isAnswered = false;
    explain(u"Asking the tracker for the statistics..."_s);
    setCursor(Qt::BusyCursor);
    const WaitEnd end = ask(m_client.link, getPlayerStatsRequest(m_client.session.user, m_profileId));
    if (!self)
        return; // closed while its events ran
    if (--m_openRequests == 0)
        unsetCursor();
    if (end != WaitEnd::Replied)
        explain(u"The tracker did not answer."_s);
    else if (!m_isAnswered)
        explain(u"The tracker's answer was lost. Refresh asks again."_s);
}

void qrvrcPlayerStats::showStatistics(std::string_view body)
{
    m_isAnswered = true;
    if (saysNotRunning(body)) {
        explain(u"The server does not appear to be running."_s);
        m_client.reporter.ReportMsg(MessageKind::Failed, u"The server does not appear to be running!"_s);
        return;
    }
    if (isNoStatistics(body)) {
        explain(u"The tracker sent no statistics."_s);
        return;
    }
    auto statistics = std::make_shared<PlayerStatistics>();
    m_statistics = statistics;
    try {
        statistics->read(body);
    } catch (...) {
        showWhatArrived();
        throw;
    }
    UpdateGrid();
}

/// Fills the table from a reply that breaks off. That is reported already, so what its gap leads to is not.
void qrvrcPlayerStats::showWhatArrived()
{
    if (chosenTab() == Weapons && m_selectedPlayer.empty())
        return;
    try {
        fillGrid();
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch)
    }
    explain(unreadable);
}

void qrvrcPlayerStats::UpdateGrid()
{
    if (chosenTab() == Weapons && m_selectedPlayer.empty()) {
        const QSignalBlocker quiet(tsMain);
        tsMain->setCurrentIndex(Players);
        showGridOf(Players);
        m_client.reporter.ReportMsg(MessageKind::ActionRequired, u"You must select a player!"_s);
        return;
    }
    m_client.reporter.trap("qrvrcPlayerStats_UpdateGrid", [this] {
        try {
            fillGrid();
        } catch (const RuntimeError& error) {
            throw error.followedBy(" [" + std::string(m_selected.gameVersion()) + ']');
        }
    });
}

void qrvrcPlayerStats::fillGrid()
{
    showGridOf(chosenTab());
    if (!m_statistics)
        return; // the tables say why they are empty
    if (chosenTab() == Players)
        fillPlayers();
    else
        fillWeapons();
}

void qrvrcPlayerStats::showGridOf(Tab tab)
{
    GridView* const shown = tab == Players ? fgPlayers : fgWeapons;
    GridView* const hidden = tab == Players ? fgWeapons : fgPlayers;
    const bool hadFocus = hidden->hasFocus();
    hidden->hide();
    shown->show();
    if (hadFocus)
        shown->setFocus();
    showTitle();
}

void qrvrcPlayerStats::fillPlayers()
{
    const auto table = std::make_shared<Table<PlayerRow>>();
    table->source = m_statistics;
    QString whyEmpty = unreadable;
    // A record that cannot be shown ends the table; those before it are shown all the same.
    const auto show = qScopeGuard([&] {
        fgPlayers->setEmptyText(whyEmpty);
        m_players = table;
        refill(*fgPlayers, table->rows.size(),
               [this, table = m_players](int row) { return cellsOf(table->rows.at(static_cast<std::size_t>(row))); });
        takeSelectedPlayer();
    });
    const GameFamily family = familyOf(m_selected.gameVersion());
    if (family == GameFamily::Other) {
        whyEmpty = u"There are no statistics for this game."_s;
        return;
    }
    const std::size_t count = m_statistics->players().size();
    table->rows.reserve(count);
    for (std::size_t index = 0; index < count; ++index)
        table->rows.push_back(playerRow(*m_statistics, index, family));
    whyEmpty = u"Nobody is playing."_s;
}

void qrvrcPlayerStats::fillWeapons()
{
    const auto table = std::make_shared<Table<WeaponRow>>();
    table->source = m_statistics;
    QString whyEmpty = unreadable;
    if (std::exchange(m_weaponsOf, m_selectedPlayer) != m_selectedPlayer)
        fgWeapons->rows().clear(); // another player's rows have nothing to keep
    const auto show = qScopeGuard([&] {
        fgWeapons->setEmptyText(whyEmpty);
        refill(*fgWeapons, table->rows.size(),
               [this, table](int row) { return cellsOf(table->rows.at(static_cast<std::size_t>(row))); });
        fitPositions();
    });
    const GameFamily family = familyOf(m_selected.gameVersion());
    for (std::size_t index = 0; index < m_statistics->weapons().size(); ++index) {
        if (auto row = weaponRow(*m_statistics, index, family, m_selectedPlayer))
            table->rows.push_back(std::move(*row));
    }
    whyEmpty = u"The tracker tells of no weapons of this player."_s;
}

GridRow qrvrcPlayerStats::cellsOf(const PlayerRow& row) const
{
    const CodePage& codePage = m_client.codePage;
    GridRow cells{.cells = {codePage.toText(row.slot), codePage.toText(row.name), codePage.toText(row.team)},
                  .pictures = {},
                  .data = 0};
    for (const std::string_view count : row.counts)
        cells.cells.push_back(codePage.toText(count));
    cells.cells.push_back(codePage.toText(timeText(row.seconds)));
    return cells;
}

GridRow qrvrcPlayerStats::cellsOf(const WeaponRow& row) const
{
    const CodePage& codePage = m_client.codePage;
    return {.cells = {QString::number(row.position), codePage.toText(row.weapon), codePage.toText(row.stance),
                      codePage.toText(row.shots), codePage.toText(row.kills), codePage.toText(row.experience),
                      codePage.toText(timeText(row.seconds))},
            .pictures = {},
            .data = 0};
}

void qrvrcPlayerStats::takeSelectedPlayer()
{
    const int row = fgPlayers->selectedRow();
    m_selectedPlayer = row < 0 ? std::string() : m_players->rows.at(static_cast<std::size_t>(row)).name;
}

void qrvrcPlayerStats::explain(const QString& why)
{
    fgPlayers->setEmptyText(why);
    fgWeapons->setEmptyText(why);
}

void qrvrcPlayerStats::showTitle()
{
    const CodePage& codePage = m_client.codePage;
    QString title = codePage.toText(m_selected.name);
    if (const QString game = codePage.toText(m_selected.gameVersion()); !game.isEmpty())
        title += u" - "_s + game;
    if (chosenTab() == Weapons)
        title = codePage.toText(m_selectedPlayer) + u" on "_s + title;
    lblTitle->setText(lblTitle->fontMetrics().elidedText(title, Qt::ElideRight, lblTitle->width()));
}
