#include "platform/Component.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/ComponentLibrary.h"
#include "store/AppFolder.h"
#include "store/FileBytes.h"
#include "store/IniText.h"

#include <algorithm>
#include <map>
#include <optional>
#include <set>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view settingsFolder = "\\settings";
constexpr std::string_view registryFile = "\\settings\\components.ini";
constexpr std::string_view pluginFolder = "\\Plugins";
constexpr std::string_view ending = ".dll";

// One section a class. "File" is the library's layout name; "Tried" says with which state of the file "Outcome" came
// about, which is "good" or what went wrong.
constexpr std::string_view fileKey = "File";
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

bool isLibraryName(std::string_view name)
{
    return isPlainFileName(name) && name.size() > ending.size() &&
           equalsIgnoringCase(name.substr(name.size() - ending.size()), ending);
}

/// Whether `layoutName` names a library directly in the application folder or in the plugin folder.
bool isLibraryLayoutName(std::string_view layoutName)
{
    const std::size_t name = layoutName.rfind('\\');
    if (name == std::string_view::npos || !isLibraryName(layoutName.substr(name + 1)))
        return false;
    return name == 0 || equalsIgnoringCase(layoutName.substr(0, name), pluginFolder);
}

} // namespace

class Components::Impl
{
public:
    explicit Impl(const AppFolder& folder) : m_folder(folder) {}

    Probe probe;

    ObjectRef create(const std::string& progId);
    void registerFile(const fs::path& file);

private:
    IniText registry() const;
    void write(const IniText& registry) const;
    fs::path fileOf(const std::string& layoutName) const;
    std::string layoutNameOf(const fs::path& file) const;
    ComponentLibrary& library(const std::string& layoutName);
    std::optional<std::string> runProbe(const std::string& layoutName, const std::string& progId);
    void tryFirst(const std::string& layoutName, const std::string& state, const std::string& progId);
    void remember(const std::string& progId, const std::string& state, std::string_view outcome) const noexcept;

    const AppFolder& m_folder;
    std::map<std::string, ComponentLibrary> m_libraries; ///< by layout name
    std::set<std::string> m_createdWell;                 ///< classes, in this run
    std::set<std::string> m_underProbe;                  ///< layout names
};

ObjectRef Components::Impl::create(const std::string& progId)
{
    const std::string key = lowerAscii(progId);
    const std::optional<std::string> layoutName = isProgId(progId) ? registry().value(progId, fileKey) : std::nullopt;
    if (!layoutName)
        refuse(progId, "no library is registered for it");
    const std::string state = stateOf(fileOf(*layoutName));
    const bool isTried = m_createdWell.contains(key);
    if (!isTried)
        tryFirst(*layoutName, state, progId);
    ObjectRef object = library(*layoutName).create(progId);
    if (!isTried) {
        m_createdWell.insert(key);
        remember(progId, state, goodOutcome);
    }
    return object;
}

void Components::Impl::registerFile(const fs::path& file)
{
    const std::string layoutName = layoutNameOf(file);
    if (const std::optional<std::string> why = runProbe(layoutName, {}))
        refuse(layoutName, *why);
    const std::vector<std::string> classes = library(layoutName).registerClasses();
    IniText entries;
    try {
        entries = registry();
    } catch (const RuntimeError& error) {
        if (error.number() != ErrorNumber::InvalidFileFormat)
            throw;
        // What a damaged file held can be registered again, so a new one takes its place.
    }
    for (const std::string& progId : classes) {
        entries.removeSection(progId);
        entries.setValue(progId, fileKey, layoutName);
        m_createdWell.erase(lowerAscii(progId));
    }
    write(entries);
}

IniText Components::Impl::registry() const
{
    return IniText(readBytesIfPresent(m_folder.path(registryFile), IniText::maxBytes).value_or(std::string()),
                   registryFile);
}

void Components::Impl::write(const IniText& registry) const
{
    m_folder.makeFolder(settingsFolder);
    writeBytes(m_folder.path(registryFile), registry.bytes());
}

