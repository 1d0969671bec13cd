#include "live/statistics/qrvrcPlayerStats.h"

#include "base/RuntimeError.h"
#include "client/Client.h"
#include "client/QuietRefresh.h"
#include "diagnostics/report/Reporter.h"
#include "link/Ask.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "live/statistics/StatisticsCells.h"
#include "live/statistics/StatisticsRows.h"
#include "platform/system/CodePage.h"
#include "ui/ElidedLabel.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"
#include "ui/StripTabBar.h"

#include <QGroupBox>
#include <QHBoxLayout>
#include <QPointer>
#include <QScopeGuard>
#include <QScrollBar>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// One request under way and one behind it, which will tell all that there is to tell by then.
constexpr int mostRequests = 2;

const QString unreadable = u"The tracker's answer could not be read."_s;

// Pixels.
constexpr int margin = 8;
constexpr int gap = 6;
constexpr int titleGap = 15; // between the tabs and the title

// The buttons in their frame.
constexpr Twips buttonTop = 250_twips;
constexpr Twips buttonWidth = 1215_twips;
constexpr Twips buttonHeight = 375_twips;
constexpr Twips refreshLeft = 3960_twips;
constexpr Twips closeLeft = 5640_twips;

} // namespace

qrvrcPlayerStats::qrvrcPlayerStats(Client& client, ChosenProfile profile, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_profile(std::move(profile)),
      m_players(std::make_shared<const Table<PlayerRow>>())
{
    setObjectName(u"qrvrcPlayerStats"_s);
    buildControls();
    layOut();
    showTitle();
    wireSignals();
    explain(u"Not connected."_s);
}

qrvrcPlayerStats::~qrvrcPlayerStats() = default;

void qrvrcPlayerStats::buildControls()
{
    tsMain = new StripTabBar(u"tsMain"_s, m_client.pictures, "\\background.gif", this);
    tsMain->setAccessibleName(u"Statistics"_s);
    tsMain->addKeyedTab(u"Player Stats"_s, u"fgPlayers"_s);
    tsMain->addKeyedTab(u"Weapon Stats"_s, u"fgWeapons"_s);

    lblTitle = new ElidedLabel(u"lblTitle"_s, this);
    lblTitle->setAlignment(Qt::AlignRight | Qt::AlignVCenter);

    fgPlayers = new GridView(u"fgPlayers"_s, this);
    fgPlayers->setAccessibleName(u"Player statistics"_s);
    fgPlayers->setColumns(playerColumns());
    fgWeapons = new GridView(u"fgWeapons"_s, this);
    fgWeapons->setAccessibleName(u"Weapon statistics"_s);
    for (GridView* grid : {fgPlayers, fgWeapons})
        grid->setBackground(m_client.pictures, "\\background.gif");
    fgWeapons->setColumns(weaponColumns());
    fgWeapons->hide();

    fmeOptions = new QGroupBox(this);
    fmeOptions->setObjectName(u"fmeOptions"_s);
    fmeOptions->setAccessibleName(u"Options"_s);
    cmdRefresh = new ImageButton(u"cmdRefresh"_s, u"Refresh"_s, m_client.pictures, fmeOptions);
    cmdRefresh->setToolTip(u"Asks the tracker again (F5)"_s);
    cmdClose = new ImageButton(u"cmdClose"_s, u"Close"_s, m_client.pictures, fmeOptions);
}

void qrvrcPlayerStats::layOut()
{
    layOutOptions();
    auto* head = new QHBoxLayout;
    head->setSpacing(titleGap);
    head->addWidget(tsMain);
    head->addWidget(lblTitle, 1);

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(margin, margin, margin, margin);
    page->setSpacing(gap);
    page->addLayout(head);
    page->addWidget(fgPlayers, 1); // the one or the other table is shown
    page->addWidget(fgWeapons, 1);
    page->addWidget(fmeOptions);
}

void qrvrcPlayerStats::layOutOptions()
{
    auto* buttons = new QHBoxLayout(fmeOptions);
    const QMargins around(refreshLeft.pixels(), buttonTop.pixels(), 0, buttonTop.pixels());
    buttons->setContentsMargins(around - fmeOptions->contentsMargins());
    buttons->setSpacing((closeLeft - refreshLeft - buttonWidth).pixels());
    for (const ImageButton* button : {cmdRefresh, cmdClose}) {
        button->face()->setFixedSize(buttonWidth.pixels(), buttonHeight.pixels());
        buttons->addWidget(button->face());
    }
    buttons->addStretch();
}

void qrvrcPlayerStats::wireSignals()
{
    // What may wait or open a box runs behind the event that led to it: when it is over the window may be gone.
    constexpr Qt::ConnectionType behind = Qt::QueuedConnection;
    connect(tsMain, &QTabBar::currentChanged, this, &qrvrcPlayerStats::settlePlayer);
    connect(tsMain, &QTabBar::currentChanged, this, &qrvrcPlayerStats::UpdateGrid, behind);
    connect(cmdRefresh, &ImageButton::activated, this, &qrvrcPlayerStats::refresh, behind);
    connect(cmdClose, &ImageButton::activated, this, &qrvrcPlayerStats::closeWanted);
    auto* refreshKey = new QShortcut(QKeySequence::Refresh, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut);
    refreshKey->setAutoRepeat(false);
    connect(refreshKey, &QShortcut::activated, this, &qrvrcPlayerStats::refresh, behind);
    connect(fgPlayers->selectionModel(), &QItemSelectionModel::selectionChanged, this,
            &qrvrcPlayerStats::takeSelectedPlayer);
    connect(fgPlayers, &GridView::rowOpened, tsMain, [this] { tsMain->setCurrentIndex(Weapons); });
    connect(&m_client.link, &clsWinSock::linkLost, this, [this] {
        explain(u"Not connected."_s);
        m_isLoaded = m_isQuiet = false; // kept for a connection that comes back, it asks anew
    });
    m_clock = new QuietRefresh(m_client, *this, u"tmrPlayerRefresh"_s, &Preferences::playerRefresh);
    connect(m_clock, &QuietRefresh::due, this, &qrvrcPlayerStats::refreshQuietly);
    m_client.replies.on("GetPlayerStats", this, [this](std::string_view body) { showStatistics(body); });
}

qrvrcPlayerStats::Tab qrvrcPlayerStats::chosenTab() const
{
    return tsMain->currentIndex() == Weapons ? Weapons : Players;
}

void qrvrcPlayerStats::Form_Activate()
{
    m_clock->start();
    if (std::exchange(m_isLoaded, true))
        return;
    fgPlayers->setFocus();
    // Behind the click that led here: the list and its actions are not to wait for the tracker.
    QTimer::singleShot(0, this, &qrvrcPlayerStats::refresh);
}

void qrvrcPlayerStats::refresh()
{
    if (!m_client.link.isLoggedIn() || m_openRequests >= mostRequests)
        return;
    const QPointer<QWidget> self(this);
    ++m_openRequests;
    explain(u"Asking the tracker for the statistics..."_s);
    if (!m_pointer)
        m_pointer.emplace(*this);
    const WaitEnd end = ask(m_client.link, getPlayerStatsRequest(m_client.link.user(), m_profile.id));
    if (!self)
        return; // closed while its events ran
    if (--m_openRequests == 0)
        m_pointer.reset();
    if (end != WaitEnd::Done)
        explain(u"The tracker did not answer."_s);
}

/// By the clock, while no other request is under way: the one behind it is the user's.
void qrvrcPlayerStats::refreshQuietly()
{
    if (m_openRequests > 0)
        return;
    m_isQuiet = true;
    // What ends the wait without an answer ends the link too, which the tables then say.
    static_cast<void>(
        ask(m_client.link, getPlayerStatsRequest(m_client.link.user(), m_profile.id), PendingRequest::Asked::ByClock));
}

/// Of what nobody has asked for the same trouble is told once.
void qrvrcPlayerStats::showStatistics(std::string_view body)
{
    const bool isQuiet = std::exchange(m_isQuiet, false);
    const std::string known = std::exchange(m_lastDamage, {});
    try {
        showWhatIsTold(body, isQuiet);
    } catch (const RuntimeError& error) {
        m_lastDamage = error.description();
        if (!isQuiet || m_lastDamage != known)
            throw;
    }
}

void qrvrcPlayerStats::showWhatIsTold(std::string_view body, bool isQuiet)
{
    if (saysNotRunning(body)) {
        explain(u"The server does not appear to be running."_s);
        if (isQuiet)
            return; // the title stays, and what was told last
        m_client.reporter.ReportMsg(MessageKind::Failed, u"The server does not appear to be running!"_s);
        return;
    }
    if (isNoStatistics(body)) {
        explain(u"The tracker sent no statistics."_s);
        return;
    }
    const std::string player = m_selectedPlayer;
    auto statistics = std::make_shared<PlayerStatistics>();
    m_statistics = statistics;
    try {
        statistics->read(body);
    } catch (...) {
        showWhatArrived();
        throw;
    }
    if (!isQuiet) {
        UpdateGrid();
    } else if (!lacksPlayer()) {
        fillGrid();
        followPlayer(player);
    }
}

/// The player who was selected is it again, wherever he stands now, and the table does not move.
void qrvrcPlayerStats::followPlayer(const std::string& player)
{
    const auto& rows = m_players->rows;
    const auto found = std::find_if(rows.begin(), rows.end(), [&](const PlayerRow& row) { return row.name == player; });
    const int scrolled = fgPlayers->verticalScrollBar()->value();
    if (player.empty() || found == rows.end())
        fgPlayers->clearSelection();
    else
        fgPlayers->selectRow(static_cast<int>(found - rows.begin()));
    fgPlayers->verticalScrollBar()->setValue(scrolled);
}

/// Fills the table from a reply that breaks off. That is reported already, so what its gap leads to is not.
void qrvrcPlayerStats::showWhatArrived()
{
    if (lacksPlayer())
        return;
    try {
        fillGrid();
    } catch (const RuntimeError&) { // NOLINT(bugprone-empty-catch)
    }
    explain(unreadable);
}

void qrvrcPlayerStats::UpdateGrid()
{
    if (lacksPlayer()) {
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
            throw error.followedBy(" [" + m_profile.gameVersion + ']');
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
        refill(*fgPlayers, table->rows.size(), [this, table = m_players](int row) {
            return cellsOf(table->rows.at(static_cast<std::size_t>(row)), m_client.codePage);
        });
        takeSelectedPlayer();
    });
    const GameFamily family = familyOf(m_profile.gameVersion);
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
    const auto show = qScopeGuard([&] {
        fgWeapons->setEmptyText(whyEmpty);
        refill(*fgWeapons, table->rows.size(), [this, table](int row) {
            return cellsOf(table->rows.at(static_cast<std::size_t>(row)), m_client.codePage);
        });
        fitPositions();
    });
    const GameFamily family = familyOf(m_profile.gameVersion);
    for (std::size_t index = 0; index < m_statistics->weapons().size(); ++index) {
        if (auto row = weaponRow(*m_statistics, index, family, m_weaponsOf))
            table->rows.push_back(std::move(*row));
    }
    whyEmpty = u"The tracker tells of no weapons of this player."_s;
}

