#include "tour/HelpCentreTour.h"

#include "app/qrvrcMain.h"
#include "store/FileBytes.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QDialog>
#include <QPlainTextEdit>
#include <QTextBrowser>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

using Manner = practice::RecoveryTool::Manner;

QString textIn(const QString& box)
{
    const auto* edit = seen<QPlainTextEdit>(box);
    return edit ? edit->toPlainText() : QString();
}

qsizetype entriesShown()
{
    return textIn(u"txtErrLog"_s).count(u" Error Start "_s);
}

bool isConsole()
{
    const auto* console = seen<QDialog>(u"qrvrcRecovery"_s);
    if (console && !hasWindowManager() && !seen<QMessageBox>(u"msgBox"_s))
        console->window()->activateWindow();
    return console && console->isActiveWindow();
}

} // namespace

HelpCentreTour::HelpCentreTour(qrvrcMain& frame, practice::WebSide& web, const QDir& pictures)
    : Act(frame, practice::World::small(), pictures),
      m_web(web),
      m_tool(m_tracker)
{
    layOut();
    arrive();
    m_script.add(
        u"the help centre opens"_s, [] { clickTab(u"tsMain"_s, u"Help"_s); },
        [] { return isButton(u"cmdShowHelp"_s, true) && !seen<QWidget>(u"fmeErrors"_s); });
    picture(u"help-centre.png"_s);
    readManual();
    readErrors();
    sendErrors();
    misuseRecovery();
    recover();
    askToQuit();
    confirmQuit();
}

void HelpCentreTour::layOut()
{
    const ClientCore& core = m_frame.core();
    core.store.LogError("QRVV3RC.exe", "HandleData", RuntimeError(ErrorNumber::TypeMismatch), 27);
    core.store.LogError("QRVV3RC.exe", "LoadPlugins", RuntimeError(ErrorNumber::FileNotFound, "broken.dll"), 0);
    core.store.LogError("QRVV3RC.exe", "frmModify_AddUrl", RuntimeError(ErrorNumber::PermissionDenied), 112);
    writeBytes(core.folder.path("\\profiles.ini"),
               "[Practice host]\r\nHost=127.0.0.1\r\nPort=1\r\nUser=admin\r\nPass=admin\r\n");
    m_tool.listen();
    m_tool.stopListening(); // until it is to be found
}

void HelpCentreTour::readManual()
{
    m_script.add(
        u"the manual opens at its beginning"_s, [] { click(u"cmdShowHelp"_s); },
        [] {
            const auto* page = seen<QTextBrowser>(u"txtHelp"_s);
            return page && page->window()->isActiveWindow() && !page->isBackwardAvailable() &&
                   page->toPlainText().size() > 100;
        });
    picture(u"help-centre-manual.png"_s);
    m_script.add(
        u"Escape closes the manual"_s, [] { press(Qt::Key_Escape); }, [] { return !seen<QWidget>(u"txtHelp"_s); });
    awaitFrame();
}

void HelpCentreTour::readErrors()
{
    m_script.add(
        u"the error log opens"_s, [] { click(u"cmdViewErrors"_s); },
        [] { return entriesShown() == 3 && isButton(u"cmdSendErrors"_s, true); });
    picture(u"error-log.png"_s);
    m_script.add(
        u"the report can be read before it goes out"_s, [] { click(u"cmdShowReport"_s); },
        [] { return textIn(u"txtReport"_s).contains(u"It is this installation: yes"_s); });
    picture(u"error-report.png"_s);
    m_script.add(
        u"Escape closes the report"_s, [] { press(Qt::Key_Escape); }, [] { return !seen<QWidget>(u"txtReport"_s); });
    awaitFrame();
}

void HelpCentreTour::sendErrors()
{
    m_script.add(
        u"what the page takes leaves the panel, and what it refuses stays"_s,
        [this] {
            QObject::connect(&m_web, &practice::WebSide::reportReceived, &m_web, [this](const QByteArray& report) {
                m_web.setReportAnswer(report.contains("LoadPlugins") ? "0" : "1");
            });
            click(u"cmdSendErrors"_s);
        },
        [] { return entriesShown() == 1 && isButton(u"cmdSendErrors"_s, true); });
    picture(u"error-log-partly-sent.png"_s);
    m_script.add(
        u"the rest is sent, and the file is gone"_s,
        [this] {
            m_web.disconnect(&m_web);
            m_web.setReportAnswer("1");
            click(u"cmdSendErrors"_s);
        },
        [this] {
            return entriesShown() == 0 && isButton(u"cmdSendErrors"_s, false) && isButton(u"cmdCloseErrors"_s, true) &&
                   !m_frame.core().folder.fileExists("\\ErrorLog.txt");
        });
    picture(u"error-log-sent.png"_s);
    m_script.add(
        u"the panel closes"_s, [] { click(u"cmdCloseErrors"_s); }, [] { return !seen<QWidget>(u"fmeErrors"_s); });
}

void HelpCentreTour::misuseRecovery()
{
    m_script.add(
        u"the recovery console opens"_s, [] { click(u"cmdRecovConsole"_s); }, [] { return isConsole(); });
    m_script.add(
        u"a port that is none is refused"_s,
        [] {
            click(u"txtPort"_s, u"qrvrcRecovery"_s);
            type("65536");
            press(Qt::Key_Return);
        },
        [] { return boxSays(u"Invalid Port format!"_s); });
    picture(u"recovery-port.png"_s);
    answerBox(u"the box of the bad port goes"_s, QMessageBox::Ok);
    m_script.await(u"the console is back"_s, isConsole);
    m_script.add(
        u"a tool that is not running is told"_s,
        [this] {
            type(QByteArray::number(m_tool.port())); // the old number is selected
            click(u"Option1_1"_s);
            click(u"cmdSendCmdImg"_s);
        },
        [] { return boxSays(u"Failed to connect to the QRV Recovery tool!"_s); });
    picture(u"recovery-refused.png"_s);
    answerBox(u"the box of the refused connection goes"_s, QMessageBox::Ok);
    m_script.await(u"the console is back again"_s, isConsole);
}

void HelpCentreTour::recover()
{
    m_script.add(
        u"a tool that is silent can be cancelled"_s,
        [this] {
            m_tool.manner = Manner::Silent;
            m_tool.listen(m_tool.port());
            click(u"cmdSendCmd"_s);
        },
        [this] { return isConsole() && isButton(u"cmdCancel"_s, true) && m_tool.commands().size() == 1; });
    picture(u"recovery-waiting.png"_s);
    m_script.add(
        u"Escape cancels"_s, [] { press(Qt::Key_Escape); },
        [] { return isConsole() && isButton(u"cmdSendCmd"_s, true); });
    m_script.add(
        u"the tool restarts the tracker"_s,
        [this] {
            m_tool.manner = Manner::Pieces;
            click(u"cmdSendCmd"_s);
        },
        [] { return boxSays(u"The tracker has been restarted."_s); });
    picture(u"recovery-answer.png"_s);
    answerBox(u"the box of the answer goes"_s, QMessageBox::Ok);
    m_script.await(u"the console is back once more"_s, isConsole);
    m_script.add(
        u"Escape closes the console"_s, [] { press(Qt::Key_Escape); },
        [] { return !seen<QDialog>(u"qrvrcRecovery"_s); });
    awaitFrame();
}

} // namespace tour
