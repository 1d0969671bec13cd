#include "updates/UpdateCheck.h"

#include "base/RuntimeError.h"
#include "base/Text.h"

namespace {

constexpr std::string_view helpFile = "help.chm";
constexpr std::string_view firstHelpVersion = "1.0.0.0";
constexpr std::string_view helpType = "Help File";

Verdict classifyHelp(const UpdateRecord& record, const LocalFacts& facts)
{
    if (!facts.hasHelpFile())
        return Verdict::New;
    const std::optional<std::string> noted = facts.helpVersion();
    if (!noted)
        return Verdict::Nothing;
    const std::string_view installed = trimmed(*noted).empty() ? firstHelpVersion : std::string_view(*noted);
    return std::string_view(record.version) > installed ? Verdict::Updated : Verdict::Nothing;
}

} // namespace

Verdict classify(const UpdateRecord& record, const LocalFacts& facts, CheckRule rule)
{
    if (rule == CheckRule::Client && !facts.isForThisPlatform(record))
        return Verdict::Nothing;
    const std::optional<LocalFile> local = facts.file(record); // first, because it refuses what must not be followed
    if (rule == CheckRule::Client && record.name == helpFile)
        return classifyHelp(record, facts);
    if (!local)
        return Verdict::New;
    const bool hasSameSize = local->size == static_cast<std::uint64_t>(record.size);
    if (rule == CheckRule::PluginsByClock && record.type == helpType)
        return hasSameSize ? Verdict::Nothing : Verdict::Changed;
    if (!local->version.empty())
        return record.version > local->version ? Verdict::Updated : Verdict::Nothing;
    return hasSameSize ? Verdict::Nothing : Verdict::Changed;
}

void Candidates::take(const UpdateRecord& record, const LocalFacts& facts, CheckRule rule)
{
    try {
        switch (classify(record, facts, rule)) {
        case Verdict::Updated:
            updated.push_back(record);
            break;
        case Verdict::New:
            added.push_back(record);
            break;
        case Verdict::Changed:
            changed.push_back(record);
            break;
        case Verdict::Nothing:
            break;
        }
    } catch (const RuntimeError& error) {
        if (error.number() != ErrorNumber::PermissionDenied)
            throw;
        refused.push_back(record);
    }
}
