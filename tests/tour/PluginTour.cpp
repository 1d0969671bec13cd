#include "tour/PluginTour.h"

#include "app/qrvrcMain.h"
#include "practice/Answers.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QAbstractButton>
#include <QDialog>
#include <QFile>
#include <QMenu>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tour {

namespace {

using practice::Fault;

const QString profileName = u"Practice host"_s;
const QByteArray account = "admin";
constexpr int reserveRow = 6; // nobody plays there, and its game is one that can be started
constexpr int reserveId = reserveRow + 1;
constexpr auto shortSecond = 100ms; // a map takes some seconds to load

const QString watchLine = u"Unregistered Plugin File: \\Plugins\\qrvrcWatch.dll"_s;
const QString brokenLine = u"Unregistered Plugin File: \\Plugins\\broken.dll"_s;

/// The sample world, whose news come when they are asked for.
practice::World quietWorld()
{
    practice::World world = practice::World::lively();
    world.newsEvery = 0s;
    return world;
}

bool checkLists(const QStringList& lines)
{
    const auto* window = seen<QDialog>(u"qrvrcDllProgress"_s);
    QStringList listed = linesOf(u"List1"_s);
    listed.sort();
    return window && window->windowTitle() == u"Problematic ActiveX Files"_s && listed == lines;
}

bool isFront(const QString& dialog)
{
    const auto* window = seen<QDialog>(dialog);
    if (window && !hasWindowManager())
        window->window()->activateWindow();
    return window && window->isActiveWindow();
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

} // namespace

PluginTour::PluginTour(qrvrcMain& frame, const QDir& folder, const QDir& examples, const QDir& pictures)
    : Act(frame, quietWorld(), pictures)
{
    layOut(folder, examples);
    sortOut();
    signIn();
    startGame();
    attach();
    seeItPlayed();
    watchMatch();
    askToQuit();
    confirmQuit();
}

/// What cannot be laid out is missing from the window of the first step.
void PluginTour::layOut(const QDir& folder, const QDir& examples)
{
    folder.mkpath(u"Plugins"_s);
    const QDir plugins(folder.filePath(u"Plugins"_s));
    for (const QString& file : {u"qrvrcBHDGS.dll"_s, u"qrvrcWatch.dll"_s, u"qrvrcWatch.html"_s})
        QFile::copy(examples.filePath(file), plugins.filePath(file));
    QFile broken(plugins.filePath(u"broken.dll"_s));
    if (broken.open(QIODevice::WriteOnly))
        broken.write("A library that the download left half finished.\r\n");
    broken.close();
    m_frame.core().components.registerFile(plugins.filePath(u"qrvrcBHDGS.dll"_s).toStdU16String());
}

void PluginTour::sortOut()
{
    m_script.await(u"the check lists the plugin that is not registered, and the file that is none"_s, [] {
        return isFront(u"qrvrcDllProgress"_s) && checkLists({brokenLine, watchLine});
    });
    const auto watchRow = [] { return static_cast<int>(linesOf(u"List1"_s).indexOf(watchLine)); };
    const auto isTicked = [watchRow] { return selectedLine(u"List1"_s) == watchRow(); };
    m_script.add(
        u"a click ticks the plugin"_s, [watchRow] { clickLine(u"List1"_s, watchRow()); },
        [isTicked] { return isTicked() && isButton(u"cmdProceed"_s, true) && isButton(u"cmdExport"_s, true); });
    picture(u"component-check.png"_s);
    m_script.add(
        u"a right click opens the menu and leaves the tick"_s,
        [watchRow] { clickLine(u"List1"_s, watchRow(), Qt::RightButton); },
        [isTicked] { return seen<QMenu>(u"mnuMain"_s) && isTicked(); });
    picture(u"component-menu.png"_s);
    m_script.add(
        u"the menu registers the plugin"_s, [] { clickEntry(seen<QMenu>(u"mnuMain"_s), u"mnuRegister"_s); },
        [] { return boxSays(u"\\Plugins\\qrvrcWatch.dll Registered Successfully."_s); });
    answerBox(u"the box of the registered plugin goes"_s, QMessageBox::Ok);
    m_script.await(u"the registered plugin is no longer listed"_s,
                   [] { return isFront(u"qrvrcDllProgress"_s) && checkLists({brokenLine}); });
    m_script.add(
        u"going on without the broken file asks first"_s, [] { click(u"cmdProceedImg"_s); },
        [] { return boxSays(u"You still have unregistered ActiveX files!"_s); });
    picture(u"component-proceed.png"_s);
    answerBox(u"the answer Yes ends the check"_s, QMessageBox::Yes);
    arrive();
}

void PluginTour::signIn()
{
    typeConnection(profileName);
    m_script.add(
        u"the profile list is there after the login"_s,
        [this] {
            m_tracker.listen(m_tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
    m_script.await(u"every status and a mod has its picture"_s, showsEveryStatus);
    m_script.add(
        u"the start plugin is enabled, so that a game can be started"_s, [] { clickRow(u"fgProfiles"_s, reserveRow); },
        [] { return selectedRow() == reserveRow && isButton(u"cmdStart"_s, true); });
    picture(u"startable.png"_s);
}

void PluginTour::startGame()
{
    m_script.add(
        u"the start plugin shows its window, and the host starts the game"_s,
        [this] {
            // The picker would lie over that window; the processes are told when it has been seen.
            m_tracker.answerNext("Attach", Fault::never());
            m_tracker.forgetRequests();
            click(u"cmdStartImg"_s);
        },
        [this] {
            const bool asksForProcesses =
                m_tracker.requests().value(m_tracker.requests().size() - 1).startsWith("Attach");
            return isFront(u"qrvrcBHDGS"_s) && startedProcess(m_tracker.world()) && asksForProcesses;
        });
    picture(u"plugin-window.png"_s);
    m_script.add(
        u"the plugin's window closes"_s, [] { press(Qt::Key_Escape); }, [] { return !seen<QDialog>(u"qrvrcBHDGS"_s); });
    m_script.add(
        u"the picker offers the processes of the host, the new one at the end"_s,
        [this] {
            practice::World& world = m_tracker.world();
            const auto request = practice::Request::parse(m_tracker.requests().last());
            m_tracker.send(practice::answerRequest(world, *world.account(account), request).body);
        },
        [this] {
            const practice::HostProcess* started = startedProcess(m_tracker.world());
            const QStringList ids = linesOf(u"lstID"_s);
            return isFront(u"qrvrcProcesses"_s) && ids.size() == m_tracker.world().processes.size() && started &&
                   ids.last() == QString::number(started->id) && linesOf(u"lstProcess"_s).size() == ids.size();
        });
}

void PluginTour::attach()
{
    const auto last = [] { return static_cast<int>(linesOf(u"lstID"_s).size()) - 1; };
    m_script.add(
        u"a click chooses the new process in both columns"_s, [last] { clickLine(u"lstProcess"_s, last()); },
        [last] { return selectedLine(u"lstID"_s) == last() && selectedLine(u"lstProcess"_s) == last(); });
    picture(u"process-picker.png"_s);
    m_script.add(
        u"the profile follows the new process, whose game loads"_s,
        [] { click(u"cmdAttachImg"_s, u"qrvrcProcesses"_s); },
        [this] {
            const practice::HostProcess* started = startedProcess(m_tracker.world());
            return !seen<QDialog>(u"qrvrcProcesses"_s) && started &&
                   m_tracker.world().profile(reserveId)->process == started->id &&
                   statusOf(reserveRow) == static_cast<int>(practice::GameState::Loading);
        });
    awaitFrame();
}

void PluginTour::seeItPlayed()
{
    const auto isHosting = [] {
        return statusOf(reserveRow) == static_cast<int>(practice::GameState::Hosting) && selectedRow() >= 0;
    };
    m_script.add(
        u"the list follows the game until it is played"_s, [this] { m_tracker.setLively(true, shortSecond); },
        isHosting);
    m_script.add(
        u"the profile that plays can be stopped and detached"_s,
        [this] {
            m_tracker.setLively(false);
            clickRow(u"fgProfiles"_s, reserveRow);
        },
        [isHosting] {
            return isHosting() && selectedRow() == reserveRow && isButton(u"cmdStop"_s, true) &&
                   isButton(u"cmdDetach"_s, true);
        });
    picture(u"started.png"_s);
}

void PluginTour::watchMatch()
{
    m_script.add(
        u"the server manager has the plugin's section"_s, [] { clickTab(u"tsSection"_s, u"Server Manager"_s); },
        [] { return hasTab(u"tsSM"_s, u"Match Watch"_s); });
    m_script.add(
        u"the section shows the plugin's page for the profile"_s, [] { clickTab(u"tsSM"_s, u"Match Watch"_s); },
        [] { return textOf(u"lblProfile"_s, u"qrvrcWatch"_s) == u"Profile %1"_s.arg(reserveId); });
    for (int lines = 1; lines <= 4; ++lines) {
        m_script.add(
            u"the page shows message %1 of the tracker"_s.arg(lines), [this] { m_tracker.sendPluginNews(); },
            [lines] {
                const QStringList shown = linesOf(u"lstMessages"_s);
                return shown.size() == lines && shown.last().contains(u" eliminated "_s);
            });
    }
    picture(u"plugin-tab.png"_s);
}

} // namespace tour
