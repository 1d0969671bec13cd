#pragma once

#include "practice/answers/Answers.h"
#include "practice/links/Fault.h"

#include <QSet>

#include <optional>

namespace practice {

class TrackerSession;

/// An answer that is worked out and has not gone out.
struct PendingAnswer
{
    TrackerSession* session = nullptr; ///< whose request it answers; not owned
    QByteArray request;                ///< the request's name
    Answer answer;
    Fault fault;
    bool held = false; ///< whether it waits for its release; decided by PendingAnswers::add()
};

/// The answers that have not gone out, in the order of their requests. On one link no answer overtakes another, so that
/// a held one holds back whatever stands behind it there; other links go on.
class PendingAnswers
{
public:
    /// Answers to requests of this name that are added from now on wait for their release.
    void hold(const QByteArray& request) { m_holding += request; }
    /// How many answers to requests of this name wait for their release.
    int held(const QByteArray& request) const;
    void add(const PendingAnswer& pending);
    /// Lets go of the oldest held answer to a request of this name.
    /// @return false when there is none
    bool release(const QByteArray& request);
    /// Lets go of all held answers; those added from now on are not held.
    void releaseAll();
    /// Takes out the oldest answer that nothing holds back.
    std::optional<PendingAnswer> takeDue();
    /// Takes out all answers for a link, whether held or not.
    QList<PendingAnswer> takeAllOf(const TrackerSession* session);

private:
    QSet<QByteArray> m_holding; // names of requests
    QList<PendingAnswer> m_line;
};

} // namespace practice
