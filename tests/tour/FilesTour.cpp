#include "tour/FilesTour.h"

#include "app/qrvrcMain.h"
#include "base/LinedText.h"
#include "tour/Hand.h"
#include "tour/Sight.h"
#include "ui/GridView.h"
#include "ui/TextPane.h"

#include <QComboBox>
#include <QDateEdit>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

constexpr int daysKept = 4; // by the sample world

bool emptyGridSays(const QString& text)
{
    const auto* grid = seen<GridView>(u"mfgFM"_s);
    return grid && rowsOf(u"mfgFM"_s) == 0 && grid->emptyText().contains(text);
}

const TextPane* viewer()
{
    const auto* text = seen<TextPane>(u"Text1"_s, u"qrvrcNotePad"_s);
    if (text && !hasWindowManager())
        text->window()->activateWindow();
    return text && text->window()->isActiveWindow() ? text : nullptr;
}

} // namespace

FilesTour::FilesTour(qrvrcMain& frame, const QDir& pictures) : Act(frame, practice::World::lively(), pictures)
{
    arrive();
    signIn();
    openRoom();
    chooseDates(0, daysKept - 1);
    getFiles(u"the logs of all days are listed"_s, daysKept);
    picture(u"files.png"_s);
    chooseType(u"Backup Files"_s);
    getFiles(u"the backups are listed with their game types"_s, daysKept);
    picture(u"files-backups.png"_s);
    view(u"an archive is shown as it came"_s, 1, "BMA1");
    picture(u"files-archive.png"_s);
    closeViewer();
    chooseType(u"Chat Logs"_s);
    getFiles(u"the chat logs are listed"_s, daysKept);
    view(u"a log is shown"_s, 1, "Chat Logs of ");
    m_script.add(
        u"what is looked for is found"_s,
        [] {
            press(Qt::Key_F, Qt::ControlModifier);
            type("mongoose");
            press(Qt::Key_Return);
            press(Qt::Key_F3);
        },
        [] { return viewer() && viewer()->selectedText().compare(u"mongoose"_s, Qt::CaseInsensitive) == 0; });
    picture(u"files-viewer.png"_s);
    m_script.add(
        u"Escape closes the search"_s, [] { press(Qt::Key_Escape); },
        [] { return viewer() && !seen<QWidget>(u"txtFind"_s); });
    closeViewer();
    meetTrouble();
    askToQuit();
    confirmQuit();
}

void FilesTour::signIn()
{
    typeConnection(u"Practice host"_s);
    m_script.add(
        u"the profile list is there after the login"_s,
        [this] {
            m_tracker.listen(m_tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && selectedRow() == 0; });
    m_script.await(u"every status and a mod has its picture"_s, showsEveryStatus);
}

void FilesTour::openRoom()
{
    m_script.add(
        u"the menu of a profile opens"_s, [] { clickRow(u"fgProfiles"_s, 0, Qt::RightButton); },
        [] { return seen<QMenu>(u"mnuMain"_s) != nullptr; });
    m_script.add(
        u"the remote file viewer says what to do"_s, [] { clickEntry(seen<QMenu>(u"mnuMain"_s), u"mnuFileManager"_s); },
        [] { return emptyGridSays(u"Get Files"_s) && hasFocus(u"cboFileType"_s); });
    picture(u"files-start.png"_s);
}

void FilesTour::chooseDates(int daysBack, int daysLong)
{
    const QDate to = QDate::currentDate().addDays(-daysBack);
    m_script.add(
        u"the dates are chosen"_s,
        [to, daysLong] {
            if (auto* from = seen<QDateEdit>(u"dtpFrom"_s))
                from->setDate(to.addDays(-daysLong));
            if (auto* until = seen<QDateEdit>(u"dtpTo"_s))
                until->setDate(to);
        },
        [to] {
            const auto* until = seen<QDateEdit>(u"dtpTo"_s);
            return until && until->date() == to;
        });
}

void FilesTour::chooseType(const QString& type)
{
    m_script.add(
        u"another type empties the list"_s,
        [type] {
            if (auto* types = seen<QComboBox>(u"cboFileType"_s))
                types->setCurrentText(type);
        },
        [] { return emptyGridSays(u"Get Files"_s); });
}

void FilesTour::getFiles(const QString& what, int rows)
{
    m_script.add(
        what, [] { click(u"cmdGetFilesImg"_s); },
        [rows] { return rowsOf(u"mfgFM"_s) == rows && textOf(u"lblState"_s, u"qrvrcFileManager"_s).isEmpty(); });
}

void FilesTour::view(const QString& what, int row, const QByteArray& beginning)
{
    m_script.add(
        what,
        [row] {
            clickRow(u"mfgFM"_s, row);
            press(Qt::Key_Return);
        },
        [beginning] { return viewer() && viewer()->text()->bytes().starts_with(beginning.toStdString()); });
}

void FilesTour::closeViewer()
{
    m_script.add(
        u"Escape closes the viewer, and the list is still there"_s, [] { press(Qt::Key_Escape); },
        [] { return !seen<QWidget>(u"Text1"_s) && rowsOf(u"mfgFM"_s) == daysKept; });
    awaitFrame();
}

void FilesTour::meetTrouble()
{
    m_script.add(
        u"a damaged list is reported"_s,
        [this] {
            m_tracker.answerNextWith("GetFileList", "4711[-]Quorvane[-]no compressed text at all");
            click(u"cmdGetFilesImg"_s);
        },
        [] { return boxSays(u"Error Report Sent: "_s); });
    dismissBox(u"the box of the error goes"_s);
    m_script.await(u"the list says why it is empty"_s, [] { return emptyGridSays(u"could not be read"_s); });
    picture(u"files-damaged.png"_s);
    chooseDates(daysKept, -1);
    m_script.add(
        u"dates in the wrong order are refused"_s, [] { click(u"cmdGetFilesImg"_s); },
        [] { return boxSays(u"The 'Date From' field cannot be greater than the 'Date To' field!"_s); });
    picture(u"files-dates.png"_s);
    dismissBox(u"the box goes"_s);
    chooseDates(-1, 0);
    m_script.add(
        u"days without files have none"_s, [] { click(u"cmdGetFilesImg"_s); },
        [] { return emptyGridSays(u"There are no files"_s); });
    picture(u"files-none.png"_s);
}

} // namespace tour
