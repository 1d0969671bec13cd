#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"
#include "tour/Scenes.h"
#include "tour/Screen.h"
#include "ui/GridView.h"

#include <QComboBox>
#include <QDateEdit>

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
    return text && isFront(text->window()->objectName()) ? text : nullptr;
}

/// Asks for the files of some days, the newest of which is that many days ago.
void list(Act& act, const QString& type, int daysBack, const QString& what, const std::function<bool()>& until)
{
    act.step(
        what,
        [type, daysBack] {
            if (auto* types = seen<QComboBox>(u"cboFileType"_s))
                types->setCurrentText(type);
            const QDate to = QDate::currentDate().addDays(-daysBack);
            if (auto* from = seen<QDateEdit>(u"dtpFrom"_s))
                from->setDate(to.addDays(1 - daysKept));
            if (auto* last = seen<QDateEdit>(u"dtpTo"_s))
                last->setDate(to);
            click(u"cmdGetFilesImg"_s);
        },
        until);
}

bool isListed()
{
    return rowsOf(u"mfgFM"_s) == daysKept && textOf(u"lblState"_s, u"qrvrcFileManager"_s).isEmpty();
}

void view(Act& act, const QString& what, const std::string& beginning)
{
    act.step(
        what,
        [] {
            clickRow(u"mfgFM"_s, 1);
            press(Qt::Key_Return);
        },
        [beginning] { return viewer() && viewer()->text()->bytes().starts_with(beginning); });
}

} // namespace

void files(Act& act)
{
    act.signIn();
    act.openMenu(0);
    act.step(
        u"the remote file viewer says what to do"_s, [] { clickEntry(u"mnuFileManager"_s); },
        [] { return emptyGridSays(u"Get Files"_s) && hasFocus(u"cboFileType"_s); });
    act.picture(u"files-start.png"_s);

    list(act, u"Backup Files"_s, 0, u"the backups are listed with their game types"_s, isListed);
    act.picture(u"files-backups.png"_s);
    view(act, u"an archive is shown as it came"_s, "BMA1");
    act.picture(u"files-archive.png"_s);
    act.escape(u"Text1"_s);
    act.awaitFrame();

    list(act, u"Chat Logs"_s, 0, u"the chat logs are listed"_s, isListed);
    view(act, u"a log is shown"_s, "Chat Logs of ");
    act.step(
        u"what is looked for is found"_s,
        [] {
            press(Qt::Key_F, Qt::ControlModifier);
            type("mongoose");
            press(Qt::Key_Return);
            press(Qt::Key_F3);
        },
        [] { return viewer() && viewer()->selectedText().compare(u"mongoose"_s, Qt::CaseInsensitive) == 0; });
    act.picture(u"files-viewer.png"_s);
    act.escape(u"txtFind"_s);
    act.escape(u"Text1"_s);
    act.awaitFrame();

    list(act, u"Chat Logs"_s, -daysKept, u"days without files have none"_s,
         [] { return emptyGridSays(u"There are no files"_s); });
    act.picture(u"files-none.png"_s);
    act.quit();
}

} // namespace tour
