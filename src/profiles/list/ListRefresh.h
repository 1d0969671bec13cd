#pragma once

#include "link/clsWinSock.h"

#include <QObject>

#include <functional>
#include <optional>
#include <string>

/// Asks the tracker for its profiles: one question under way and one behind it at most, however often the list is
/// wanted.
class ListRefresh : public QObject
{
    Q_OBJECT

public:
    /// Who wants the list, and what is to be selected in it.
    struct Wish
    {
        PendingRequest::Asked asked = PendingRequest::Asked::ByUser;
        std::optional<std::string> profile = {}; ///< id of the one to be selected; without it the first
        unsigned choice = 0; ///< number of the user's choices so far: what he chooses later overrides the wish
    };

    /// @param link      outlives this
    /// @param question  the request; made anew for every question
    ListRefresh(clsWinSock& link, std::function<Request()> question);

    /// Asks and returns when the answer has been handled or cannot come any more. While another question is under way
    /// it returns at once and is asked behind that one, in the place of what waited there before. Not logged in, it
    /// does nothing.
    void start(Wish wish);
    bool isUnderWay() const { return m_wish.has_value(); }
    /// To be called by the handler of the answer, once.
    /// @return the wish that it fulfils
    Wish takeWish();

private:
    void forget();

    clsWinSock& m_link;
    std::function<Request()> m_question;
    std::optional<Wish> m_wish; ///< of the question under way
    std::optional<Wish> m_next; ///< of the one behind it
};
