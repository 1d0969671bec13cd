#include "app/qrvrcMain.h"
#include "live/support/SupportDesk.h"
#include "practice/links/SupportSide.h"
#include "tour/Scenes.h"
#include "tour/Screen.h"

#include <QPlainTextEdit>

using namespace Qt::StringLiterals;

namespace tour {

namespace {

const QString console = u"qrvrcSupport"_s;

QString conversation()
{
    return textOf(u"txtMessages"_s);
}

void close(Act& act)
{
    act.step(
        u"the console closes"_s, [] { seen(console)->close(); }, [] { return !seen(console); });
    act.awaitFrame();
}

void talk(Act& act, practice::SupportSide& host)
{
    act.step(
        u"the console opens, and the operator greets"_s, [&act] { act.frame.supportDesk().open(); },
        [] { return isFront(console) && conversation().contains(u"Hello admin"_s) && hasFocus(u"txtNewMessage"_s); });
    for (int entries = 3; entries <= 5; entries += 2) {
        act.step(
            u"a question is sent and answered"_s,
            [entries] {
                enter(u"txtNewMessage"_s, entries == 3 ? "Which map comes next on Alpha?" : "Thank you. There is lag.");
                press(Qt::Key_Return);
            },
            [entries] { return conversation().count(u" says:\n"_s) == entries; });
    }
    act.step(
        u"the operator says something by himself while an answer is begun"_s,
        [&host] {
            enter(u"txtNewMessage"_s, "Fine with me, I will tell the pl");
            host.say("Heads up: the host gets a new network card tonight at 23:00.\n"
                     "There will be five minutes without a link.");
            host.setStatus("Be Right Back");
        },
        [] {
            return conversation().startsWith(u"Host says:\nHeads up"_s) &&
                   textOf(u"txtNewMessage"_s).endsWith(u" pl"_s) &&
                   seen(console)->windowTitle().endsWith(u": Be Right Back"_s);
        });
    act.picture(u"support-chat.png"_s);
}

void search(Act& act)
{
    act.step(
        u"a filter shows what the host said of the matter"_s,
        [] {
            click(u"Option1_0"_s);
            enter(u"txtFilter"_s, "link");
            press(Qt::Key_Return);
        },
        [] {
            return textOf(u"lblShown"_s, console) == u"Filter on: 1 of 6 messages"_s &&
                   conversation().startsWith(u"Host says:\nHeads up"_s);
        });
    act.picture(u"support-filter-on.png"_s);
    act.step(
        u"without the filter everything is there again"_s,
        [] {
            enter(u"txtFilter"_s, "");
            press(Qt::Key_Delete);
            click(u"cmdFilterImg"_s);
        },
        [] { return textOf(u"lblShown"_s, console).isEmpty() && conversation().count(u" says:\n"_s) == 6; });
    act.step(
        u"the search selects what it finds"_s,
        [] {
            enter(u"txtSearch"_s, "map");
            press(Qt::Key_Return);
        },
        [] { return seen<QPlainTextEdit>(u"txtMessages"_s)->textCursor().selectedText() == u"map"_s; });
    act.picture(u"support-search.png"_s);
}

} // namespace

void support(Act& act)
{
    const auto host = std::make_shared<practice::SupportSide>();
    if (host->listen())
        act.tracker.world().supportPort = host->port();
    act.arrive();
    act.step(
        u"without a login the console says what is missing"_s, [&act] { act.frame.supportDesk().open(); },
        [] { return isFront(console) && textOf(u"lblLink"_s, console).contains(u"log in"_s); });
    act.picture(u"support-not-connected.png"_s);
    close(act);
    act.typeConnection();
    act.connect();
    talk(act, *host);
    search(act);
    act.step(
        u"the console says that the operator's link is gone, and keeps what was said and typed"_s,
        [host] { host->closeLinks(); },
        [] {
            return textOf(u"lblLink"_s, console) == u"The host closed the support link."_s &&
                   conversation().count(u" says:\n"_s) == 6 && textOf(u"txtNewMessage"_s).endsWith(u" pl"_s);
        });
    act.picture(u"support-dropped.png"_s);
    close(act);
    act.quit();
}

} // namespace tour