/// @throws RuntimeError CannotCreateObject for what does not lie where libraries lie, or is no longer there
fs::path Components::Impl::fileOf(const std::string& layoutName) const
{
    if (!isLibraryLayoutName(layoutName) || !m_folder.fileExists(layoutName))
        refuse(layoutName, "there is no such library");
    return m_folder.path(layoutName);
}

std::string Components::Impl::layoutNameOf(const fs::path& file) const
{
    const std::string name = file.filename().string();
    std::error_code fault;
    if (fs::equivalent(file.parent_path(), m_folder.root(), fault))
        return '\\' + name;
    if (fs::equivalent(file.parent_path(), m_folder.path(pluginFolder), fault))
        return std::string(pluginFolder) + '\\' + name;
    refuse(file.string(), "it lies neither in the program folder nor in its plugin folder");
}

ComponentLibrary& Components::Impl::library(const std::string& layoutName)
{
    const fs::path file = fileOf(layoutName); // also of a loaded one: what is gone counts no more
    const auto known = m_libraries.find(layoutName);
    if (known != m_libraries.end())
        return known->second;
    return m_libraries.try_emplace(layoutName, file, layoutName, m_folder.root()).first->second;
}

/// @return what is wrong with the library; nothing when the try came to its end, or there is no probe
/// @throws RuntimeError CannotCreateObject when it cannot be tried now
std::optional<std::string> Components::Impl::runProbe(const std::string& layoutName, const std::string& progId)
{
    if (!probe)
        return std::nullopt;
    if (!m_underProbe.insert(layoutName).second)
        refuse(layoutName, "it is being tried");
    struct Leave
    {
        std::set<std::string>& names;
        const std::string& name;
        ~Leave() { names.erase(name); }
    } leave{m_underProbe, layoutName};
    std::string why;
    if (probe(fileOf(layoutName), progId, why))
        return std::nullopt;
    return why;
}

/// Probes a library that has not yet created `progId` well in its present state.
void Components::Impl::tryFirst(const std::string& layoutName, const std::string& state, const std::string& progId)
{
    const IniText entries = registry();
    std::string outcome;
    if (entries.value(progId, triedKey) == state)
        outcome = entries.value(progId, outcomeKey).value_or(std::string());
    if (!probe || outcome == goodOutcome)
        return;
    if (!outcome.empty())
        refuse(layoutName, outcome);
    if (const std::optional<std::string> why = runProbe(layoutName, progId)) {
        remember(progId, state, *why);
        refuse(layoutName, *why);
    }
}

/// A note that cannot be kept costs another try at the next start, nothing else.
void Components::Impl::remember(const std::string& progId, const std::string& state,
                                std::string_view outcome) const noexcept
{
    try {
        IniText entries = registry();
        const std::string line = asOneLine(std::string(outcome));
        if (!entries.value(progId, fileKey) ||
            (entries.value(progId, triedKey) == state && entries.value(progId, outcomeKey) == line))
            return;
        entries.setValue(progId, triedKey, state);
        entries.setValue(progId, outcomeKey, line);
        write(entries);
    } catch (const std::exception&) {
    }
}

Components::Components(const AppFolder& folder) : m_impl(std::make_unique<Impl>(folder)) {}

Components::~Components() = default;

void Components::setProbe(Probe probe)
{
    m_impl->probe = std::move(probe);
}

ObjectRef Components::createObject(const std::string& progId)
{
    try {
        return m_impl->create(progId);
    } catch (const RuntimeError& error) {
        if (error.number() == ErrorNumber::CannotCreateObject)
            throw;
        throw RuntimeError(ErrorNumber::CannotCreateObject, progId + ": " + error.description());
    }
}

bool Components::registerFile(const fs::path& file)
{
    try {
        m_impl->registerFile(file);
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

void tryComponent(const AppFolder& folder, const fs::path& file, const std::string& progId)
{
    try {
        const ComponentLibrary library(file, file.filename().string(), folder.root());
        if (progId.empty())
            library.registerClasses();
        else
            library.create(progId);
    } catch (const RuntimeError&) { // the client makes the same try and tells people what comes of it
    }
}
