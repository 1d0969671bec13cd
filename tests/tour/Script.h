#pragma once

#include <QElapsedTimer>
#include <QList>
#include <QObject>
#include <QString>

#include <chrono>
#include <functional>

namespace tour {

/// Works off steps in order. A step does something and is over when what it expects has come true; a step whose
/// expectation does not come true in time ends the event loop.
class Script : public QObject
{
public:
    /// How long an expectation may take to come true. Generous: a slow machine is no fault.
    std::chrono::milliseconds limit = std::chrono::seconds(30);
    /// Called when a step fails, while everything still stands as it failed.
    std::function<void()> onFailure;

    /// @param what   what is expected, as a sentence that can follow "did not come true: "
    /// @param act    may open modal boxes; the script goes on in their event loops
    /// @param until  asked again and again, changes nothing
    void add(const QString& what, std::function<void()> act, std::function<bool()> until);
    /// A step that only waits.
    void await(const QString& what, std::function<bool()> until);

    /// What the step added last waits for.
    std::function<bool()> lastExpectation() const { return m_steps.back().until; }
    QString lastSentence() const { return m_steps.back().what; }

    /// Begins as soon as an event loop runs, which is left with exit code 1 when a step fails.
    void start();
    /// Whether all expectations came true. The last one may do so by ending the event loop.
    bool isThrough() const;
    /// What the step that is or was under way expects.
    QString expectation() const;

private:
    struct Step
    {
        QString what;
        std::function<void()> act;
        std::function<bool()> until;
    };

    void tick();

    QList<Step> m_steps;
    qsizetype m_at = 0;
    bool m_begun = false; ///< the step at `m_at` has begun to act
    bool m_failed = false;
    QElapsedTimer m_sinceBegun;
};

} // namespace tour
