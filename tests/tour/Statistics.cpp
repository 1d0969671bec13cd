#include "tour/Scenes.h"
#include "tour/Screen.h"

#include <QTableView>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

const QString windowName = u"qrvrcPlayerStats"_s;

/// Rows of the sample world's profile list.
enum Profile { Desert = 0, Raiders = 1, Islands = 4 };

bool isSelected(int row)
{
    const auto* view = seen<QTableView>(u"fgPlayers"_s);
    return view && view->selectionModel()->isRowSelected(row);
}

void open(Act& act, int profile)
{
    act.openMenu(profile);
    act.step(
        u"its players are shown"_s, [] { clickEntry(u"mnuPlayers"_s); },
        [players = act.tracker.world().profiles[profile].players.size()] { return rowsOf(u"fgPlayers"_s) == players; });
}

void close(Act& act)
{
    act.step(
        u"Close goes back to the profile list"_s, [] { click(u"cmdCloseImg"_s, windowName); },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && !seen(windowName); });
}

} // namespace

void statistics(Act& act)
{
    practice::World& world = act.tracker.world();
    world.newsEvery = std::chrono::seconds(0);
    world.advance(std::chrono::minutes(9));
    world.profiles[Raiders].players.clear();
    act.signIn();

    const auto showWeapons = [] { clickTab(u"tsMain"_s, u"Weapon Stats"_s, windowName); };
    open(act, Desert);
    act.step(u"weapons are shown of a player, and none is selected"_s, showWeapons,
             [] { return boxSays(u"You must select a player!"_s) && rowsOf(u"fgPlayers"_s) > 0; });
    act.picture(u"stats-no-player.png"_s);
    act.dismissBox();
    act.step(
        u"a click selects a player"_s, [] { clickRow(u"fgPlayers"_s, 3); }, [] { return isSelected(3); });
    act.picture(u"stats-players.png"_s);
    act.step(u"the weapons of that player are shown"_s, showWeapons, [] { return rowsOf(u"fgWeapons"_s) > 0; });
    act.picture(u"stats-weapons.png"_s);
    close(act);

    open(act, Islands);
    act.step(
        u"Down selects the first player"_s, [] { press(Qt::Key_Down); }, [] { return isSelected(0); });
    act.picture(u"stats-joint.png"_s);
    act.step(
        u"Enter shows what he carries"_s, [] { press(Qt::Key_Return); }, [] { return rowsOf(u"fgWeapons"_s) > 0; });
    act.picture(u"stats-joint-weapons.png"_s);
    close(act);

    open(act, Raiders);
    act.picture(u"stats-empty.png"_s);
    close(act);
    act.quit();
}

} // namespace tour
