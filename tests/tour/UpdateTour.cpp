#include "tour/UpdateTour.h"

#include "app/qrvrcMain.h"
#include "practice/UpdatePages.h"
#include "practice/WebSide.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QFile>
#include <QProgressBar>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace tour {

namespace {

using practice::PageFault;

const QString update = u"qrvrcUpdate"_s;
const QString plugins = u"qrvrcPlugins"_s;
constexpr int programBytes = 100'000;
constexpr auto halfTime = 1500ms; // in which half of the program arrives

void write(const QString& path, const QByteArray& bytes)
{
    QFile file(path);
    if (file.open(QIODevice::WriteOnly))
        file.write(bytes);
}

/// A grid of one of the two windows has that many rows; both have the same name.
bool hasRows(const QString& window, int rows)
{
    return seen<QWidget>(window) && rowsOf(u"lstQRV"_s) == rows;
}

} // namespace

UpdateTour::UpdateTour(qrvrcMain& frame, practice::WebSide& web, const QDir& folder, const QDir& examples,
                       const QDir& pictures)
    : Act(frame, practice::World::small(), pictures),
      m_pages(web.updates())
{
    layOut(folder, examples);
    offerUpdates();
    beTold();
    lookAtUpdates();
    download();
    meetErrors();
    findNothing();
    setOptions();
    lookAtPlugins();
    askToQuit();
    confirmQuit();
}

QString UpdateTour::programName()
{
    return u"qrvv3rc"_s;
}

/// What cannot be laid out is missing from what the steps expect.
void UpdateTour::layOut(const QDir& folder, const QDir& examples)
{
    folder.mkpath(u"settings"_s);
    write(folder.filePath(u"settings/config.ini"_s), "[Settings]\r\nUpdateUrl=\r\nCheckForUpdates=1\r\n");
    write(folder.filePath(u"maps.dat"_s), "the maps of the first version");
    write(folder.filePath(programName()), "the running program");
    folder.mkpath(u"Plugins"_s);
    const QString plugin = folder.filePath(u"Plugins/qrvrcWatch.dll"_s);
    QFile::copy(examples.filePath(u"qrvrcWatch.dll"_s), plugin);
    m_frame.core().components.registerFile(plugin.toStdU16String());
}

void UpdateTour::offerUpdates()
{
    m_pages.offerClientFile({.name = "qrvv3rc.exe",
                             .folder = "\\",
                             .type = "executable file",
                             .description = "(QRV) Main Executable",
                             .version = "3.1.0.0",
                             .body = QByteArray(programBytes, 'p')});
    m_pages.offerClientFile({.name = "weapons.dat",
                             .folder = "\\",
                             .type = "data file",
                             .description = "Names of the weapons",
                             .version = "1.0.0.0",
                             .body = "weapons"});
    m_pages.offerClientFile({.name = "maps.dat",
                             .folder = "\\",
                             .type = "data file",
                             .description = "Names of the maps",
                             .version = "1.1.0.0",
                             .body = "maps"});
    m_pages.offerPluginFile({.name = "qrvrcWatch.html",
                             .type = "Help File",
                             .description = "Help of Match Watch",
                             .version = "1.0.0.0",
                             .body = "<p>Match Watch</p>"});
    m_pages.setNews("Version 3.1 is out.\r\n\r\nIt knows more maps and more weapons. Please update before you connect "
                    "to a host that has been updated.\r\n");
}

void UpdateTour::beTold()
{
    m_script.add(
        u"the start tells of updates for the program and for plugins"_s,
        [this] {
            m_frame.show();
            m_frame.activateWindow();
        },
        [] { return boxSays(u"QRVRC Core Components and QRVRC Plugins Available."_s); });
    picture(u"update-found.png"_s);
    dismissBox(u"the box of the start goes"_s);
}

void UpdateTour::lookAtUpdates()
{
    m_script.add(
        u"the update window shows the news"_s, [] { clickTab(u"tsMain"_s, u"Update"_s); },
        [] { return seen<QWidget>(update) && isButton(u"cmdUpdateQRV"_s, true); });
    m_script.add(
        u"the check finds a newer, a new and a changed file"_s, [] { click(u"cmdUpdateQRVImg"_s); },
        [] { return hasRows(update, 6) && isButton(u"cmdGetUpdates"_s, true); });
    picture(u"update-shown.png"_s);
}

