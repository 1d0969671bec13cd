#include "tour/Scenes.h"
#include "tour/Screen.h"

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr int sampleAccounts = 6;

/// The sample world with accounts as a host has them, and a log to go with them.
void fill(practice::World& world)
{
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
}

bool isLoaded(int accounts)
{
    return rowsOf(u"mfgUsers"_s) == accounts && rowsOf(u"lstSections"_s) > 0;
}

void openServerManager()
{
    clickTab(u"tsSection"_s, u"Server Manager"_s);
}

} // namespace

void accounts(Act& act)
{
    fill(act.tracker.world());
    act.signIn();
    act.step(u"the server manager opens with the accounts"_s, openServerManager,
             [] { return isLoaded(sampleAccounts); });
    act.step(
        u"the keyboard chooses an account"_s,
        [] {
            press(Qt::Key_Down);
            press(Qt::Key_Down);
        },
        [] { return textOf(u"txtPass"_s) == u"moderator"_s && isButton(u"cmdModify"_s, true); });
    act.picture(u"admin-account.png"_s);
    act.step(
        u"the keyboard goes back to a new account"_s, [] { press(Qt::Key_Home); },
        [] { return textOf(u"cboUser"_s) == u"Add New Admin"_s && isButton(u"cmdAddUser"_s, true); });
    act.step(
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
        [] { return textOf(u"txtPass"_s) == u"spring-2026"_s; });
    act.picture(u"admin-new.png"_s);
    act.step(
        u"the new account is listed"_s, [] { click(u"cmdAddUserImg"_s); },
        [&act] { return isLoaded(sampleAccounts + 1) && act.tracker.world().account("Greenhorn"); });
    act.signInAs("guest");
    act.step(u"the guest may view neither accounts nor log"_s, openServerManager,
             [] { return isLoaded(0) && isButton(u"cmdAddUser"_s, false) && isButton(u"cmdKickUser"_s, false); });
    act.picture(u"admin-denied.png"_s);
    act.quit();
}

} // namespace tour