/// The first column is made for two digits; on a full server the positions have more.
void qrvrcPlayerStats::fitPositions()
{
    constexpr int cellMargins = 8; // pixels, both sides together
    const int rows = fgWeapons->rows().rowCount();
    const QString widest = rows > 0 ? fgWeapons->rows().text(rows - 1, 0) : QString();
    fgWeapons->setColumnWidth(0, std::max(weaponColumns()[0].width.pixels(),
                                          fgWeapons->fontMetrics().horizontalAdvance(widest) + cellMargins));
}

void qrvrcPlayerStats::takeSelectedPlayer()
{
    const int row = fgPlayers->selectedRow();
    m_selectedPlayer = row < 0 ? std::string() : m_players->rows.at(static_cast<std::size_t>(row)).name;
}

/// The weapons are those of the player who is selected at the click on their tab, until the next one.
void qrvrcPlayerStats::settlePlayer()
{
    if (chosenTab() == Weapons && std::exchange(m_weaponsOf, m_selectedPlayer) != m_selectedPlayer)
        fgWeapons->rows().clear(); // another player's rows have nothing to keep
}

/// Whether weapons are wanted and nobody was selected.
bool qrvrcPlayerStats::lacksPlayer() const
{
    return chosenTab() == Weapons && m_weaponsOf.empty();
}

void qrvrcPlayerStats::explain(const QString& why)
{
    fgPlayers->setEmptyText(why);
    fgWeapons->setEmptyText(why);
}

void qrvrcPlayerStats::showTitle()
{
    const CodePage& codePage = m_client.codePage;
    QString title = codePage.toText(m_profile.name);
    if (const QString game = codePage.toText(m_profile.gameVersion); !game.isEmpty())
        title += u" - "_s + game;
    if (chosenTab() == Weapons)
        title = codePage.toText(m_weaponsOf) + u" on "_s + title;
    lblTitle->setText(title);
}
