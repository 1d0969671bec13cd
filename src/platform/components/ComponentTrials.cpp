#include "platform/components/ComponentTrials.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view settingsFolder = "\\settings";
constexpr std::string_view notesFile = "\\settings\\components.ini";

// "Tried" says with which state of the file "Outcome" came about, which is "good" or what went wrong.
constexpr std::string_view triedKey = "Tried";
constexpr std::string_view outcomeKey = "Outcome";
constexpr std::string_view goodOutcome = "good";

constexpr std::size_t maxOutcomeLength = 400;

/// What changes when the file does, or what a trial comprises.
std::string stateOf(const fs::path& file)
{
    constexpr std::string_view trialKind = "2 "; // creating it and reading what it says of itself
    std::error_code fault;
    const std::uintmax_t size = fs::file_size(file, fault);
    const auto changed = fs::last_write_time(file, fault).time_since_epoch().count();
    return fault ? std::string() : std::string(trialKind) + std::to_string(size) + ' ' + std::to_string(changed);
}

/// `text` as an INI file can hold it.
std::string asOneLine(std::string text)
{
    text.resize(std::min(text.size(), maxOutcomeLength));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; }, ' ');
    return text;
}

} // namespace

ComponentFault faultOf(const std::string& shownName, const Components::Verdict& verdict)
{
    if (verdict.how == Components::Verdict::How::Passed)
        return std::nullopt;
    return shownName + ": " + verdict.why;
}

void ComponentTrials::setProbe(Components::Probe probe)
{
    m_probe = std::move(probe);
    m_outcomes.clear();
}

IniText ComponentTrials::notes() const
{
    return IniText(readBytesIfPresent(m_folder.path(notesFile), IniText::maxBytes).value_or(std::string()), notesFile);
}

void ComponentTrials::writeNotes(const IniText& notes) const
{
    m_folder.makeFolder(settingsFolder);
    writeBytes(m_folder.path(notesFile), notes.bytes());
}

std::optional<Components::Verdict> ComponentTrials::verdict(const std::string& progId, const fs::path& file) const
{
    const std::string name = lowerAscii(progId);
    if (!m_probe || m_createdWell.contains(name))
        return Verdict();
    const std::string state = stateOf(file);
    const auto known = m_outcomes.find(name);
    if (known != m_outcomes.end() && known->second.state == state)
        return known->second.verdict;
    const IniText entries = notes();
    if (entries.value(progId, triedKey) != state)
        return std::nullopt;
    const std::string outcome = entries.value(progId, outcomeKey).value_or(std::string());
    if (outcome == goodOutcome)
        return Verdict();
    return outcome.empty() ? std::nullopt : std::optional(Verdict{Verdict::How::Failed, outcome});
}

void ComponentTrials::demandPassed(const std::string& progId, const std::string& shownName, const fs::path& file) const
{
    const Verdict untried{Verdict::How::NotMade, "it has not been tried yet"};
    if (const ComponentFault fault = faultOf(shownName, verdict(progId, file).value_or(untried)))
        throw RuntimeError(ErrorNumber::CannotCreateObject, *fault);
}

void ComponentTrials::tryClass(const std::string& progId, const std::string& shownName, const fs::path& file,
                               const Components::Done& done)
{
    std::optional<Verdict> known;
    if (const ComponentFault fault = faultIn([&] { known = verdict(progId, file); })) {
        done(fault);
        return;
    }
    if (known) {
        done(faultOf(shownName, *known));
        return;
    }
    run(file, progId, [this, progId, shownName, state = stateOf(file), done](const Verdict& verdict) {
        keep(progId, state, verdict);
        done(faultOf(shownName, verdict));
    });
}

void ComponentTrials::run(const fs::path& file, const std::string& progId, Then then)
{
    if (!m_probe) {
        then(Verdict());
        return;
    }
    const std::string trial = lowerAscii(progId) + '\n' + bytesOf(file);
    std::vector<Then>& waiting = m_runs[trial];
    waiting.push_back(std::move(then));
    if (waiting.size() > 1)
        return;
    const Components::Probe probe = m_probe; // what follows may set another one
    probe(file, progId, [held = weak_from_this(), trial](const Verdict& verdict) {
        if (const std::shared_ptr<ComponentTrials> trials = held.lock())
            trials->conclude(trial, verdict);
    });
}

void ComponentTrials::conclude(const std::string& trial, const Verdict& verdict)
{
    const auto run = m_runs.find(trial);
    if (run == m_runs.end())
        return;
    const std::vector<Then> waiting = std::move(run->second);
    m_runs.erase(run);
    for (const Then& then : waiting)
        then(verdict);
}

void ComponentTrials::createdWell(const std::string& progId)
{
    m_createdWell.insert(lowerAscii(progId));
}

void ComponentTrials::forget(const std::string& progId)
{
    m_createdWell.erase(lowerAscii(progId));
    m_outcomes.erase(lowerAscii(progId));
}

/// A note that cannot be kept costs another try at the next start, nothing else.
void ComponentTrials::keep(const std::string& progId, const std::string& state, const Verdict& verdict)
{
    m_outcomes[lowerAscii(progId)] = {state, verdict};
    if (verdict.how == Verdict::How::NotMade)
        return;
    try {
        IniText entries = notes();
        entries.setValue(progId, triedKey, state);
        entries.setValue(progId, outcomeKey,
                         verdict.how == Verdict::How::Passed ? std::string(goodOutcome) : asOneLine(verdict.why));
        writeNotes(entries);
    } catch (const std::exception&) {
    }
}
