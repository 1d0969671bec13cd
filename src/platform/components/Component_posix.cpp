#include "platform/components/Component.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/components/ComponentHost.h"
#include "platform/components/ComponentLibrary.h"
#include "platform/components/ComponentTrials.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <map>
#include <optional>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view pluginFolder = "\\Plugins";
constexpr std::string_view ending = ".dll";

// Where the notes of a class hold the layout name of its library.
constexpr std::string_view fileKey = "File";

[[noreturn]] void refuse(std::string_view who, std::string_view what)
{
    throw RuntimeError(ErrorNumber::CannotCreateObject, std::string(who) + ": " + std::string(what));
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
    explicit Impl(const AppFolder& folder) : m_folder(folder), m_trials(std::make_shared<ComponentTrials>(folder)) {}

    ComponentTrials& trials() { return *m_trials; }

    /// @throws RuntimeError CannotCreateObject for a class that is not registered, or whose library is not there
    std::string libraryOf(const std::string& progId) const;
    fs::path fileOf(const std::string& layoutName) const;
    std::string layoutNameOf(const fs::path& file) const;

    ObjectRef create(const std::string& progId);
    void registerLibrary(const std::string& layoutName);

private:
    ComponentLibrary& library(const std::string& layoutName);

    const AppFolder& m_folder;
    std::shared_ptr<ComponentTrials> m_trials;
    std::map<std::string, ComponentLibrary> m_libraries; ///< by layout name
};

std::string Components::Impl::libraryOf(const std::string& progId) const
{
    const std::optional<std::string> layoutName =
        isProgId(progId) ? m_trials->notes().value(progId, fileKey) : std::nullopt;
    if (!layoutName)
        refuse(progId, "no library is registered for it");
    return *layoutName;
}

ObjectRef Components::Impl::create(const std::string& progId)
{
    const std::string layoutName = libraryOf(progId);
    m_trials->demandPassed(progId, layoutName, fileOf(layoutName));
    ObjectRef object = library(layoutName).create(progId);
    m_trials->createdWell(progId);
    return object;
}

void Components::Impl::registerLibrary(const std::string& layoutName)
{
    const std::vector<std::string> classes = library(layoutName).registerClasses();
    IniText entries;
    try {
        entries = m_trials->notes();
    } catch (const RuntimeError& error) {
        if (error.number() != ErrorNumber::InvalidFileFormat)
            throw;
        // What a damaged file held can be registered again, so a new one takes its place.
    }
    for (const std::string& progId : classes) {
        entries.removeSection(progId);
        entries.setValue(progId, fileKey, layoutName);
        m_trials->forget(progId);
    }
    m_trials->writeNotes(entries);
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

Components::Components(const AppFolder& folder) : m_impl(std::make_unique<Impl>(folder)) {}

Components::~Components() = default;

void Components::setProbe(Probe probe)
{
    m_impl->trials().setProbe(std::move(probe));
}

void Components::useCodePage(std::string_view name)
{
    hostCodePage().use(name);
}

bool Components::isTried(const std::string& progId) const
{
    try {
        return m_impl->trials().verdict(progId, m_impl->fileOf(m_impl->libraryOf(progId))).has_value();
    } catch (const RuntimeError&) {
        return true; // creating it says what is wrong
    }
}

void Components::tryClass(const std::string& progId, const Done& done)
{
    std::string layoutName;
    fs::path file;
    const ComponentFault fault = faultIn([&] {
        layoutName = m_impl->libraryOf(progId);
        file = m_impl->fileOf(layoutName);
    });
    if (fault)
        done(fault);
    else
        m_impl->trials().tryClass(progId, layoutName, file, done);
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

void Components::registerFile(const fs::path& file, const Done& done)
{
    std::string layoutName;
    fs::path found;
    const ComponentFault unusable = faultIn([&] {
        layoutName = m_impl->layoutNameOf(file);
        found = m_impl->fileOf(layoutName);
    });
    if (unusable) {
        done(unusable);
        return;
    }
    m_impl->trials().run(found, {}, [this, layoutName, done](const Verdict& verdict) {
        ComponentFault fault = faultOf(layoutName, verdict);
        if (!fault)
            fault = faultIn([&] { m_impl->registerLibrary(layoutName); });
        done(fault);
    });
}

void tryComponent(const AppFolder& folder, const fs::path& file, const std::string& progId,
                  const std::function<void(ComponentObject&)>& examine)
{
    try {
        const ComponentLibrary library(file, file.filename().string(), folder.root());
        if (progId.empty())
            library.registerClasses();
        else
            examine(*library.create(progId));
    } catch (const RuntimeError&) { // the client makes the same try and tells people what comes of it
    }
}
