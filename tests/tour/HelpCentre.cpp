#include "app/qrvrcMain.h"
#include "platform/system/FileBytes.h"
#include "practice/links/RecoveryTool.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"
#include "tour/Scenes.h"
#include "tour/Screen.h"

using namespace Qt::StringLiterals;

namespace tour {

namespace {

using Manner = practice::RecoveryTool::Manner;

const QString recovery = u"qrvrcRecovery"_s;

void layOut(const ClientCore& core)
{
    core.store.LogError("QRVV3RC.exe", "HandleData", RuntimeError(ErrorNumber::TypeMismatch), 27);
    core.store.LogError("QRVV3RC.exe", "LoadPlugins", RuntimeError(ErrorNumber::FileNotFound, "broken.dll"), 0);
    core.store.LogError("QRVV3RC.exe", "frmModify_AddUrl", RuntimeError(ErrorNumber::PermissionDenied), 112);
    writeBytes(core.folder.path("\\profiles.ini"),
               "[Practice host]\r\nHost=127.0.0.1\r\nPort=1\r\nUser=admin\r\nPass=admin\r\n");
}

bool showsEntries(int count)
{
    const auto* log = seen<TextPane>(u"txtErrLog"_s);
    return log && log->text() && isButton(u"cmdSendErrors"_s, true) &&
           log->characters(0, log->text()->size()).count(u" Error Start "_s) == count;
}

void readErrors(Act& act)
{
    act.step(
        u"the error log opens"_s, [] { click(u"cmdViewErrors"_s); }, [] { return showsEntries(3); });
    act.picture(u"error-log.png"_s);
    act.step(
        u"the report can be read before it goes out"_s, [] { click(u"cmdShowReport"_s); },
        [] { return textOf(u"txtReport"_s).contains(u"It is this installation: yes"_s); });
    act.picture(u"error-report.png"_s);
    act.escape(u"txtReport"_s);
    act.awaitFrame();
    act.step(
        u"what the page takes leaves the panel, and what it refuses stays"_s,
        [&act] {
            QObject::connect(&act.web, &practice::WebSide::reportReceived, &act.web,
                             [&web = act.web](const QByteArray& report) {
                                 web.setReportAnswer(report.contains("LoadPlugins") ? "0" : "1");
                             });
            click(u"cmdSendErrors"_s);
        },
        [] { return showsEntries(1); });
    act.picture(u"error-log-partly-sent.png"_s);
    act.step(
        u"the panel closes"_s,
        [&act] {
            act.web.disconnect(&act.web);
            act.web.setReportAnswer("1");
            click(u"cmdCloseErrors"_s);
        },
        [] { return !seen(u"fmeErrors"_s); });
}

void recover(Act& act, const std::shared_ptr<practice::RecoveryTool>& tool)
{
    act.step(
        u"the recovery console opens"_s, [] { click(u"cmdRecovConsole"_s); }, [] { return isFront(recovery); });
    act.step(
        u"a tool that is silent can be cancelled"_s,
        [tool] {
            tool->manner = Manner::Silent;
            enter(u"txtPort"_s, QByteArray::number(tool->port()), recovery);
            click(u"Option1_1"_s);
            click(u"cmdSendCmdImg"_s);
        },
        [tool] { return isFront(recovery) && isButton(u"cmdCancel"_s, true) && tool->commands().size() == 1; });
    act.picture(u"recovery-waiting.png"_s);
    act.step(
        u"Escape cancels"_s, [] { press(Qt::Key_Escape); },
        [] { return isFront(recovery) && isButton(u"cmdSendCmd"_s, true); });
    act.step(
        u"the tool restarts the tracker"_s,
        [tool] {
            tool->manner = Manner::Pieces;
            click(u"cmdSendCmd"_s);
        },
        [] { return boxSays(u"The tracker has been restarted."_s); });
    act.picture(u"recovery-answer.png"_s);
    act.answerBox();
    act.await(u"the console is back"_s, [] { return isFront(recovery); });
    act.escape(recovery);
    act.awaitFrame();
}

} // namespace

void helpCentre(Act& act)
{
    const auto tool = std::make_shared<practice::RecoveryTool>(act.tracker);
    tool->listen();
    layOut(act.frame.core());
    act.arrive();
    act.step(
        u"the help centre opens"_s, [] { clickTab(u"tsMain"_s, u"Help"_s); },
        [] { return isButton(u"cmdShowHelp"_s, true) && !seen(u"fmeErrors"_s); });
    act.picture(u"help-centre.png"_s);
    readErrors(act);
    recover(act, tool);
    act.quit();
}

} // namespace tour
