#include "diagnostics/report/Reporter.h"

#include "base/Text.h"
#include "diagnostics/report/MessageBoxes.h"
#include "platform/system/CodePage.h"
#include "store/clsMFD.h"

#include <new>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view programFile = "QRVV3RC.exe";

QString titleOf(MessageKind kind)
{
    switch (kind) {
    case MessageKind::Error:
        return u"Error!"_s;
    case MessageKind::Success:
        return u"Success"_s;
    case MessageKind::Failed:
        return u"Failed!"_s;
    case MessageKind::ActionRequired:
        return u"Action Required!"_s;
    case MessageKind::Trapped:
        return u"QRVRC Error!"_s;
    }
    return {};
}

/// Major, minor and revision (the first, second and last number) of a four-part version.
std::string threePartVersion(const std::string& version)
{
    const FieldList parts(version, '.');
    if (parts.size() < 4)
        return version;
    return std::string(parts.at(0)) + '.' + std::string(parts.at(1)) + '.' + std::string(parts.at(3));
}

} // namespace

Reporter::Reporter(const clsMFD& store, MessageBoxes& boxes, const CodePage& codePage, std::string version)
    : m_store(store),
      m_boxes(boxes),
      m_codePage(codePage),
      m_version(std::move(version))
{}

void Reporter::ReportMsg(MessageKind kind, const QString& text, const RuntimeError* error, qint32 line)
{
    if (m_shuttingDown)
        return;
    const QString composed = errorText(text, error, line);
    try {
        if (error)
            m_store.LogError(programFile, m_codePage.toBytes(text), *error, line);
        if (kind == MessageKind::Trapped)
            showTrapped(text, composed, error, line);
        else if (kind < MessageKind::Trapped)
            m_boxes.show(titleOf(kind), text);
    } catch (const std::exception&) {
        // The log or the report failed as well: what is known so far is at least shown.
        m_boxes.show(u"QRVRC"_s, composed);
    }
}

void Reporter::reportHostText(MessageKind kind, std::string_view text)
{
    ReportMsg(kind, m_codePage.toText(text));
}

RuntimeError Reporter::asRuntimeError(const std::exception& fault)
{
    if (dynamic_cast<const std::bad_alloc*>(&fault))
        return RuntimeError(ErrorNumber::OutOfMemory);
    return RuntimeError(ErrorNumber::InternalError, fault.what());
}

QString Reporter::errorText(const QString& procedure, const RuntimeError* error, qint32 line) const
{
    if (!error)
        return {};
    return u"Error Line: %1\r\nError %2: "_s.arg(line).arg(static_cast<qint32>(error->number())) +
           m_codePage.toText(error->description()) + u"\r\nFunction/Sub: "_s + procedure;
}

void Reporter::showTrapped(const QString& procedure, const QString& text, const RuntimeError* error, qint32 line)
{
    const ErrorReportRecord record{
        .number = error ? static_cast<qint32>(error->number()) : 0,
        .description = error ? error->description() : std::string(),
        .program = std::string(programFile) + ' ' + threePartVersion(m_version),
        .procedure = m_codePage.toBytes(procedure),
        .line = line,
    };
    m_boxes.showTrapped(titleOf(MessageKind::Trapped), text, [this, record](std::function<void(bool)> done) {
        m_store.SendErrorReport(record, std::move(done));
    });
}
