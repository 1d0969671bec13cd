#include "diagnostics/report/Reporter.h"

#include "base/Text.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/TrappedError.h"
#include "platform/system/CodePage.h"
#include "platform/system/PathBytes.h"
#include "store/clsMFD.h"

#include <algorithm>
#include <filesystem>
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

ErrorKey keyOf(std::string procedure, const RuntimeError* error)
{
    if (!error)
        return {.procedure = std::move(procedure), .number = 0, .text = {}};
    return {.procedure = std::move(procedure),
            .number = static_cast<std::int32_t>(error->number()),
            .text = error->description()};
}

std::string equalsNote(std::size_t count)
{
    return count == 0 ? std::string() : " (and " + std::to_string(count) + " equal errors before)";
}

} // namespace

Reporter::Reporter(const clsMFD& store, MessageBoxes& boxes, const CodePage& codePage, std::string version,
                   const Bounds& bounds)
    : m_store(store),
      m_boxes(boxes),
      m_codePage(codePage),
      m_version(std::move(version)),
      m_brake(bounds)
{}

void Reporter::ReportMsg(MessageKind kind, const QString& text, const RuntimeError* error, qint32 line)
{
    if (m_shuttingDown)
        return;
    try {
        if (kind == MessageKind::Trapped) {
            handleTrapped(text, error, line);
            return;
        }
        if (error)
            log(keyOf(m_codePage.toBytes(text), error), text, error, line);
        if (kind < MessageKind::Trapped)
            m_boxes.show(titleOf(kind), text);
    } catch (const std::exception&) {
        // The log or the report failed as well: what is known so far is at least shown.
        m_boxes.show(u"QRVRC"_s, errorText(text, error, line));
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
    if (const auto* disk = dynamic_cast<const std::filesystem::filesystem_error*>(&fault))
        return RuntimeError(ErrorNumber::InternalError,
                            PrivateName(bytesOf(disk->path1()), ": " + disk->code().message()));
    return RuntimeError(ErrorNumber::InternalError, fault.what());
}

QString Reporter::errorText(const QString& procedure, const RuntimeError* error, qint32 line) const
{
    if (!error)
        return {};
    return u"Error Line: %1\r\nError %2: "_s.arg(line).arg(static_cast<qint32>(error->number())) +
           m_codePage.toText(error->description()) + u"\r\nFunction/Sub: "_s + procedure;
}

/// @return how many equal ones were held back before this one; nothing when it is held back itself
std::optional<std::size_t> Reporter::log(const ErrorKey& key, const QString& procedure, const RuntimeError* error,
                                         qint32 line)
{
    const std::optional<std::size_t> heldBack = m_brake.admitError(key, RateLimit::Clock::now());
    if (error && heldBack)
        m_store.LogError(programFile, m_codePage.toBytes(procedure), error->followedBy(equalsNote(*heldBack)), line);
    return heldBack;
}

void Reporter::handleTrapped(const QString& procedure, const RuntimeError* error, qint32 line)
{
    const ErrorKey key = keyOf(m_codePage.toBytes(procedure), error);
    const std::optional<std::size_t> heldBack = log(key, procedure, error, line);
    std::shared_ptr<TrappedError> trapped = shownOf(key);
    const bool isShown = trapped != nullptr;
    if (isShown)
        trapped->happenAgain();
    else
        trapped = std::make_shared<TrappedError>(errorText(procedure, error, line));
    if (heldBack)
        report(trapped, {.number = key.number,
                         .description = error ? m_store.reportable(*error) + equalsNote(*heldBack) : std::string(),
                         .program = std::string(programFile) + ' ' + threePartVersion(m_version),
                         .procedure = key.procedure,
                         .line = line});
    else if (!isShown)
        trapped->setReport(TrappedError::Report::EqualSent);
    if (isShown)
        return;
    m_shown.push_back({key, trapped});
    m_boxes.showTrapped(titleOf(MessageKind::Trapped), trapped);
}

std::shared_ptr<TrappedError> Reporter::shownOf(const ErrorKey& key)
{
    std::erase_if(m_shown, [](const Shown& shown) {
        const std::shared_ptr<TrappedError> error = shown.error.lock();
        return !error || error->isClosed();
    });
    const auto found =
        std::find_if(m_shown.begin(), m_shown.end(), [&key](const Shown& shown) { return shown.key == key; });
    return found == m_shown.end() ? nullptr : found->error.lock();
}

void Reporter::report(const std::shared_ptr<TrappedError>& trapped, ErrorReportRecord record)
{
    if (reports == ReportMode::Never) {
        trapped->setReport(TrappedError::Report::Unwanted);
        return;
    }
    if (reports == ReportMode::AskedFor) {
        trapped->offerReport([this, weak = std::weak_ptr(trapped), record = std::move(record)] {
            if (const auto error = weak.lock())
                send(error, record);
        });
        return;
    }
    const std::optional<std::size_t> heldBack = m_brake.admitReport(RateLimit::Clock::now());
    if (!heldBack) {
        trapped->setReport(TrappedError::Report::CountedLater);
        return;
    }
    if (*heldBack > 0)
        record.description += " (and " + std::to_string(*heldBack) + " reports were not sent before)";
    send(trapped, record);
}

void Reporter::send(const std::shared_ptr<TrappedError>& trapped, const ErrorReportRecord& record)
{
    m_store.SendErrorReport(record, [weak = std::weak_ptr(trapped)](bool delivered) {
        if (const auto error = weak.lock())
            error->setReport(delivered ? TrappedError::Report::Delivered : TrappedError::Report::Failed);
    });
}
