#include "tour/Scenes.h"
#include "tour/Screen.h"

using namespace Qt::StringLiterals;

namespace tour {

namespace {

using practice::Fault;

constexpr int reserveRow = 6; // follows no game, so it can be modified
constexpr int reserveId = reserveRow + 1;

practice::ProfileSettings sampleSettings()
{
    return {
        .scripts = {"http://stats.example/ladder:4711", "http://clan.example/dfbhd/stats:12"},
        .hostName = "Reserve",
        .announceRanks = true,
        .leftLeaning = 1,
        .reportToMaster = true,
        .antiPadding = true,
        .padMinutes = "5",
        .padPlayers = "4",
        .statsSystem = "Standard PHP Stats",
    };
}

QString note()
{
    return textOf(u"lblCheck"_s, u"qrvrcModify"_s);
}

void selectReserve(Act& act)
{
    act.step(
        u"a profile that follows no game is selected"_s, [] { clickRow(u"fgProfiles"_s, reserveRow); },
        [] { return selectedRow() == reserveRow && isButton(u"cmdModify"_s, true); });
}

void enterScript(Act& act, const QString& what, const QByteArray& folder, std::function<bool()> until)
{
    act.step(
        what,
        [&act, folder] {
            enter(u"txtUrl"_s, act.web.base().toEncoded() + '/' + folder);
            enter(u"txtServerid"_s, "101");
            press(Qt::Key_Return);
        },
        std::move(until));
}

void addScript(Act& act)
{
    const QString file = u"editor-checking.png"_s;
    act.camera.prepare(file);
    enterScript(act, u"a check that takes long shows that it runs"_s, "silent", [&act, file] {
        const bool isRunning = note().startsWith(u"Looking for the scripts:"_s) && hasFocus(u"cmdStopCheck"_s);
        if (isRunning)
            act.camera.takeAtOnce(file); // its bar moves, so there is no rest to wait for
        return isRunning;
    });
    act.step(
        u"Escape stops the check"_s, [] { press(Qt::Key_Escape); },
        [] { return note() == u"The check was stopped."_s && isButton(u"cmdAddurl"_s, true); });
    enterScript(act, u"scripts that are found lead to a question"_s, "stats",
                [] { return boxSays(u"Would you like to validate the Server ID Code?"_s); });
    act.picture(u"editor-validate.png"_s);
    act.answerBox(QMessageBox::No);
    act.awaitFrame();
    act.await(u"the address has joined the list"_s, [] { return linesOf(u"lstUrls"_s).size() == 3; });
    act.step(
        u"a line is selected for its menu"_s, [] { clickLine(u"lstUrls"_s, 1); },
        [] { return selectedLine(u"lstUrls"_s) == 1; });
    act.picture(u"editor-added.png"_s);
}

} // namespace

void editor(Act& act)
{
    act.tracker.world().profile(reserveId)->settings = sampleSettings();
    act.signIn();
    selectReserve(act);
    act.step(
        u"the editor shows the profile"_s, [] { click(u"cmdModifyImg"_s); },
        [] { return textOf(u"txtName"_s) == u"Reserve"_s && isButton(u"cmdModify"_s, true); });
    act.picture(u"editor.png"_s);
    addScript(act);
    act.step(
        u"the profile is saved"_s, [] { click(u"cmdModifyImg"_s); }, [] { return boxSays(u"Profile Modified"_s); });
    act.dismissBox();
    act.await(u"the list is back"_s, [] { return rowsOf(u"fgProfiles"_s) == 9; });
    selectReserve(act);
    act.step(
        u"a profile that cannot be read is reported"_s,
        [&act] {
            act.tracker.answerNext("GetProfile", Fault::garbageInElement(5));
            click(u"cmdModifyImg"_s);
        },
        [] { return boxSays(u"Error Report Sent: Yes"_s); });
    act.dismissBox();
    act.await(u"the editor says that this profile cannot be saved"_s,
              [] { return note().contains(u"cannot be saved"_s) && isButton(u"cmdModify"_s, false); });
    act.picture(u"editor-unread.png"_s);
    act.quit();
}

} // namespace tour
