#include "app/StatusTexts.h"

#include <array>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

QString ordinal(int number)
{
    static constexpr std::array words{u"first", u"second",  u"third",  u"fourth", u"fifth",
                                      u"sixth", u"seventh", u"eighth", u"ninth",  u"tenth"};
    const auto index = static_cast<std::size_t>(number - 1);
    return index < words.size() ? QString::fromUtf16(words[index]) + u" try"_s : u"try %1"_s.arg(number);
}

QString spanText(std::chrono::seconds span)
{
    if (span < 60s)
        return u"%1 s"_s.arg(span.count());
    const auto minutes = std::chrono::duration_cast<std::chrono::minutes>(span).count();
    return minutes < 60 ? u"%1 min"_s.arg(minutes) : u"%1 h %2 min"_s.arg(minutes / 60).arg(minutes % 60);
}

QString restText(ListRest rest)
{
    switch (rest) {
    case ListRest::None:
        return {};
    case ListRest::Off:
        return u"refresh is off"_s;
    case ListRest::Elsewhere:
        return u"its window is not in front"_s;
    case ListRest::Minimised:
        return u"minimised"_s;
    case ListRest::Waiting:
        return u"waiting for the host's answer"_s;
    case ListRest::Held:
        return u"rests while a menu or a box is open"_s;
    }
    return {};
}

/// A list is old when a refresh by the clock has been missed.
QString ageText(const ListFacts& facts)
{
    const QString age = u"list of %1 ago"_s.arg(spanText(facts.age));
    const bool isOld = facts.age >= 2 * std::max(facts.pause, 5s);
    const QString why = isOld ? restText(facts.rest) : QString();
    return why.isEmpty() ? age : age + u": "_s + why;
}

} // namespace

LinkMark markOf(const LinkFacts& facts)
{
    if (facts.phase == LinkPhase::LoggedIn)
        return LinkMark::LoggedIn;
    if (facts.phase != LinkPhase::Down)
        return LinkMark::OnTheWay;
    return facts.attempt > 0 ? LinkMark::Waiting : LinkMark::Down;
}

QString linkText(const LinkFacts& facts)
{
    const QString which = facts.attempt > 0 ? u", "_s + ordinal(facts.attempt) : QString();
    switch (facts.phase) {
    case LinkPhase::Resolving:
        return u"looking up %1"_s.arg(facts.host) + which;
    case LinkPhase::Connecting:
        return u"connecting to %1"_s.arg(facts.host) + which;
    case LinkPhase::LoggingIn:
        return u"logging in to %1 as %2"_s.arg(facts.host, facts.user) + which;
    case LinkPhase::LoggedIn:
        return u"connected to %1 as %2"_s.arg(facts.host, facts.user);
    case LinkPhase::Down:
        break;
    }
    const QString why = facts.why.isEmpty() ? QString() : u": "_s + facts.why;
    if (facts.attempt == 0)
        return u"not connected"_s + why;
    const QString when =
        facts.nextTry ? u" in %1"_s.arg(spanText(std::chrono::ceil<std::chrono::seconds>(*facts.nextTry))) : QString();
    return u"reconnecting"_s + when + which + why;
}

QString steadyLinkText(LinkFacts facts)
{
    facts.nextTry.reset();
    return linkText(facts);
}

QStringList listTexts(const ListFacts& facts)
{
    QStringList texts;
    if (!facts.news.isKnown) {
        if (!facts.news.why.isEmpty())
            texts += facts.news.why;
    } else {
        const ListNews& news = facts.news;
        texts += news.profiles == 0 ? u"no profiles"_s
                                    : u"%1 %2, %3 hosting, %4 %5"_s.arg(news.profiles)
                                          .arg(news.profiles == 1 ? u"profile"_s : u"profiles"_s)
                                          .arg(news.hosting)
                                          .arg(news.players)
                                          .arg(news.players == 1 ? u"player"_s : u"players"_s);
        texts += ageText(facts);
    }
    if (facts.lastAnswer)
        texts += u"last answer %1"_s.arg(facts.lastAnswer->toString(u"HH:mm:ss"_s));
    return texts;
}
