#include "app/qrvrcMain.h"
#include "practice/web/UpdatePages.h"
#include "tour/Scenes.h"
#include "tour/Screen.h"

#include <QFile>
#include <QProgressBar>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tour {

namespace {

using practice::PageFault;

const QString update = u"qrvrcUpdate"_s;
const QString pluginWindow = u"qrvrcPlugins"_s;
constexpr int programBytes = 100'000;
constexpr auto halfTime = 1500ms; // in which half of the program arrives

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

/// What cannot be laid out is missing from what the steps expect.
void layOut(const Act& act)
{
    act.home.mkpath(u"settings"_s);
    write(act.home.filePath(u"settings/config.ini"_s), "[Settings]\r\nUpdateUrl=\r\nCheckForUpdates=1\r\n");
    write(act.home.filePath(u"maps.dat"_s), "the maps of the first version");
    write(act.home.filePath(programName), "the running program");
    act.home.mkpath(u"Replaced"_s); // by an earlier update, which can still be undone
    write(act.home.filePath(u"Replaced/maps.dat"_s), "older maps");
    act.home.mkpath(u"Plugins"_s);
    const QString plugin = act.home.filePath(u"Plugins/qrvrcWatch.dll"_s);
    QFile::copy(QCoreApplication::applicationDirPath() + u"/Plugins/qrvrcWatch.dll"_s, plugin);
    act.frame.core().components.registerFile(plugin.toStdU16String(), [](const ComponentFault&) {});
}

void offerUpdates(practice::UpdatePages& pages)
{
    pages.offerClientFile({.name = "qrvv3rc.exe",
                           .folder = "\\",
                           .type = "executable file",
                           .description = "(QRV) Main Executable",
                           .version = "3.1.0.0",
                           .body = QByteArray(programBytes, 'p')});
    for (const QByteArray& name : QList<QByteArray>{"weapons", "maps"}) {
        pages.offerClientFile({.name = name + ".dat",
                               .folder = "\\",
                               .type = "data file",
                               .description = "Names of the " + name,
                               .version = "1.1.0.0",
                               .body = name});
    }
    pages.offerPluginFile({.name = "qrvrcWatch.html",
                           .type = "Help File",
                           .description = "Help of Match Watch",
                           .version = "1.0.0.0",
                           .body = "<p>Match Watch</p>"});
    pages.setNews("Version 3.1 is out.\r\n\r\nIt knows more maps and more weapons. Please update before you connect "
                  "to a host that has been updated.\r\n");
}

/// A grid of one of the two windows has that many rows; both have the same name.
bool hasRows(const QString& window, int rows)
{
    return seen(window) && rowsOf(u"lstQRV"_s) == rows && isButton(u"cmdGetUpdates"_s, true);
}

void download(Act& act)
{
    practice::UpdatePages& pages = act.web.updates();
    act.step(
        u"the update window shows the news"_s, [] { clickTab(u"tsMain"_s, u"Update"_s); },
        [] { return seen(update) && isButton(u"cmdUpdateQRV"_s, true); });
    act.step(
        u"the check finds a newer, a new and a changed file"_s, [] { click(u"cmdUpdateQRVImg"_s); },
        [] { return hasRows(update, 6); });
    act.picture(u"update-shown.png"_s);
    act.step(
        u"the download has come half-way"_s,
        [&pages] {
            pages.misbehave("qrvv3rc.fle",
                            {.kind = PageFault::Kind::Slow, .number = programBytes / 2, .pause = halfTime});
            click(u"cmdGetUpdatesImg"_s);
        },
        [] {
            const auto* bar = seen<QProgressBar>(u"pbDwnld"_s);
            return bar && bar->value() > 0 && isButton(u"cmdCancel"_s, true);
        });
    act.picture(u"update-download.png"_s);
    act.await(u"the running program waits for a restart"_s,
              [] { return boxSays(u"required to install the updates."_s); });
    act.picture(u"update-restart.png"_s);
    act.dismissBox();
    act.step(
        u"the check finds what still waits, and what was not wanted"_s,
        [&pages] {
            pages.misbehave("qrvv3rc.fle", {.kind = PageFault::Kind::CutOff, .number = programBytes / 3});
            click(u"cmdUpdateQRVImg"_s);
        },
        [] { return hasRows(update, 4); });
    act.step(
        u"a transfer that breaks off is told"_s, [] { click(u"cmdGetUpdatesImg"_s); },
        [] { return boxSays(u"qrvv3rc.exe: the transfer broke off"_s); });
    act.picture(u"update-failed.png"_s);
    act.dismissBox();
}

void lookAtPlugins(Act& act)
{
    act.step(
        u"the plugin window lists the plugin"_s, [] { clickTab(u"tsMain"_s, u"Plugins"_s); },
        [] { return linesOf(u"lstPlugins"_s) == QStringList{u"Match Watch"_s}; });
    act.step(
        u"a click shows what the plugin says of itself"_s, [] { clickLine(u"lstPlugins"_s, 0); },
        [] { return textOf(u"lblStatus"_s, pluginWindow) == u"Status: Disabled"_s; });
    act.step(
        u"the check finds the plugin's help"_s, [] { click(u"cmdCheckPluginsImg"_s); },
        [] { return hasRows(pluginWindow, 2); });
    act.picture(u"plugins.png"_s);
}

} // namespace

void updates(Act& act)
{
    layOut(act);
    offerUpdates(act.web.updates());
    act.step(
        u"the start tells of updates for the program and for plugins"_s,
        [&act] {
            act.frame.show();
            act.frame.activateWindow();
        },
        [] { return boxSays(u"QRVRC Core Components and QRVRC Plugins Available."_s); });
    act.picture(u"update-found.png"_s);
    act.dismissBox();
    download(act);
    act.step(
        u"the options window opens"_s, [] { clickTab(u"tsMain"_s, u"Options"_s); },
        [] { return isButton(u"cmdSave"_s, true); });
    act.picture(u"options.png"_s);
    lookAtPlugins(act);
    act.quit();
}

} // namespace tour
