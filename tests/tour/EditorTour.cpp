#include "tour/EditorTour.h"

#include "app/qrvrcMain.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QComboBox>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

using practice::Fault;

constexpr int reserveRow = 6; // follows no game, so it can be modified
constexpr int reserveId = reserveRow + 1;

practice::World worldWithSettings()
{
    practice::World world = practice::World::lively();
    world.profile(reserveId)->settings = {
        .scripts = {"http://stats.example/ladder:4711", "http://clan.example/dfbhd/stats:12"},
        .hostName = "Reserve",
        .announceRanks = true,
        .leftLeaning = 1,
        .reportToMaster = true,
        .antiPadding = true,
        .padMinutes = "5",
        .padPlayers = "4",
        .statsSystem = "Standard PHP Stats",
    };
    return world;
}

bool isEditorOf(const QString& profile)
{
    return seen<QWidget>(u"qrvrcModify"_s) && fieldText(u"txtName"_s) == profile;
}

QString note()
{
    return textOf(u"lblCheck"_s, u"qrvrcModify"_s);
}

} // namespace

EditorTour::EditorTour(qrvrcMain& frame, const practice::WebSide& web, const QDir& pictures)
    : Act(frame, worldWithSettings(), pictures),
      m_web(web)
{
    arrive();
    typeConnection(u"Practice host"_s);
    signIn();
    openEditor();
    stopCheck();
    missScripts();
    addScript();
    save();
    meetGarbage();
    askToQuit();
    confirmQuit();
}

void EditorTour::signIn()
{
    m_script.add(
        u"the profile list is there after the login"_s,
        [this] {
            m_tracker.listen(m_tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
}

void EditorTour::openEditor()
{
    m_script.add(
        u"a profile that follows no game is selected"_s, [] { clickRow(u"fgProfiles"_s, reserveRow); },
        [] { return selectedRow() == reserveRow && isButton(u"cmdModify"_s, true); });
    m_script.add(
        u"the editor shows the profile"_s, [] { click(u"cmdModifyImg"_s); },
        [] { return isEditorOf(u"Reserve"_s) && isButton(u"cmdModify"_s, true); });
    picture(u"editor.png"_s);
}

void EditorTour::enterScript(const QString& what, const QByteArray& folder, std::function<bool()> until)
{
    m_script.add(
        what,
        [this, folder] {
            click(u"txtUrl"_s);
            press(Qt::Key_A, Qt::ControlModifier);
            type(m_web.base().toEncoded() + '/' + folder);
            press(Qt::Key_Tab);
            press(Qt::Key_A, Qt::ControlModifier);
            type("101");
            press(Qt::Key_Return);
        },
        std::move(until));
}

void EditorTour::stopCheck()
{
    const QString file = u"editor-checking.png"_s;
    m_camera.prepare(file);
    enterScript(u"a check that takes long shows that it runs"_s, "silent", [this, file] {
        const bool isRunning = note().startsWith(u"Looking for the scripts:"_s) && hasFocus(u"cmdStopCheck"_s) &&
                               isButton(u"cmdModify"_s, false);
        if (isRunning)
            m_camera.takeAtOnce(file); // its bar moves, so there is no rest to wait for
        return isRunning;
    });
    m_script.add(
        u"Escape stops the check"_s, [] { press(Qt::Key_Escape); },
        [] { return note() == u"The check was stopped."_s && isButton(u"cmdAddurl"_s, true); });
}

void EditorTour::missScripts()
{
    enterScript(u"an address without scripts is told in a box"_s, "none",
                [] { return boxSays(u"but the Quorvane Serverside Scripts were not found!"_s); });
    picture(u"editor-missing.png"_s);
    dismissBox(u"the box of the missing scripts goes"_s);
}

void EditorTour::addScript()
{
    enterScript(u"scripts that are found lead to a question"_s, "stats",
                [] { return boxSays(u"Would you like to validate the Server ID Code?"_s); });
    picture(u"editor-validate.png"_s);
    m_script.add(
        u"the answer Yes has the server id validated"_s,
        [] {
            if (const auto* box = seen<QMessageBox>(u"msgBox"_s))
                click(box->button(QMessageBox::Yes));
        },
        [] { return boxSays(u"Server ID Validated Successfully."_s); });
    dismissBox(u"the box of the known server id goes"_s);
    m_script.await(u"the address has joined the list"_s,
                   [] { return linesOf(u"lstUrls"_s).size() == 3 && fieldText(u"txtUrl"_s) == u"http://"_s; });
    m_script.add(
        u"a line is selected for its menu"_s, [] { clickLine(u"lstUrls"_s, 1); },
        [] { return selectedLine(u"lstUrls"_s) == 1; });
    picture(u"editor-added.png"_s);
}

void EditorTour::save()
{
    const auto choose = [](Qt::Key key) {
        return [key] {
            if (auto* systems = seen<QComboBox>(u"cboStats"_s)) {
                systems->setFocus();
                press(key);
            }
        };
    };
    m_script.add(u"no statistics system is chosen"_s, choose(Qt::Key_Home),
                 [] { return seen<QComboBox>(u"cboStats"_s)->currentIndex() == 0; });
    m_script.add(
        u"without a statistics system nothing is saved"_s, [] { click(u"cmdModifyImg"_s); },
        [] { return boxSays(u"You have not selected a Stats System!"_s); });
    picture(u"editor-no-system.png"_s);
    dismissBox(u"the box of the missing system goes"_s);
    m_script.add(u"a statistics system is chosen"_s, choose(Qt::Key_End),
                 [] { return seen<QComboBox>(u"cboStats"_s)->currentIndex() == 3; });
    m_script.add(
        u"the profile is saved"_s, [] { click(u"cmdModifyImg"_s); }, [] { return boxSays(u"Profile Modified"_s); });
    answerBox(u"the box of the saved profile goes"_s, QMessageBox::Ok);
    m_script.await(u"the tracker keeps the new address, and the list is back"_s, [this] {
        return m_tracker.world().profile(reserveId)->settings.scripts.size() == 3 && rowsOf(u"fgProfiles"_s) == 9;
    });
}

void EditorTour::meetGarbage()
{
    awaitFrame();
    m_script.add(
        u"the profile is selected again"_s, [] { clickRow(u"fgProfiles"_s, reserveRow); },
        [] { return selectedRow() == reserveRow && isButton(u"cmdModify"_s, true); });
    m_script.add(
        u"a profile that cannot be read is reported"_s,
        [this] {
            m_tracker.answerNext("GetProfile", Fault::garbageInElement(5));
            click(u"cmdModifyImg"_s);
        },
        [] { return boxSays(u"Error Report Sent: Yes"_s); });
    picture(u"editor-error.png"_s);
    dismissBox(u"the box of the error goes"_s);
    m_script.await(u"the editor says that this profile cannot be saved"_s, [] {
        return isEditorOf(u"Reserve"_s) && note().contains(u"cannot be saved"_s) && isButton(u"cmdModify"_s, false);
    });
    picture(u"editor-unread.png"_s);
    m_script.add(
        u"Cancel leads back to the list"_s, [] { click(u"cmdCancelImg"_s); },
        [] { return rowsOf(u"fgProfiles"_s) == 9 && !seen<QWidget>(u"qrvrcModify"_s); });
}

} // namespace tour
