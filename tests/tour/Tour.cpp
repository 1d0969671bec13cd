#include "tour/Tour.h"

#include "app/qrvrcMain.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QMessageBox>
#include <QProgressBar>
#include <QTabBar>
#include <QTableView>
#include <QTextBrowser>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tour {

namespace {

using practice::Fault;

const QString profileName = u"Practice host"_s;

/// The sample world and one account more, which may do everything but is none of the super accounts.
practice::World sampleWorld()
{
    practice::World world = practice::World::lively();
    practice::Account account = *world.account("moderator");
    account.name = "operator";
    account.password = "operator";
    account.privileges = practice::Privileges::everythingIn(practice::standardSections());
    world.accounts += account;
    return world;
}

} // namespace

Tour::Tour(qrvrcMain& frame, practice::WebSide& web, const QDir& pictures)
    : Act(frame, sampleWorld(), pictures),
      m_web(web)
{
    arrive();
    picture(u"start.png"_s);
    typeConnection(profileName);
    picture(u"login-focus.png"_s);
    beRefused();
    chooseProfile();
    signInFirst();
    watchProgress();
    readHelp();
    lookAround();
    signInAsGuest();
    openMenu();
    meetGarbage();
    loseLink();
    askToQuit();
    picture(u"quit.png"_s);
    confirmQuit();
}

void Tour::beRefused()
{
    m_script.add(
        u"a refused connection is told in a box"_s, [] { press(Qt::Key_Space); },
        [] { return boxSays(u"10061"_s) && textOf(u"lblStatus"_s, u"qrvrcLogin"_s) == u"Error"_s; });
    picture(u"login-error.png"_s);
    dismissBox(u"the box of the refused connection goes"_s);
}

void Tour::chooseProfile()
{
    const auto open = [] { click(u"cboProfile"_s); };
    const auto isOpen = [] {
        const auto* list = seen<QComboBox>(u"cboProfile"_s);
        return list && QApplication::activePopupWidget();
    };
    m_script.add(u"the list of profiles opens"_s, open, isOpen);
    m_script.add(
        u"the entry for a new profile empties the fields"_s,
        [] {
            press(Qt::Key_Home);
            press(Qt::Key_Return);
        },
        [] { return fieldText(u"txtHost"_s).isEmpty() && fieldText(u"txtProfile"_s).isEmpty(); });
    m_script.add(u"the list of profiles opens again"_s, open, isOpen);
    picture(u"login-list.png"_s);
    m_script.add(
        u"the saved profile fills the fields"_s,
        [] {
            press(Qt::Key_End);
            press(Qt::Key_Return);
        },
        [] {
            return fieldText(u"txtProfile"_s) == profileName && fieldText(u"txtHost"_s) == u"127.0.0.1"_s &&
                   fieldText(u"txtPass"_s) == u"admin"_s && !QApplication::activePopupWidget();
        });
    picture(u"login.png"_s);
}

