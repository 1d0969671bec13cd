// A "GetPlayerStats" reply on its way from the dispatcher to the screen.

#include "Painting.h"
#include "QuietDesk.h"
#include "live/statistics/qrvrcPlayerStats.h"
#include "practice/answers/Answers.h"
#include "ui/Grid.h"

#include <QTabBar>

#include <benchmark/benchmark.h>

#include <ctime>
#include <string>

namespace {

constexpr int players = 256;
constexpr int weaponsEach = 16; // 4,096 weapon records

/// The reply of a full server; with `tick` everybody has played on.
std::string reply(int tick)
{
    practice::World world = practice::World::many(1, players);
    for (practice::Player& player : world.profiles[0].players) {
        player.seconds = 600 + player.slot + tick;
        player.shots = 40 * player.slot + tick;
        const QList<practice::WeaponUse> some = player.weapons;
        player.weapons.clear();
        for (int weapon = 0; weapon < weaponsEach; ++weapon) {
            player.weapons += some[weapon % some.size()];
            player.weapons.last().shots = weapon + tick;
        }
    }
    const practice::Account who = *world.account("admin");
    return practice::answerRequest(world, who, practice::Request::parse("GetPlayerStats_admin_VB6_1"))
        .body.toStdString();
}

class ShownStatistics
{
public:
    explicit ShownStatistics(int tab)
    {
        m_desk.frame->showWindowFor(QStringLiteral("qrvrcPlayerStats"),
                                    {.id = 1, .name = {}, .gameVersion = practice::deltaForce});
        settle();
        auto* window = m_desk.frame->findChild<qrvrcPlayerStats*>();
        const QString names[] = {QStringLiteral("fgPlayers"), QStringLiteral("fgWeapons")};
        m_grid = window->findChild<GridView*>(names[tab]);
        handle();
        window->findChild<GridView*>(names[0])->selectRow(players / 2);
        window->findChild<QTabBar*>(QStringLiteral("tsMain"))->setCurrentIndex(tab);
        settle();
        m_counter = std::make_unique<PaintCounter>(m_grid->viewport());
    }

    void handle()
    {
        ReplyDispatcher& replies = m_desk.frame->core().replies;
        const ReplyOwner& owner = m_replies[static_cast<std::size_t>(++m_turn % 2)];
        replies.HandleData(*owner, owner, replies.handlerOf("GetPlayerStats"));
    }
    void handleAndPaint()
    {
        m_counter->reset();
        handle();
        m_counter->waitForPaint();
        settle();
        m_paints += m_counter->paints();
    }
    int paints() const { return m_paints; }
    int rows() const { return m_grid->rows().rowCount(); }

private:
    QuietDesk m_desk;
    std::array<ReplyOwner, 2> m_replies{std::make_shared<const std::string>(reply(0)),
                                        std::make_shared<const std::string>(reply(1))};
    GridView* m_grid = nullptr;
    std::unique_ptr<PaintCounter> m_counter;
    int m_turn = 0;
    int m_paints = 0;
};

void showStatistics(benchmark::State& state, int tab, int rows)
{
    ShownStatistics shown(tab);
    shown.handleAndPaint();
    const int before = shown.paints();
    for ([[maybe_unused]] const auto step : state)
        shown.handleAndPaint();
    if (shown.rows() != rows)
        state.SkipWithError("the table does not show its rows");
    state.counters["paints"] = static_cast<double>(shown.paints() - before) / static_cast<double>(state.iterations());
}

BENCHMARK_CAPTURE(showStatistics, players, 0, players)
    ->Name("statistics to the shown players")
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(showStatistics, weapons, 1, weaponsEach)
    ->Name("statistics to the shown weapons")
    ->Unit(benchmark::kMicrosecond);

} // namespace
