#include "tour/SupportTour.h"

#include "app/qrvrcMain.h"
#include "live/SupportDesk.h"
#include "tour/Hand.h"
#include "tour/Sight.h"

#include <QPlainTextEdit>
#include <QRadioButton>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

const QString console = u"qrvrcSupport"_s;

QString conversation()
{
    const auto* text = seen<QPlainTextEdit>(u"txtMessages"_s);
    return text ? text->toPlainText() : QString();
}

bool isFront()
{
    const auto* window = seen<QWidget>(console);
    return window && window->isActiveWindow();
}

} // namespace

SupportTour::SupportTour(qrvrcMain& frame, const QDir& pictures) : Act(frame, practice::World::lively(), pictures)
{
    if (m_operator.listen())
        m_tracker.world().supportPort = m_operator.port();
    arrive();
    openTooEarly();
    signIn();
    talk();
    filter();
    search();
    loseLink();
    askToQuit();
    confirmQuit();
}

void SupportTour::openTooEarly()
{
    m_script.add(
        u"without a login the console says what is missing"_s, [this] { m_frame.supportDesk().open(); },
        [] { return isFront() && textOf(u"lblLink"_s, console).contains(u"log in"_s); });
    picture(u"support-not-connected.png"_s);
    m_script.add(
        u"the console closes"_s, [] { seen<QWidget>(console)->close(); }, [] { return !seen<QWidget>(console); });
    awaitFrame();
}

void SupportTour::signIn()
{
    m_script.add(
        u"the login window has the keyboard"_s, [] { click(u"txtProfile"_s); },
        [] { return hasFocus(u"txtProfile"_s); });
    typeConnection(u"Practice host"_s);
    m_script.add(
        u"the profile list is there after the login"_s,
        [this] {
            m_tracker.listen(m_tracker.port());
            click(u"cmdConnectImg"_s);
        },
        [] { return rowsOf(u"fgProfiles"_s) == 9; });
    m_script.await(u"every status and a mod has its picture"_s, showsEveryStatus);
}

void SupportTour::talk()
{
    m_script.add(
        u"the console opens, and the operator greets"_s, [this] { m_frame.supportDesk().open(); },
        [] {
            const auto* window = seen<QWidget>(console);
            return isFront() && conversation().contains(u"Hello admin"_s) && hasFocus(u"txtNewMessage"_s) &&
                   window->windowTitle() == u"Support Console - Host Status: Active"_s &&
                   textOf(u"lblLink"_s, console) == u"Connected."_s;
        });
    ask("Which map comes next on Alpha?", 3);
    ask("Thank you. Players say there is lag since noon.", 5);
    m_script.add(
        u"the operator says something by himself, and is busy then"_s,
        [this] {
            m_operator.say("Heads up: the host gets a new network card tonight at 23:00.\n"
                           "There will be five minutes without a link.");
            m_operator.setStatus("Be Right Back");
        },
        [] {
            return conversation().startsWith(u"Host says:\nHeads up"_s) &&
                   seen<QWidget>(console)->windowTitle().endsWith(u": Be Right Back"_s);
        });
    m_script.add(
        u"an answer is begun"_s,
        [] {
            click(u"txtNewMessage"_s);
            type("Fine with me, I will tell the pl");
        },
        [] { return seen<QPlainTextEdit>(u"txtNewMessage"_s)->toPlainText().endsWith(u" pl"_s); });
    picture(u"support-chat.png"_s);
}

void SupportTour::ask(const QByteArray& question, int entriesAfterwards)
{
    m_script.add(
        u"a question is sent and answered"_s,
        [question] {
            click(u"txtNewMessage"_s);
            type(question);
            press(Qt::Key_Return);
        },
        [entriesAfterwards] {
            return conversation().count(u" says:\n"_s) == entriesAfterwards &&
                   seen<QPlainTextEdit>(u"txtNewMessage"_s)->toPlainText().isEmpty();
        });
}

void SupportTour::filter()
{
    m_script.add(
        u"a filter shows what the host said of the matter"_s,
        [] {
            press(Qt::Key_Tab);
            click(u"Option1_0"_s);
            click(u"txtFilter"_s);
            type("link");
            press(Qt::Key_Return);
        },
        [] {
            const auto* host = seen<QRadioButton>(u"Option1_0"_s);
            return host && host->isChecked() && textOf(u"lblShown"_s, console) == u"Filter on: 1 of 6 messages"_s &&
                   conversation().startsWith(u"Host says:\nHeads up"_s);
        });
    picture(u"support-filter-on.png"_s);
    m_script.add(
        u"without the filter everything is there again"_s,
        [] {
            click(u"txtFilter"_s);
            press(Qt::Key_A, Qt::ControlModifier);
            press(Qt::Key_Delete);
            click(u"cmdFilterImg"_s);
        },
        [] { return textOf(u"lblShown"_s, console).isEmpty() && conversation().count(u" says:\n"_s) == 6; });
    picture(u"support-filter-off.png"_s);
}

void SupportTour::search()
{
    m_script.add(
        u"the search selects the second occurrence"_s,
        [] {
            click(u"txtSearch"_s);
            type("map");
            press(Qt::Key_Return);
            click(u"cmdNextImg"_s);
        },
        [] {
            const auto* text = seen<QPlainTextEdit>(u"txtMessages"_s);
            const QTextCursor found = text->textCursor();
            return text->hasFocus() && found.selectedText() == u"map"_s &&
                   found.selectionStart() > text->toPlainText().indexOf(u"map"_s);
        });
    picture(u"support-search.png"_s);
}

void SupportTour::loseLink()
{
    m_script.add(
        u"the console says that the operator's link is gone, and keeps what was said and typed"_s,
        [this] { m_operator.closeLinks(); },
        [] {
            return textOf(u"lblLink"_s, console) == u"The host closed the support link."_s &&
                   seen<QWidget>(console)->windowTitle() == u"Support Console"_s &&
                   conversation().count(u" says:\n"_s) == 6 &&
                   seen<QPlainTextEdit>(u"txtNewMessage"_s)->toPlainText().endsWith(u" pl"_s);
        });
    picture(u"support-dropped.png"_s);
    m_script.add(
        u"the console closes"_s, [] { seen<QWidget>(console)->close(); }, [] { return !seen<QWidget>(console); });
    awaitFrame();
}

} // namespace tour
