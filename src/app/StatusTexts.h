#pragma once

#include "client/ListNews.h"
#include "link/clsWinSock.h"

#include <QString>
#include <QStringList>
#include <QTime>

#include <chrono>
#include <optional>

/// How the connection stands, as a shape: it is seen without its colour too.
enum class LinkMark {
    Down,     ///< a ring
    Waiting,  ///< a triangle: it will be tried again
    OnTheWay, ///< half a disc
    LoggedIn, ///< a disc
};

/// What the status line knows of the connection.
struct LinkFacts
{
    LinkPhase phase = LinkPhase::Down;
    QString host;
    QString user;
    QString why;                                      ///< it is down; may be empty
    int attempt = 0;                                  ///< number of the try that is waited for or under way; 0 for none
    std::optional<std::chrono::milliseconds> nextTry; ///< until then; nothing while none is waited for
};

/// What keeps the list from being asked for by the clock.
enum class ListRest {
    None,
    Off,       ///< the user wants no refresh by the clock
    Elsewhere, ///< its window is not in front
    Minimised,
    Waiting, ///< another answer is awaited
    Held,    ///< a menu or a box is open
};

/// What the status line knows of the profile list.
struct ListFacts
{
    ListNews news;
    std::chrono::seconds age{0};   ///< of what is shown
    std::chrono::seconds pause{5}; ///< between refreshes by the clock
    ListRest rest = ListRest::None;
    std::optional<QTime> lastAnswer; ///< of the host, to whatever it was asked
};

LinkMark markOf(const LinkFacts& facts);
/// How the connection stands, in words.
QString linkText(const LinkFacts& facts);
/// The same without what changes by the second.
QString steadyLinkText(LinkFacts facts);
/// What is shown, how old it is and why it is empty or old: the most important first.
QStringList listTexts(const ListFacts& facts);
