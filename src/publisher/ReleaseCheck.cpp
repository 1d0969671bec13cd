#include "publisher/ReleaseCheck.h"

#include "base/Bounds.h"
#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/ExecutableFile.h"
#include "platform/system/FileBytes.h"
#include "platform/system/FileVersion.h"
#include "platform/system/PathBytes.h"
#include "publisher/ReleaseFiles.h"
#include "publisher/ReleaseSite.h"
#include "store/AppFolder.h"
#include "updates/Sha256.h"
#include "updates/UpdateCheck.h"
#include "updates/UpdateManifest.h"
#include "updates/UpdateTargets.h"

#include <map>
#include <set>

namespace fs = std::filesystem;

namespace {

/// One look at a location, with what it has found so far.
class LocationCheck
{
public:
    LocationCheck(fs::path location, std::string system) : m_location(std::move(location)), m_system(std::move(system))
    {}

    std::vector<std::string> run(const UpdateKey& key, const std::optional<fs::path>& before)
    {
        m_manifest = manifestOf(m_location, &key);
        if (!m_manifest)
            return std::move(m_faults);
        if (before)
            m_before = manifestOf(*before, nullptr);
        if (m_before && m_manifest->serial() <= m_before->serial())
            complain("serial", std::to_string(m_manifest->serial()) + " is not higher than the published " +
                                   std::to_string(m_before->serial()));
        std::size_t records = 0;
        for (const ListKind kind : {ListKind::Client, ListKind::Plugins})
            records += checkLists(kind);
        if (records != m_manifest->size())
            complain(UpdateManifest::fileName, "names other files than the lists");
        return std::move(m_faults);
    }

private:
    void complain(std::string_view what, const std::string& why)
    {
        m_faults.push_back(m_system + ": " + std::string(what) + ": " + why);
    }

    /// @param key  null where the signature has been looked at before
    std::optional<UpdateManifest> manifestOf(const fs::path& location, const UpdateKey* key)
    {
        const std::string text = readBytes(location / UpdateManifest::fileName);
        if (key && !key->hasSigned(text, readBytes(location / UpdateManifest::signatureName)))
            complain(UpdateManifest::fileName, "is not signed with the key");
        std::optional<UpdateManifest> manifest = UpdateManifest::parse(text);
        if (!manifest)
            complain(UpdateManifest::fileName, "cannot be read by a client, or is beyond its bounds");
        return manifest;
    }

    /// @return how many files the list names
    std::size_t checkLists(ListKind kind)
    {
        const ListNames& names = listNames(kind);
        const std::string text = readBytes(folderOf(kind) / names.list);
        if (text != readBytes(folderOf(kind) / names.listByClock))
            complain(names.list, std::string("is not the same as ").append(names.listByClock));
        const std::vector<UpdateRecord> records = parseUpdateList(text);
        if (text.size() >= Bounds{}.updateListBytes || records.size() > Bounds{}.updateListRecords)
            complain(names.list, "is beyond the bounds of a client");
        else if (!isUpdateList(text, kind))
            complain(names.list, "is no list for a client: the release has no main program");
        for (const UpdateRecord& record : records)
            check(record, kind);
        return records.size();
    }

    void check(const UpdateRecord& record, ListKind kind)
    {
        const std::string what = record.folder + record.name;
        if (const std::string fault = faultOf(record, kind); !fault.empty())
            return complain(what, fault);
        if (!m_served[kind].insert(lowerAscii(requestedName(record.name))).second)
            return complain(what, "another file is asked for by the same name");
        const fs::path file = folderOf(kind) / pathOfBytes(requestedName(record.name));
        const ManifestEntry* entry = m_manifest->find(record.folder, record.name);
        if (!entry || !agrees(*entry, record) || !fs::is_regular_file(file) || entry->size != fs::file_size(file) ||
            entry->digest != sha256Of(file))
            return complain(what, "list, manifest and file do not say the same");
        checkProgram(what, record, file);
        checkChange(what, record, *entry, kind);
    }

    void checkProgram(const std::string& what, const UpdateRecord& record, const fs::path& file)
    {
        const std::string kind = executableKind(file);
        const std::string name = lowerAscii(record.name);
        if (kind.empty() ? name.ends_with(".exe") || name.ends_with(".dll") : systemOf(kind) != m_system)
            complain(what, "is no program for this system");
        const std::optional<std::string> carried = fileVersionOf(file);
        if (carried ? *carried != record.version : name.ends_with(".exe"))
            complain(what, "carries the version '" + carried.value_or("") + "', so it would be offered for ever");
    }

    /// Whoever has the published file must see that there is another one.
    void checkChange(const std::string& what, const UpdateRecord& record, const ManifestEntry& entry, ListKind kind)
    {
        const ManifestEntry* old = m_before ? m_before->find(record.folder, record.name) : nullptr;
        if (!old || old->digest == entry.digest)
            return;
        const LocalFacts facts{
            .file = [old](const UpdateRecord&) { return LocalFile{.version = old->version, .size = old->size}; },
            .isForThisPlatform = [](const UpdateRecord&) { return true; },
            .hasHelpFile = [] { return true; },
            .helpVersion = [old] { return old->version; },
        };
        const CheckRule rule = kind == ListKind::Client ? CheckRule::Client : CheckRule::Plugins;
        if (classify(record, facts, rule) == Verdict::Nothing)
            complain(what, "has changed, and no client would notice: version '" + record.version +
                               "' does not follow '" + old->version +
                               "' when compared as text, nor has its size changed");
    }

    fs::path folderOf(ListKind kind) const { return m_location / listNames(kind).folder; }

    fs::path m_location;
    std::string m_system;
    std::optional<UpdateManifest> m_manifest;
    std::optional<UpdateManifest> m_before;
    std::map<ListKind, std::set<std::string>> m_served;
    std::vector<std::string> m_faults;
};

} // namespace

std::string faultOf(const UpdateRecord& record, ListKind kind)
{
    if ((record.name + record.folder + record.description).find_first_of("|\r\n") != std::string::npos)
        return "its name cannot stand in a list";
    const AppFolder folder(fs::temp_directory_path()); // any: only the names count
    try {
        UpdateTargets(folder, {}, {}).pathOf(record.name, record.folder, kind);
    } catch (const RuntimeError&) {
        return isOwnState(record.folder, record.name) ? "belongs to a client's own records"
                                                      : "has a name that no client follows";
    }
    for (const ListKind other : {ListKind::Client, ListKind::Plugins}) {
        const ListNames& names = listNames(other);
        for (const std::string_view taken :
             {names.list, names.listByClock, UpdateManifest::fileName, UpdateManifest::signatureName}) {
            if (equalsIgnoringCase(record.name, taken))
                return "is named as a list";
        }
    }
    return {};
}

std::vector<std::string> faultsOf(const fs::path& location, const std::string& system, const UpdateKey& key,
                                  const std::optional<fs::path>& before)
{
    try {
        return LocationCheck(location, system).run(key, before);
    } catch (const RuntimeError& error) {
        return {system + ": " + error.description()};
    }
}
