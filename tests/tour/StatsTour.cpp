#include "tour/StatsTour.h"

#include "practice/Answers.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QMenu>
#include <QTableView>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

const QString windowName = u"qrvrcPlayerStats"_s;

/// Rows of the sample world's profile list.
enum Profile { Desert = 0, Raiders = 1, Hold = 2, Islands = 4 };

constexpr qsizetype toldPlayers = 6;

/// The sample world after a while of play, with a server that everybody has left.
practice::World watchedWorld()
{
    practice::World world = practice::World::lively();
    world.newsEvery = std::chrono::seconds(0);
    world.advance(std::chrono::minutes(9));
    world.profiles[Raiders].players.clear();
    return world;
}

/// A reply that tells of every player, and of what only the first ones did.
QByteArray brokenAnswer(practice::World& world)
{
    const auto request = practice::Request::parse("GetPlayerStats_admin_VB6_1");
    const QByteArray whole = practice::answerRequest(world, *world.account("admin"), request).body;
    const qsizetype middle = whole.indexOf("[-][-]");
    const qsizetype end = whole.indexOf("[-][-]", middle + 1);
    const QList<QByteArray> statistics = whole.mid(middle, end - middle).split('|');
    return whole.left(middle) + statistics.first(toldPlayers).join('|') + whole.mid(end);
}

bool isSelected(int row)
{
    const auto* view = seen<QTableView>(u"fgPlayers"_s);
    return view && view->selectionModel()->isRowSelected(row);
}

} // namespace

StatsTour::StatsTour(qrvrcMain& frame, const QDir& pictures) : Act(frame, watchedWorld(), pictures)
{
    arrive();
    signIn();
    watchPlayers();
    watchIslands();
    meetEmptiness();
    meetTrouble();
    askToQuit();
    confirmQuit();
}

void StatsTour::signIn()
{
    typeConnection(u"Practice host"_s);
    m_script.add(
        u"the profile list is there after the login"_s,
        [this] {
            m_tracker.listen(m_tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
}

void StatsTour::open(int profile, int players)
{
    m_script.add(
        u"the menu of profile %1 opens"_s.arg(profile),
        [profile] { clickRow(u"fgProfiles"_s, profile, Qt::RightButton); },
        [profile] { return seen<QMenu>(u"mnuMain"_s) && selectedRow() == profile; });
    m_script.add(
        u"its players are shown"_s, [] { clickEntry(seen<QMenu>(u"mnuMain"_s), u"mnuPlayers"_s); },
        [players] { return rowsOf(u"fgPlayers"_s) == players; });
}

void StatsTour::close()
{
    m_script.add(
        u"Close goes back to the profile list"_s, [] { click(u"cmdCloseImg"_s, windowName); },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && !seen<QWidget>(windowName); });
}

void StatsTour::watchPlayers()
{
    const int players = static_cast<int>(m_tracker.world().profiles[Desert].players.size());
    open(Desert, players);
    m_script.add(
        u"weapons are shown of a player, and none is selected"_s,
        [] { clickTab(u"tsMain"_s, u"Weapon Stats"_s, windowName); },
        [] { return boxSays(u"You must select a player!"_s) && rowsOf(u"fgPlayers"_s) > 0; });
    picture(u"stats-no-player.png"_s);
    dismissBox(u"the box of the missing player goes"_s);
    m_script.add(
        u"a click selects a player"_s, [] { clickRow(u"fgPlayers"_s, 3); }, [] { return isSelected(3); });
    picture(u"stats-players.png"_s);
    m_script.add(
        u"the weapons of that player are shown"_s, [] { clickTab(u"tsMain"_s, u"Weapon Stats"_s, windowName); },
        [] { return rowsOf(u"fgWeapons"_s) > 0; });
    picture(u"stats-weapons.png"_s);
    close();
}

void StatsTour::watchIslands()
{
    open(Islands, static_cast<int>(m_tracker.world().profiles[Islands].players.size()));
    m_script.add(
        u"Down selects the first player"_s, [] { press(Qt::Key_Down); }, [] { return isSelected(0); });
    picture(u"stats-joint.png"_s);
    m_script.add(
        u"Enter shows what he carries"_s, [] { press(Qt::Key_Return); }, [] { return rowsOf(u"fgWeapons"_s) > 0; });
    picture(u"stats-joint-weapons.png"_s);
    close();
}

void StatsTour::meetEmptiness()
{
    open(Raiders, 0);
    picture(u"stats-empty.png"_s);
    close();
    m_script.add(
        u"the menu of a profile whose game ends opens"_s, [] { clickRow(u"fgProfiles"_s, Hold, Qt::RightButton); },
        [] { return seen<QMenu>(u"mnuMain"_s) && selectedRow() == Hold; });
    m_script.add(
        u"the tracker says that the server does not run"_s,
        [this] {
            m_tracker.answerNextWith("GetPlayerStats", "0");
            clickEntry(seen<QMenu>(u"mnuMain"_s), u"mnuPlayers"_s);
        },
        [] { return boxSays(u"The server does not appear to be running!"_s); });
    picture(u"stats-not-running.png"_s);
    dismissBox(u"the box of the server that does not run goes"_s);
    close();
}

void StatsTour::meetTrouble()
{
    open(Desert, static_cast<int>(m_tracker.world().profiles[Desert].players.size()));
    m_script.add(
        u"statistics that are missing are reported, and the rows before them stay"_s,
        [this] {
            m_tracker.answerNextWith("GetPlayerStats", brokenAnswer(m_tracker.world()));
            press(Qt::Key_F5);
        },
        [] { return boxSays(u"Error Report Sent: Yes"_s) && rowsOf(u"fgPlayers"_s) == toldPlayers; });
    picture(u"stats-error.png"_s);
    dismissBox(u"the box of the missing statistics goes"_s);
}

} // namespace tour
