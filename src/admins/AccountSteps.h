#pragma once

#include "admins/AccountDrafts.h"
#include "admins/AccountHome.h"
#include "link/Request.h"

#include <QObject>

#include <cstdint>
#include <deque>
#include <optional>
#include <string>

class clsWinSock;

/// What a user does to an account.
enum class AccountAct : std::uint8_t { Add, Modify, Kick, Delete };

/// One request about accounts, and what it is for.
struct AccountStep
{
    Request request;
    AccountHome home;                       ///< where the accounts are that it is about
    std::string checklistOf = {};           ///< whose privileges it asks for; empty for other requests
    std::optional<AccountAct> act = {};     ///< what it carries out, or shows the outcome of; none when it only reads
    std::optional<AccountDraft> saved = {}; ///< what the step before it has sent, for the one that shows the outcome
};

/// The queue of requests about accounts: each is sent when the one before it is answered, as it was meant when it was
/// added. All are forgotten when the link is lost.
class AccountSteps : public QObject
{
    Q_OBJECT

public:
    /// @param link  outlives the queue
    explicit AccountSteps(clsWinSock& link);

    void add(AccountStep step);
    /// Sends what waits, one by one, and returns when nothing is left; GUI events run meanwhile. While it runs, another
    /// call returns at once: whoever works goes on with what is new.
    void work();
    /// Forgets the steps that only read and are not sent yet.
    void dropReads();
    /// The same for those that ask for the privileges of an account, what a new one starts from excepted.
    void dropChecklists();

    /// The step whose answer is awaited, or null. Valid until events run.
    const AccountStep* current() const { return m_current ? &*m_current : nullptr; }
    bool isWorking() const { return m_isWorking; }
    /// Whether a step of this act waits, or is under way.
    bool carriesOut(AccountAct act) const;
    /// Whether the privileges of an account are asked for, or are going to be.
    bool asksFor(const AccountHome& home, const std::string& account) const;

Q_SIGNALS:
    /// A step is over, answered or not, or there is nothing left to do.
    void moved();

private:
    void stop();
    template <typename Predicate>
    bool holds(Predicate predicate) const;

    clsWinSock& m_link;
    std::deque<AccountStep> m_waiting;
    std::optional<AccountStep> m_current;
    bool m_isWorking = false;
};
