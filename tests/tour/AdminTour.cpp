#include "tour/AdminTour.h"

#include "app/qrvrcMain.h"
#include "practice/Framing.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QComboBox>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr int sampleAccounts = 6;

/// The sample world with accounts as a host has them, and a log to go with them.
practice::World busyWorld()
{
    practice::World world = practice::World::lively();
    world.newsEvery = std::chrono::seconds(0);
    const practice::Account like = *world.account("moderator");
    const QList<QList<QByteArray>> people{{"Nightowl", "r7!kestrel", "203.0.113.24"},
                                          {"[QRV] Sgt. Mueller", "m\xfcnchen-1972", ""},
                                          {"weekend crew", "changeme", "198.51.100.7"}};
    for (const QList<QByteArray>& person : people) {
        practice::Account account = like;
        account.name = person[0];
        account.password = person[1];
        account.address = person[2];
        account.connections = person[2].isEmpty() ? 0 : 1;
        world.accounts += account;
        world.log(person[0] + " logged in from " + (person[2].isEmpty() ? QByteArray("192.0.2.80") : person[2]));
    }
    world.log("[QRV] Sgt. Mueller logged out");
    return world;
}

QString chosenUser()
{
    const auto* list = seen<QComboBox>(u"cboUser"_s);
    return list ? list->currentText() : QString();
}

bool isLoaded(int accounts)
{
    return rowsOf(u"mfgUsers"_s) == accounts && rowsOf(u"lstSections"_s) > 0;
}

} // namespace

AdminTour::AdminTour(qrvrcMain& frame, const QDir& pictures) : Act(frame, busyWorld(), pictures)
{
    arrive();
    signIn();
    lookAtOne();
    addOne();
    meetTrouble();
    comeAsGuest();
    askToQuit();
    confirmQuit();
}

void AdminTour::signIn()
{
    typeConnection(u"Practice host"_s);
    m_script.add(
        u"the profile list is there after the login"_s,
        [this] {
            m_tracker.listen(m_tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
    m_script.add(
        u"the server manager opens with the accounts"_s, [] { clickTab(u"tsSection"_s, u"Server Manager"_s); },
        [] { return isLoaded(sampleAccounts); });
}

void AdminTour::lookAtOne()
{
    m_script.add(
        u"the keyboard chooses an account"_s,
        [] {
            for (int step = 0; step < 2; ++step)
                press(Qt::Key_Down);
        },
        [] {
            return chosenUser() == u"moderator"_s && fieldText(u"txtPass"_s) == u"moderator"_s &&
                   isButton(u"cmdModify"_s, true);
        });
    picture(u"admin-account.png"_s);
}

void AdminTour::addOne()
{
    m_script.add(
        u"the keyboard goes back to a new account"_s, [] { press(Qt::Key_Home); },
        [] { return chosenUser() == u"Add New Admin"_s && isButton(u"cmdAddUser"_s, true); });
    m_script.add(
        u"a name and a password are typed, and two boxes ticked"_s,
        [] {
            press(Qt::Key_Tab);
            type("Greenhorn");
            press(Qt::Key_Tab);
            type("spring-2026");
            press(Qt::Key_Tab);
            press(Qt::Key_Space);
            press(Qt::Key_Down);
            press(Qt::Key_Down);
            press(Qt::Key_Space);
        },
        [] { return fieldText(u"txtPass"_s) == u"spring-2026"_s; });
    picture(u"admin-new.png"_s);
    m_script.add(
        u"the new account is listed"_s, [] { click(u"cmdAddUserImg"_s); },
        [this] {
            return isLoaded(sampleAccounts + 1) && fieldText(u"txtUser"_s).isEmpty() &&
                   m_tracker.world().account("Greenhorn");
        });
    picture(u"admin-added.png"_s);
}

void AdminTour::reopen(const QString& what, const std::function<void()>& before, const std::function<bool()>& until)
{
    m_script.add(
        what,
        [before] {
            before();
            clickTab(u"tsSM"_s, u"Admin"_s);
        },
        until);
}

void AdminTour::meetTrouble()
{
    reopen(
        u"a damaged answer is reported, and the list says that it could not be read"_s,
        [this] { m_tracker.answerNextWith("GetProfileAdmins", "900" + practice::envelope("YWRtaW4=|YWRtaW4=||[-]")); },
        [] { return boxSays(u"HandleData"_s) && rowsOf(u"mfgUsers"_s) == 0; });
    picture(u"admin-error.png"_s);
    dismissBox(u"the box of the damaged answer goes"_s);
    reopen(
        u"a profile without accounts has an empty list"_s,
        [this] { m_tracker.answerNextWith("GetProfileAdmins", practice::envelope("[-][-]")); },
        [] { return rowsOf(u"mfgUsers"_s) == 0 && linesOf(u"lstLog"_s).isEmpty() && rowsOf(u"lstSections"_s) > 0; });
    picture(u"admin-empty.png"_s);
}

void AdminTour::comeAsGuest()
{
    m_script.add(
        u"the login window is there once the host is gone"_s, [this] { m_tracker.closeLinks(); },
        [] { return seen<QWidget>(u"qrvrcLogin"_s) && isLoggedOut(); });
    m_script.add(
        u"the fields take another account"_s,
        [] {
            for (const auto& field : {u"txtUser"_s, u"txtPass"_s}) {
                click(field);
                press(Qt::Key_A, Qt::ControlModifier);
                type("guest");
            }
        },
        [] { return fieldText(u"txtUser"_s) == u"guest"_s && fieldText(u"txtPass"_s) == u"guest"_s; });
    m_script.add(
        u"the guest has the profile list"_s, [] { click(u"cmdConnectImg"_s); },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
    m_script.add(
        u"the guest may view neither accounts nor log"_s, [] { clickTab(u"tsSection"_s, u"Server Manager"_s); },
        [] {
            return rowsOf(u"lstSections"_s) > 0 && rowsOf(u"mfgUsers"_s) == 0 && isButton(u"cmdAddUser"_s, false) &&
                   isButton(u"cmdKickUser"_s, false);
        });
    picture(u"admin-denied.png"_s);
}

} // namespace tour
