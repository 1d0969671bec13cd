#include "app/qrvrcMain.h"
#include "plugins/AwaitComponent.h"
#include "practice/answers/Answers.h"
#include "tour/Scenes.h"
#include "tour/Screen.h"

#include <QFile>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tour {

namespace {

using practice::Fault;

constexpr int reserveRow = 6; // nobody plays there, and its game is one that can be started
constexpr int reserveId = reserveRow + 1;
constexpr auto shortSecond = 100ms; // a map takes some seconds to load

const QString checkWindow = u"qrvrcDllProgress"_s;
const QString watchLine = u"Unregistered Plugin File: \\Plugins\\qrvrcWatch.dll"_s;
const QString brokenLine = u"Unregistered Plugin File: \\Plugins\\broken.dll"_s;

/// What cannot be laid out is missing from the window of the first step.
void layOut(const Act& act)
{
    act.home.mkpath(u"Plugins"_s);
    const QDir folder(act.home.filePath(u"Plugins"_s));
    const QDir examples(QCoreApplication::applicationDirPath() + u"/Plugins"_s);
    for (const QString& file : {u"qrvrcBHDGS.dll"_s, u"qrvrcWatch.dll"_s, u"qrvrcWatch.html"_s})
        QFile::copy(examples.filePath(file), folder.filePath(file));
    QFile broken(folder.filePath(u"broken.dll"_s));
    if (broken.open(QIODevice::WriteOnly))
        broken.write("A library that the download left half finished.\r\n");
    static_cast<void>(awaitComponent([&](const Components::Done& done) {
        act.frame.core().components.registerFile(folder.filePath(u"qrvrcBHDGS.dll"_s).toStdU16String(), done);
    }));
}

bool checkLists(const QStringList& lines)
{
    QStringList listed = linesOf(u"List1"_s);
    listed.sort();
    return isFront(checkWindow) && listed == lines;
}

void sortOut(Act& act)
{
    act.await(u"the check lists the plugin that is not registered, and the file that is none"_s, [] {
        return checkLists({brokenLine, watchLine});
    });
    const auto watchRow = [] { return static_cast<int>(linesOf(u"List1"_s).indexOf(watchLine)); };
    const auto isTicked = [watchRow] { return selectedLine(u"List1"_s) == watchRow(); };
    act.step(
        u"a click ticks the plugin"_s, [watchRow] { clickLine(u"List1"_s, watchRow()); },
        [isTicked] { return isTicked() && isButton(u"cmdProceed"_s, true); });
    act.picture(u"component-check.png"_s);
    act.step(
        u"a right click opens the menu and leaves the tick"_s,
        [watchRow] { clickLine(u"List1"_s, watchRow(), Qt::RightButton); },
        [isTicked] { return seen(u"mnuMain"_s) && isTicked(); });
    act.picture(u"component-menu.png"_s);
    act.step(
        u"the menu registers the plugin"_s, [] { clickEntry(u"mnuRegister"_s); },
        [] { return boxSays(u"\\Plugins\\qrvrcWatch.dll Registered Successfully."_s); });
    act.answerBox();
    act.await(u"the registered plugin is no longer listed"_s, [] { return checkLists({brokenLine}); });
    act.step(
        u"going on without the broken file asks first"_s, [] { click(u"cmdProceedImg"_s); },
        [] { return boxSays(u"You still have unregistered ActiveX files!"_s); });
    act.picture(u"component-proceed.png"_s);
    act.answerBox(QMessageBox::Yes);
}

/// The process that the host started for the profile, or null.
const practice::HostProcess* startedProcess(const practice::World& world)
{
    for (const practice::HostProcess& process : world.processes) {
        if (process.startedFor == reserveId)
            return &process;
    }
    return nullptr;
}

void startGame(Act& act)
{
    act.step(
        u"the start plugin is enabled, so that a game can be started"_s, [] { clickRow(u"fgProfiles"_s, reserveRow); },
        [] { return selectedRow() == reserveRow && isButton(u"cmdStart"_s, true); });
    act.step(
        u"the start plugin shows its window, and the host starts the game"_s,
        [&act] {
            // The picker would lie over that window; the processes are told when it has been seen.
            act.tracker.answerNext("Attach", Fault::never());
            act.tracker.forgetRequests();
            click(u"cmdStartImg"_s);
        },
        [&act] {
            const QList<QByteArray>& requests = act.tracker.requests();
            return isFront(u"qrvrcBHDGS"_s) && startedProcess(act.tracker.world()) && !requests.isEmpty() &&
                   requests.last().startsWith("Attach");
        });
    act.picture(u"plugin-window.png"_s);
    act.escape(u"qrvrcBHDGS"_s);
    act.step(
        u"the picker offers the processes of the host, the new one at the end"_s,
        [&act] {
            practice::World& world = act.tracker.world();
            const auto request = practice::Request::parse(act.tracker.requests().last());
            act.tracker.send(practice::answerRequest(world, *world.account("admin"), request).body);
        },
        [&act] {
            const practice::HostProcess* started = startedProcess(act.tracker.world());
            const QStringList ids = linesOf(u"lstID"_s);
            return isFront(u"qrvrcProcesses"_s) && !ids.isEmpty() && started &&
                   ids.last() == QString::number(started->id);
        });
}

void attach(Act& act)
{
    const auto last = [] { return static_cast<int>(linesOf(u"lstID"_s).size()) - 1; };
    act.step(
        u"a click chooses the new process in both columns"_s, [last] { clickLine(u"lstProcess"_s, last()); },
        [last] { return selectedLine(u"lstID"_s) == last() && selectedLine(u"lstProcess"_s) == last(); });
    act.picture(u"process-picker.png"_s);
    act.step(
        u"the profile follows the new process, whose game loads"_s,
        [] { click(u"cmdAttachImg"_s, u"qrvrcProcesses"_s); },
        [&act] {
            const practice::HostProcess* started = startedProcess(act.tracker.world());
            return !seen(u"qrvrcProcesses"_s) && started &&
                   act.tracker.world().profile(reserveId)->process == started->id &&
                   statusOf(reserveRow) == static_cast<int>(practice::GameState::Loading);
        });
    act.awaitFrame();
    const auto isHosting = [] { return statusOf(reserveRow) == static_cast<int>(practice::GameState::Hosting); };
    act.step(
        u"the list follows the game until it is played"_s, [&act] { act.tracker.setLively(true, shortSecond); },
        [isHosting] { return isHosting() && selectedRow() >= 0; });
    act.step(
        u"the profile that plays can be stopped and detached"_s,
        [&act] {
            act.tracker.setLively(false);
            clickRow(u"fgProfiles"_s, reserveRow);
        },
        [isHosting] {
            return isHosting() && selectedRow() == reserveRow && isButton(u"cmdStop"_s, true) &&
                   isButton(u"cmdDetach"_s, true);
        });
    act.picture(u"started.png"_s);
}

void watchMatch(Act& act)
{
    act.step(
        u"the server manager opens"_s, [] { clickTab(u"tsSection"_s, u"Server Manager"_s); },
        [] { return seen(u"tsSM"_s) != nullptr; });
    act.step(
        u"the plugin's section shows its page for the profile"_s, [] { clickTab(u"tsSM"_s, u"Match Watch"_s); },
        [] { return textOf(u"lblProfile"_s, u"qrvrcWatch"_s) == u"Profile %1"_s.arg(reserveId); });
    for (int lines = 1; lines <= 4; ++lines) {
        act.step(
            u"the page shows message %1 of the tracker"_s.arg(lines), [&act] { act.tracker.sendPluginNews(); },
            [lines] { return linesOf(u"lstMessages"_s).size() == lines; });
    }
    act.picture(u"plugin-tab.png"_s);
}

} // namespace

void plugins(Act& act)
{
    act.tracker.world().newsEvery = 0s;
    layOut(act);
    sortOut(act);
    act.signIn();
    startGame(act);
    attach(act);
    watchMatch(act);
    act.quit();
}

} // namespace tour