void Tour::signInFirst()
{
    m_script.add(
        u"the profile list shows nine profiles after the login"_s,
        [this] {
            m_tracker.listen(m_tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && seen<QTabBar>(u"tsSection"_s); });
    m_script.await(u"every status and a mod has its picture"_s, showsEveryStatus);
    m_script.add(
        u"a click selects a row"_s, [] { clickRow(u"fgProfiles"_s, 2); },
        [] { return selectedRow() == 2 && isButton(u"cmdDetach"_s, true); });
    picture(u"profiles.png"_s);
    m_script.add(
        u"a refresh that nobody asked for changes neither selection nor buttons"_s,
        [this] { m_tracker.forgetRequests(); },
        [this] {
            // The second begins when the first has been shown.
            return m_tracker.requests().size() == 2 && selectedRow() == 2 && isButton(u"cmdDetach"_s, true) &&
                   isButton(u"cmdModify"_s, true);
        });
}

void Tour::watchProgress()
{
    m_script.add(
        u"a large reply on a slow link shows its progress"_s,
        [this] {
            m_tracker.answerNext("GetProfiles", Fault::chunks(450, 700ms));
            clickTab(u"tsMain"_s, u"Profile List"_s);
        },
        [] {
            const auto* bar = seen<QProgressBar>(u"pbData"_s, u"qrvrcProgress"_s);
            return bar && bar->value() > 0 && bar->value() < bar->maximum() &&
                   textOf(u"lblPercent"_s, u"qrvrcProgress"_s) != u"0 %"_s;
        });
    picture(u"progress.png"_s);
    m_script.await(u"the progress window goes when the reply is complete"_s,
                   [] { return !seen<QWidget>(u"qrvrcProgress"_s) && selectedRow() == 0; });
}

void Tour::readHelp()
{
    m_script.add(
        u"F1 opens the manual at the profile list"_s, [] { press(Qt::Key_F1); },
        [] {
            const auto* page = seen<QTextBrowser>(u"txtHelp"_s);
            return page && page->window()->isActiveWindow() && page->source().fileName() == u"ProfileList.html"_s &&
                   page->toPlainText().size() > 100;
        });
    picture(u"help.png"_s);
    m_script.add(
        u"Escape closes the manual"_s, [] { press(Qt::Key_Escape); }, [] { return !seen<QWidget>(u"txtHelp"_s); });
    awaitFrame();
}

void Tour::openProfileList()
{
    m_script.add(
        u"the profile list comes back"_s, [] { clickTab(u"tsMain"_s, u"Profile List"_s); },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
}

void Tour::lookAround()
{
    m_script.add(
        u"the about window opens"_s, [] { clickTab(u"tsMain"_s, u"About"_s); },
        [] { return seen<QTabBar>(u"tsAbout"_s) && !seen<QWidget>(u"qrvrcProfilesList"_s); });
    picture(u"about.png"_s);
    openProfileList();
    m_script.add(
        u"the server manager opens"_s, [] { clickTab(u"tsSection"_s, u"Server Manager"_s); },
        [] { return seen<QTabBar>(u"tsSM"_s) && seen<QWidget>(u"qrvrcProfileAdmin"_s); });
    picture(u"server-manager.png"_s);
    m_script.add(
        u"the profile manager comes back"_s, [] { clickTab(u"tsSection"_s, u"Profile Manager"_s); },
        [] { return seen<QTabBar>(u"tsMain"_s) && rowsOf(u"fgProfiles"_s) == 9; });
}

void Tour::signOut()
{
    m_script.add(
        u"the login window shows the connection"_s, [] { clickTab(u"tsMain"_s, u"Login"_s); },
        [] { return isConnected() && isButton(u"cmdConnect"_s, false); });
    m_script.add(
        u"the button disconnects"_s, [] { click(u"cmdDisconnectImg"_s); },
        [this] { return isLoggedOut() && m_tracker.links() == 0; });
}

void Tour::signInAs(const QByteArray& account)
{
    m_script.add(
        u"%1 sees the profile list"_s.arg(QLatin1String(account)),
        [account] {
            for (const QString& field : {u"txtUser"_s, u"txtPass"_s}) {
                click(field);
                press(Qt::Key_A, Qt::ControlModifier);
                type(account);
            }
            press(Qt::Key_Return);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && selectedRow() == 0; });
}

void Tour::signInAsGuest()
{
    signOut();
    picture(u"disconnected.png"_s);
    signInAs("guest");
    m_script.add(
        u"a guest may look but not touch"_s, [] { clickRow(u"fgProfiles"_s, 5); },
        [] {
            return selectedRow() == 5 && isButton(u"cmdAttach"_s, false) && isButton(u"cmdModify"_s, false) &&
                   isButton(u"cmdQuit"_s, true);
        });
    picture(u"profiles-guest.png"_s);
}

void Tour::openMenu()
{
    signOut();
    signInAs("operator");
    m_script.add(
        u"a right click selects the row and opens its menu"_s, [] { clickRow(u"fgProfiles"_s, 5, Qt::RightButton); },
        [] {
            const auto* menu = seen<QMenu>(u"mnuMain"_s);
            return menu && selectedRow() == 5 && menu->findChild<QAction*>(u"mnuAttach"_s)->isEnabled();
        });
    m_script.add(
        u"the menu of the tracking modes opens beside it"_s,
        [] { clickEntry(seen<QMenu>(u"mnuMain"_s), u"mnuMode"_s); },
        [] { return seen<QMenu>(u"mnuMode"_s) != nullptr; });
    picture(u"menu.png"_s);
    m_script.add(
        u"Escape closes the inner menu"_s, [] { press(Qt::Key_Escape); },
        [] { return !seen<QMenu>(u"mnuMode"_s) && seen<QMenu>(u"mnuMain"_s); });
    m_script.add(
        u"Escape closes the menu"_s, [] { press(Qt::Key_Escape); }, [] { return !QApplication::activePopupWidget(); });
}

void Tour::meetGarbage()
{
    m_script.add(
        u"a profile that cannot be read is reported"_s,
        [this] {
            m_tracker.answerNext("GetProfiles", Fault::garbageInElement(3));
            clickTab(u"tsMain"_s, u"Profile List"_s);
        },
        [this] { return boxSays(u"Error Report Sent: Yes"_s) && m_web.reports().size() == 1; });
    picture(u"trapped-error.png"_s);
    dismissBox(u"the box of the error goes, and the profiles before the broken one are shown"_s);
    m_script.await(u"the list has recovered"_s, [] { return rowsOf(u"fgProfiles"_s) == 9; });
}

void Tour::loseLink()
{
    m_script.add(
        u"the login window is back and says when the host closed the connection"_s,
        [this] {
            m_tracker.stopListening();
            m_tracker.closeLinks();
        },
        [] {
            return isLoggedOut() &&
                   textOf(u"lblNote"_s, u"sbMain"_s).startsWith(u"The host closed the connection at "_s);
        });
    picture(u"empty.png"_s);
}

} // namespace tour
