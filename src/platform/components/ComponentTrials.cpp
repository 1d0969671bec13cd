#include "platform/components/ComponentTrials.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
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

[[noreturn]] void refuse(std::string_view who, std::string_view what)
{
    throw RuntimeError(ErrorNumber::CannotCreateObject, std::string(who) + ": " + std::string(what));
}

/// What changes when the file does.
std::string stateOf(const fs::path& file)
{
    std::error_code fault;
    const std::uintmax_t size = fs::file_size(file, fault);
    const auto changed = fs::last_write_time(file, fault).time_since_epoch().count();
    return fault ? std::string() : std::to_string(size) + ' ' + std::to_string(changed);
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

IniText ComponentTrials::notes() const
{
    return IniText(readBytesIfPresent(m_folder.path(notesFile), IniText::maxBytes).value_or(std::string()), notesFile);
}

void ComponentTrials::writeNotes(const IniText& notes) const
{
    m_folder.makeFolder(settingsFolder);
    writeBytes(m_folder.path(notesFile), notes.bytes());
}

void ComponentTrials::tryFirst(const std::string& progId, const std::string& shownName, const fs::path& file)
{
    if (m_createdWell.contains(lowerAscii(progId)))
        return;
    const IniText entries = notes();
    const std::string state = stateOf(file);
    std::string outcome;
    if (entries.value(progId, triedKey) == state)
        outcome = entries.value(progId, outcomeKey).value_or(std::string());
    if (!probe || outcome == goodOutcome)
        return;
    if (!outcome.empty())
        refuse(shownName, outcome);
    if (const std::optional<std::string> why = runProbe(shownName, file, progId)) {
        remember(progId, state, *why);
        refuse(shownName, *why);
    }
}

void ComponentTrials::createdWell(const std::string& progId, const fs::path& file)
{
    if (m_createdWell.insert(lowerAscii(progId)).second)
        remember(progId, stateOf(file), goodOutcome);
}

void ComponentTrials::forget(const std::string& progId)
{
    m_createdWell.erase(lowerAscii(progId));
}

std::optional<std::string> ComponentTrials::runProbe(const std::string& shownName, const fs::path& file,
                                                     const std::string& progId)
{
    if (!probe)
        return std::nullopt;
    if (!m_underProbe.insert(shownName).second)
        refuse(shownName, "it is being tried");
    struct Leave
    {
        std::set<std::string>& names;
        const std::string& name;
        ~Leave() { names.erase(name); }
    } leave{m_underProbe, shownName};
    std::string why;
    if (probe(file, progId, why))
        return std::nullopt;
    return why;
}

/// A note that cannot be kept costs another try at the next start, nothing else.
void ComponentTrials::remember(const std::string& progId, const std::string& state,
                               std::string_view outcome) const noexcept
{
    try {
        IniText entries = notes();
        const std::string line = asOneLine(std::string(outcome));
        if (entries.value(progId, triedKey) == state && entries.value(progId, outcomeKey) == line)
            return;
        entries.setValue(progId, triedKey, state);
        entries.setValue(progId, outcomeKey, line);
        writeNotes(entries);
    } catch (const std::exception&) {
    }
}
