#include "app/qrvrcMain.h"
#include "tour/Scenes.h"
#include "tour/Screen.h"

#include <QAbstractButton>
#include <QProgressBar>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tour {

namespace {

using practice::Fault;

/// An account that may do everything but is none of the super accounts.
practice::Account powerful(const practice::Account& like)
{
    practice::Account account = like;
    account.name = account.password = "operator";
    account.privileges = practice::Privileges::everythingIn(practice::standardSections());
    return account;
}

void findTheWayIn(Act& act)
{
    act.step(
        u"a refused connection is told in a box"_s,
        [] {
            press(Qt::Key_Tab); // past the tick, to Connect
            press(Qt::Key_Space);
        },
        [] { return boxSays(u"10061"_s) && textOf(u"lblStatus"_s, u"qrvrcLogin"_s) == u"Error"_s; });
    act.picture(u"login-error.png"_s);
    act.dismissBox();
    act.step(
        u"the list of profiles opens"_s, [] { click(u"cboProfile"_s); },
        [] { return seen(u"cboProfile"_s) && QApplication::activePopupWidget(); });
    act.picture(u"login-list.png"_s);
    act.step(
        u"the saved profile fills the fields"_s,
        [] {
            press(Qt::Key_End);
            press(Qt::Key_Return);
        },
        [] { return textOf(u"txtPass"_s) == u"admin"_s && !QApplication::activePopupWidget(); });
    act.picture(u"login.png"_s);
    act.connect();
    act.await(u"every status and a mod has its picture"_s, showsEveryStatus);
    act.step(
        u"a click selects a row"_s, [] { clickRow(u"fgProfiles"_s, 2); },
        [] { return selectedRow() == 2 && isButton(u"cmdDetach"_s, true); });
    act.picture(u"profiles.png"_s);
}

void lookAround(Act& act)
{
    act.step(
        u"a large reply on a slow link shows its progress"_s,
        [&act] {
            act.tracker.answerNext("GetProfiles", Fault::chunks(450, 700ms));
            clickTab(u"tsMain"_s, u"Profile List"_s);
        },
        [] {
            const auto* bar = seen<QProgressBar>(u"pbData"_s, u"qrvrcProgress"_s);
            return bar && bar->value() > 0 && bar->value() < bar->maximum();
        });
    act.picture(u"progress.png"_s);
    act.await(u"the progress window goes when the reply is complete"_s,
              [] { return !seen(u"qrvrcProgress"_s) && selectedRow() == 0; });
    act.step(
        u"F1 opens the manual"_s, [] { press(Qt::Key_F1); },
        [] {
            const auto* page = seen(u"txtHelp"_s);
            return page && page->window()->isActiveWindow() && textOf(u"txtHelp"_s).size() > 100;
        });
    act.picture(u"help.png"_s);
    act.escape(u"txtHelp"_s);
    act.awaitFrame();
    act.step(
        u"the about window opens"_s, [] { clickTab(u"tsMain"_s, u"About"_s); },
        [] { return seen(u"tsAbout"_s) && !seen(u"qrvrcProfilesList"_s); });
    act.picture(u"about.png"_s);
}

void comeAsOthers(Act& act)
{
    act.signInAs("guest");
    act.step(
        u"a guest may look but not touch"_s, [] { clickRow(u"fgProfiles"_s, 5); },
        [] { return selectedRow() == 5 && isButton(u"cmdAttach"_s, false) && isButton(u"cmdQuit"_s, true); });
    act.picture(u"profiles-guest.png"_s);
    act.signInAs("operator");
    act.openMenu(5);
    act.step(
        u"the menu of the tracking modes opens beside it"_s, [] { clickEntry(u"mnuMode"_s); },
        [] { return seen(u"mnuMode"_s) != nullptr; });
    act.picture(u"menu.png"_s);
    act.escape(u"mnuMode"_s);
    act.escape(u"mnuMain"_s);
}

void toggleReconnecting(Act& act)
{
    act.step(
        u"the second page of the options opens"_s,
        [] {
            clickTab(u"tsMain"_s, u"Options"_s);
            clickTab(u"tsOptions"_s, u"Use"_s);
        },
        [] { return seen(u"chkReconnect"_s) != nullptr; });
    act.step(
        u"a tick is stored"_s,
        [] {
            click(seen<QAbstractButton>(u"chkReconnect"_s));
            click(u"cmdSave"_s);
        },
        [] { return boxSays(u"Settings Saved Successfully."_s); });
    act.dismissBox();
}

void loseAndComeBack(Act& act)
{
    toggleReconnecting(act);
    act.picture(u"options-use.png"_s);
    act.step(
        u"the list is in front"_s, [] { clickTab(u"tsMain"_s, u"Profile List"_s); },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
    act.step(
        u"another row is selected"_s, [] { clickRow(u"fgProfiles"_s, 3); }, [] { return selectedRow() == 3; });
    act.step(
        u"a lost connection waits for its next try"_s,
        [&act] {
            act.tracker.stopListening();
            act.tracker.resetLinks();
        },
        [] { return isLoggedOut() && seen(u"cmdTryNow"_s); });
    act.picture(u"reconnecting.png"_s);
    act.step(
        u"the list is back with the same row selected"_s,
        [&act] {
            act.tracker.listen(act.tracker.port());
            click(seen<QAbstractButton>(u"cmdTryNow"_s));
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && selectedRow() == 3 && !seen(u"cmdTryNow"_s); });
    act.picture(u"reconnected.png"_s);
    toggleReconnecting(act);
    act.step(
        u"the list is in front again"_s, [] { clickTab(u"tsMain"_s, u"Profile List"_s); },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
}

void meetTrouble(Act& act)
{
    act.step(
        u"a profile that cannot be read is reported"_s,
        [&act] {
            act.tracker.answerNext("GetProfiles", Fault::garbageInElement(3));
            clickTab(u"tsMain"_s, u"Profile List"_s);
        },
        [&act] { return boxSays(u"Error Report Sent: Yes"_s) && act.web.reports().size() == 1; });
    act.picture(u"trapped-error.png"_s);
    act.dismissBox();
    act.await(u"the list has recovered"_s, [] { return rowsOf(u"fgProfiles"_s) == 9; });
    act.step(
        u"the login window is back and says when the host closed the connection"_s,
        [&act] {
            act.tracker.stopListening();
            act.tracker.closeLinks();
        },
        [] {
            return isLoggedOut() &&
                   textOf(u"lblNote"_s, u"sbMain"_s).startsWith(u"The host closed the connection at "_s);
        });
    act.picture(u"empty.png"_s);
}

} // namespace

void firstDay(Act& act)
{
    practice::World& world = act.tracker.world();
    world.accounts += powerful(*world.account("moderator"));
    act.arrive();
    act.picture(u"start.png"_s);
    act.typeConnection();
    act.picture(u"login-focus.png"_s);
    findTheWayIn(act);
    lookAround(act);
    comeAsOthers(act);
    loseAndComeBack(act);
    meetTrouble(act);
    act.quit(u"quit.png"_s);
}

} // namespace tour
