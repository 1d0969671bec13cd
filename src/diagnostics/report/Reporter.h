#pragma once

#include "base/RuntimeError.h"

#include <QString>

#include <functional>
#include <string>
#include <string_view>
#include <utility>

class clsMFD;
class CodePage;
class MessageBoxes;

enum class MessageKind : quint8 {
    Error = 0,          ///< "Error!"
    Success = 1,        ///< "Success"
    Failed = 2,         ///< "Failed!"
    ActionRequired = 3, ///< "Action Required!"
    Trapped = 4,        ///< the end of an error trap: logged, reported and shown
};

/// The one way in which the program speaks to its user about outcomes and errors.
class Reporter
{
public:
    /// All outlive the reporter.
    /// @param version  the program's four-part version
    Reporter(const clsMFD& store, MessageBoxes& boxes, const CodePage& codePage, std::string version);

    /// @param text   the message; for `Trapped` the fixed name of the procedure that trapped `error`
    /// @param error  logged whatever the kind; none for the kinds 0 to 3
    /// @param line   the line that noticed the error; 0 without one
    void ReportMsg(MessageKind kind, const QString& text, const RuntimeError* error = nullptr, qint32 line = 0);

    /// Shows the host's own words, given in its code page.
    void reportHostText(MessageKind kind, std::string_view text);

    /// Runs `body`; an error ends it and is reported under the fixed name `procedure`.
    /// @return whether `body` ran to its end
    template <typename Body>
    bool trap(const char* procedure, Body&& body)
    {
        try {
            std::forward<Body>(body)();
            return true;
        } catch (const RuntimeError& error) {
            ReportMsg(MessageKind::Trapped, QString::fromLatin1(procedure), &error, error.line());
        } catch (const std::exception& fault) {
            const RuntimeError error = asRuntimeError(fault);
            ReportMsg(MessageKind::Trapped, QString::fromLatin1(procedure), &error, 0);
        }
        return false;
    }

    /// `body` as a slot that runs inside `trap(procedure, ...)`.
    template <typename Body>
    auto trapped(const char* procedure, Body body)
    {
        return [this, procedure, body = std::move(body)]() mutable { trap(procedure, body); };
    }

    /// From now on nothing is logged, reported or shown. Called when the frame begins to unload.
    void silence() { m_shuttingDown = true; }

private:
    static RuntimeError asRuntimeError(const std::exception& fault);
    QString errorText(const QString& procedure, const RuntimeError* error, qint32 line) const;
    void showTrapped(const QString& procedure, const QString& text, const RuntimeError* error, qint32 line);

    const clsMFD& m_store;
    MessageBoxes& m_boxes;
    const CodePage& m_codePage;
    std::string m_version;
    bool m_shuttingDown = false;
};
