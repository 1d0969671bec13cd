#include "updates/UpdateCheck.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "updates/UpdateManifest.h"
#include "updates/UpdateTargets.h"

#include <utility>

namespace {

constexpr std::string_view helpFile = "help.chm";
constexpr std::string_view firstHelpVersion = "1.0.0.0";
constexpr std::string_view helpType = "Help File";

/// A verdict and what it was based on.
struct Judgement
{
    Verdict verdict = Verdict::Nothing;
    LocalFile local = {};
};

Judgement judgeHelp(const UpdateRecord& record, const LocalFacts& facts)
{
    if (!facts.hasHelpFile())
        return {.verdict = Verdict::New};
    const std::optional<std::string> noted = facts.helpVersion();
    if (!noted)
        return {};
    const std::string_view installed = trimmed(*noted).empty() ? firstHelpVersion : std::string_view(*noted);
    return {.verdict = std::string_view(record.version) > installed ? Verdict::Updated : Verdict::Nothing,
            .local = {.version = std::string(installed)}};
}

Judgement judge(const UpdateRecord& record, const LocalFacts& facts, CheckRule rule)
{
    if (rule == CheckRule::Client && !facts.isForThisPlatform(record))
        return {};
    const std::optional<LocalFile> local = facts.file(record); // first, because it refuses what must not be followed
    if (rule == CheckRule::Client && record.name == helpFile)
        return judgeHelp(record, facts);
    if (!local)
        return {.verdict = Verdict::New};
    const Verdict bySize = local->size == static_cast<std::uint64_t>(record.size) ? Verdict::Nothing : Verdict::Changed;
    const bool isJudgedBySize =
        local->version.empty() || (rule == CheckRule::PluginsByClock && record.type == helpType);
    const Verdict byVersion = record.version > local->version ? Verdict::Updated : Verdict::Nothing;
    return {.verdict = isJudgedBySize ? bySize : byVersion, .local = *local};
}

} // namespace

Verdict classify(const UpdateRecord& record, const LocalFacts& facts, CheckRule rule)
{
    return judge(record, facts, rule).verdict;
}

void Candidates::take(const UpdateRecord& record, const LocalFacts& facts, CheckRule rule,
                      const UpdateManifest* manifest)
{
    Judgement judgement;
    try {
        judgement = judge(record, facts, rule);
    } catch (const RuntimeError& error) {
        if (error.number() != ErrorNumber::PermissionDenied)
            throw;
        refused.push_back(
            {record, isOwnState(record.folder, record.name) ? Refusal::OwnState : Refusal::OutsideFolder});
        return;
    }
    if (judgement.verdict == Verdict::Nothing)
        return;
    const ManifestEntry* entry = manifest ? manifest->find(record.folder, record.name) : nullptr;
    if (manifest && (!entry || !agrees(*entry, record))) {
        refused.push_back({record, entry ? Refusal::NotAsSigned : Refusal::NotSigned});
        return;
    }
    std::vector<Candidate>& group = judgement.verdict == Verdict::Updated ? updated
                                    : judgement.verdict == Verdict::New   ? added
                                                                          : changed;
    group.push_back({record, std::move(judgement.local), entry ? entry->digest : std::string()});
}
