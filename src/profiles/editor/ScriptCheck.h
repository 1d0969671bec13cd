#pragma once

#include "profiles/editor/ScriptAddress.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <optional>
#include <string>

class CodePage;
class Inet;
class MessageBoxes;
class PageFetch;

/// What a check of scripts came to.
enum class ScriptFinding {
    Stopped,   ///< before it came to anything
    Missing,   ///< the scripts did not answer as such
    UnknownId, ///< they did, and do not know the server id
    Found,     ///< they did, and the user does not want the server id validated
    Validated, ///< they know the server id
};

/// Checks scripts over HTTP before they join a profile: fetches their pages, judges the answers and asks the user how
/// far to go. It says what it is doing, and can be stopped.
class ScriptCheck : public QObject
{
    Q_OBJECT

public:
    /// All outlive the check.
    /// @param limit  a page that has not answered by then is taken for none
    ScriptCheck(Inet& inet, MessageBoxes& boxes, const CodePage& codePage, std::chrono::milliseconds limit);
    ~ScriptCheck() override;

    /// Checks `script`, one at a time. GUI events run meanwhile, so that whoever asked may be gone afterwards, and this
    /// object with him.
    ScriptFinding run(const Script& script);
    /// Ends what is under way. Does nothing when nothing is.
    void stop();
    /// Whether a page is being fetched.
    bool isFetching() const { return m_fetch != nullptr; }

Q_SIGNALS:
    /// A page is being fetched from now on, or no longer.
    void fetchingChanged();
    /// What is going on or what became of it, and the address that it is about; both empty when there is nothing to
    /// say.
    void told(const QString& text, const QString& address);

private:
    std::optional<bool> answersYes(const QString& doing, const std::string& address, const std::string& system);
    bool fetch(const QString& doing, const QString& address);
    bool judge(const PageFetch& fetched, const std::string& system, const QString& address);

    Inet& m_inet;
    MessageBoxes& m_boxes;
    const CodePage& m_codePage;
    const std::chrono::milliseconds m_limit;
    std::unique_ptr<PageFetch> m_fetch;
    bool m_isStopped = false;
};
