#pragma once

#include "updates/UpdateList.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

/// What is known of a file on the disk.
struct LocalFile
{
    std::string version; ///< empty for a file that carries none
    std::uint64_t size = 0;
};

/// The questions that a check has about this machine.
struct LocalFacts
{
    /// The record's file. Nothing when there is none; a RuntimeError when the record must not be followed.
    std::function<std::optional<LocalFile>(const UpdateRecord&)> file;
    /// Whether the record's folder exists on this platform at all.
    std::function<bool(const UpdateRecord&)> isForThisPlatform;
    /// Whether the help file is in the program folder.
    std::function<bool()> hasHelpFile;
    /// The noted version of the help file, which carries none itself: nothing when there is no file to note it in,
    /// empty when it is not noted there.
    std::function<std::optional<std::string>()> helpVersion;
};

class UpdateManifest;

enum class Verdict {
    Nothing, ///< as good as what is offered, or none of this machine's business
    Updated, ///< a newer version is offered
    New,     ///< missing here
    Changed, ///< of another size, without a version to tell which is newer
};

enum class CheckRule {
    Client,
    Plugins,
    /// As the background check of plugins does: a help file is judged by its size alone.
    PluginsByClock,
};

Verdict classify(const UpdateRecord& record, const LocalFacts& facts, CheckRule rule);

/// A file of a list that a check has something to say about.
struct Candidate
{
    UpdateRecord record;
    LocalFile local = {};    ///< what is here in its place, if anything
    std::string digest = {}; ///< what it must hold, 64 hexadecimal digits; empty where nothing is proven
};

/// Why a file of a list is not offered, whatever is here in its place.
enum class Refusal {
    OutsideFolder, ///< would be written outside the program folder
    OwnState,      ///< would be written over the client's own records
    NotSigned,     ///< the signed manifest does not know it
    NotAsSigned,   ///< the signed manifest says something else of it
};

struct RefusedFile
{
    UpdateRecord record;
    Refusal why;
};

/// What a list has to offer to this machine, in the list's order.
struct Candidates
{
    std::vector<Candidate> updated;
    std::vector<Candidate> added;
    std::vector<Candidate> changed;
    std::vector<RefusedFile> refused;

    /// Sorts a record in. A record that `facts` or the manifest speaks against is kept aside.
    /// @param manifest  null where nothing is proven
    void take(const UpdateRecord& record, const LocalFacts& facts, CheckRule rule,
              const UpdateManifest* manifest = nullptr);
    /// Whether nothing is offered.
    bool isEmpty() const { return updated.empty() && added.empty() && changed.empty(); }
};
