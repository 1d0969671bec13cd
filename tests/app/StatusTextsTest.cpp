#include "app/StatusTexts.h"

#include "support/AddRow.h"

#include <QTest>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

class StatusTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theConnectionIsAShapeAndWords_data()
    {
        addColumns<LinkPhase, QString, int, int, LinkMark, QString>("phase", "why", "attempt", "next", "mark", "text");
        constexpr int none = -1; // milliseconds
        addRow("at first", LinkPhase::Down, u""_s, 0, none, LinkMark::Down, u"not connected"_s);
        addRow("lost", LinkPhase::Down, u"gone"_s, 0, none, LinkMark::Down, u"not connected: gone"_s);
        addRow("waiting", LinkPhase::Down, u"gone"_s, 3, 11'001, LinkMark::Waiting,
               u"reconnecting in 12 s, third try: gone"_s);
        addRow("a long wait", LinkPhase::Down, u""_s, 11, 65'000, LinkMark::Waiting,
               u"reconnecting in 1 min, try 11"_s);
        addRow("look-up", LinkPhase::Resolving, u""_s, 0, none, LinkMark::OnTheWay, u"looking up h"_s);
        addRow("trying", LinkPhase::Connecting, u"gone"_s, 2, none, LinkMark::OnTheWay,
               u"connecting to h, second try"_s);
        addRow("login", LinkPhase::LoggingIn, u""_s, 1, none, LinkMark::OnTheWay, u"logging in to h as u, first try"_s);
        addRow("logged in", LinkPhase::LoggedIn, u""_s, 0, none, LinkMark::LoggedIn, u"connected to h as u"_s);
    }
    void theConnectionIsAShapeAndWords()
    {
        QFETCH(const LinkPhase, phase);
        QFETCH(const QString, why);
        QFETCH(const int, attempt);
        QFETCH(const int, next);
        LinkFacts facts{.phase = phase, .host = u"h"_s, .user = u"u"_s, .why = why, .attempt = attempt, .nextTry = {}};
        if (next >= 0)
            facts.nextTry = std::chrono::milliseconds(next);
        QTEST(markOf(facts), "mark");
        QTEST(linkText(facts), "text");
        QVERIFY(!steadyLinkText(facts).contains(u" in 1"_s));
    }

    void theListSaysWhatItShowsAndWhyItIsOld_data()
    {
        addColumns<ListNews, int, int, ListRest, QString>("news", "age", "pause", "rest", "text");
        const ListNews nine{.isKnown = true, .profiles = 9, .hosting = 6, .players = 153};
        const QString totals = u"9 profiles, 6 hosting, 153 players|"_s;
        addRow("fresh", nine, 3, 5, ListRest::Waiting, totals + u"list of 3 s ago"_s);
        addRow("missed", nine, 10, 5, ListRest::Waiting, totals + u"list of 10 s ago: waiting for the host's answer"_s);
        addRow("rarely", nine, 100, 60, ListRest::Held, totals + u"list of 1 min ago"_s);
        addRow("held", nine, 3700, 60, ListRest::Held,
               totals + u"list of 1 h 1 min ago: rests while a menu or a box is open"_s);
        addRow("off", nine, 61, 0, ListRest::Off, totals + u"list of 1 min ago: refresh is off"_s);
        addRow("elsewhere", nine, 59, 5, ListRest::Elsewhere,
               totals + u"list of 59 s ago: its window is not in front"_s);
        addRow("one", ListNews{.isKnown = true, .profiles = 1, .hosting = 0, .players = 1}, 0, 5, ListRest::None,
               u"1 profile, 0 hosting, 1 player|list of 0 s ago"_s);
        addRow("none", ListNews{.isKnown = true}, 0, 5, ListRest::None, u"no profiles|list of 0 s ago"_s);
        addRow("unknown", ListNews{.why = u"asking"_s}, 7, 5, ListRest::None, u"asking"_s);
        addRow("nothing", ListNews(), 7, 5, ListRest::None, u""_s);
    }
    void theListSaysWhatItShowsAndWhyItIsOld()
    {
        QFETCH(const ListNews, news);
        QFETCH(const int, age);
        QFETCH(const int, pause);
        QFETCH(const ListRest, rest);
        ListFacts facts{.news = news,
                        .age = std::chrono::seconds(age),
                        .pause = std::chrono::seconds(pause),
                        .rest = rest,
                        .lastAnswer = {}};
        QTEST(listTexts(facts).join(u'|'), "text");
        facts.lastAnswer = QTime(14, 3, 22);
        QCOMPARE(listTexts(facts).last(), u"last answer 14:03:22"_s);
    }
};

QTEST_GUILESS_MAIN(StatusTextsTest)
#include "StatusTextsTest.moc"
