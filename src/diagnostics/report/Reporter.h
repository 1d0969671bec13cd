#pragma once

#include "base/RuntimeError.h"
#include "diagnostics/report/ErrorBrake.h"

#include <QString>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

class clsMFD;
class CodePage;
class MessageBoxes;
class TrappedError;
struct ErrorReportRecord;

enum class MessageKind : quint8 {
    Error = 0,          ///< "Error!"
    Success = 1,        ///< "Success"
    Failed = 2,         ///< "Failed!"
    ActionRequired = 3, ///< "Action Required!"
    Trapped = 4,        ///< the end of an error trap: logged, reported and shown
};

/// What sends the reports of trapped errors.
enum class ReportMode {
    ByThemselves,
    AskedFor, ///< the user, from the error's box
    Never,
};

/// The one way in which the program speaks to its user about outcomes and errors.
class Reporter
{
public:
    /// All outlive the reporter.
    /// @param version  the program's four-part version
    Reporter(const clsMFD& store, MessageBoxes& boxes, const CodePage& codePage, std::string version,
             const Bounds& bounds = {});

    /// How reports go out from now on. A setting.
    ReportMode reports = ReportMode::ByThemselves;
    /// What the reporter shows its boxes with.
    MessageBoxes& boxes() { return m_boxes; }

    /// Errors with equal procedure, number and description are counted in the box of the first of them while that is
    /// open, and are logged and reported once within `Bounds::equalErrorsPeriod`.
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
    void handleTrapped(const QString& procedure, const RuntimeError* error, qint32 line);
    std::optional<std::size_t> log(const ErrorKey& key, const QString& procedure, const RuntimeError* error,
                                   qint32 line);
    void report(const std::shared_ptr<TrappedError>& trapped, ErrorReportRecord record);
    void send(const std::shared_ptr<TrappedError>& trapped, const ErrorReportRecord& record);
    std::shared_ptr<TrappedError> shownOf(const ErrorKey& key);

    /// An error whose box waits or is open.
    struct Shown
    {
        ErrorKey key;
        std::weak_ptr<TrappedError> error;
    };

    const clsMFD& m_store;
    MessageBoxes& m_boxes;
    const CodePage& m_codePage;
    std::string m_version;
    ErrorBrake m_brake;
    std::vector<Shown> m_shown;
    bool m_shuttingDown = false;
};