void UpdateTour::download()
{
    m_script.add(
        u"the download has come half-way"_s,
        [this] {
            m_pages.misbehave("qrvv3rc.fle",
                              {.kind = PageFault::Kind::Slow, .number = programBytes / 2, .pause = halfTime});
            click(u"cmdGetUpdatesImg"_s);
        },
        [] {
            const auto* bar = seen<QProgressBar>(u"pbDwnld"_s);
            return bar && bar->value() > 0 && isButton(u"cmdCancel"_s, true);
        });
    picture(u"update-download.png"_s);
    m_script.await(u"the running program waits for a restart"_s,
                   [] { return boxSays(u"required to install the updates."_s); });
    picture(u"update-restart.png"_s);
    dismissBox(u"the box of the restart goes"_s);
}

void UpdateTour::meetErrors()
{
    m_script.add(
        u"the check finds what still waits, and what was not wanted"_s,
        [this] {
            m_pages.misbehave("qrvv3rc.fle", {.kind = PageFault::Kind::CutOff, .number = programBytes / 3});
            click(u"cmdUpdateQRVImg"_s);
        },
        [] { return hasRows(update, 4) && isButton(u"cmdGetUpdates"_s, true); });
    m_script.add(
        u"a transfer that breaks off is told"_s, [] { click(u"cmdGetUpdatesImg"_s); },
        [] { return boxSays(u"qrvv3rc.exe: the transfer broke off"_s); });
    picture(u"update-failed.png"_s);
    dismissBox(u"the box of the failure goes"_s);
    m_script.add(
        u"an error page is no list"_s,
        [this] {
            m_pages.misbehave("qrvv3rc_filelist.txt", {.kind = PageFault::Kind::ErrorPage});
            click(u"cmdUpdateQRVImg"_s);
        },
        [] { return boxSays(u"Unable to obtain update info!"_s); });
    picture(u"update-error.png"_s);
    dismissBox(u"the box of the list goes"_s);
}

void UpdateTour::findNothing()
{
    m_script.add(
        u"a list without anything new says so"_s,
        [this] {
            m_pages.misbehave("qrvv3rc_filelist.txt", {});
            m_pages.setPage("qrvv3rc_filelist.txt",
                            "qrvv3rc.exe|\\|executable file|(QRV) Main Executable|1|1.0.0.0\r\n");
            click(u"cmdUpdateQRVImg"_s);
        },
        [] { return hasRows(update, 1) && isButton(u"cmdUpdateQRV"_s, true); });
    picture(u"update-none.png"_s);
}

void UpdateTour::setOptions()
{
    m_script.add(
        u"the options window opens"_s, [] { clickTab(u"tsMain"_s, u"Options"_s); },
        [] { return isButton(u"cmdSave"_s, true); });
    picture(u"options.png"_s);
    m_script.add(
        u"a maker host that is none is refused"_s,
        [] {
            click(u"txtMakerHost"_s);
            type("maker");
            click(u"cmdSaveImg"_s);
        },
        [] { return boxSays(u"The maker host must be a web address"_s); });
    picture(u"options-error.png"_s);
    dismissBox(u"the box of the maker host goes"_s);
    m_script.add(
        u"the settings are saved"_s,
        [] {
            press(Qt::Key_Delete); // it is still selected
            click(u"cmdSaveImg"_s);
        },
        [] { return boxSays(u"Settings Saved Successfully."_s); });
    dismissBox(u"the box of the settings goes"_s);
}

void UpdateTour::lookAtPlugins()
{
    m_script.add(
        u"the plugin window lists the plugin"_s, [] { clickTab(u"tsMain"_s, u"Plugins"_s); },
        [] { return linesOf(u"lstPlugins"_s) == QStringList{u"Match Watch"_s}; });
    m_script.add(
        u"a click shows what the plugin says of itself"_s, [] { clickLine(u"lstPlugins"_s, 0); },
        [] { return textOf(u"lblStatus"_s, plugins) == u"Status: Disabled"_s; });
    m_script.add(
        u"the check finds the plugin's help"_s, [] { click(u"cmdCheckPluginsImg"_s); },
        [] { return hasRows(plugins, 2) && isButton(u"cmdGetUpdates"_s, true); });
    picture(u"plugins.png"_s);
    m_script.add(
        u"the help is downloaded, and the program still waits"_s, [] { click(u"cmdGetUpdatesImg"_s, plugins); },
        [] { return boxSays(u"Updates downloaded successfully!"_s); });
    dismissBox(u"the box of the help goes"_s);
}

} // namespace tour
