#include "platform/components/Component.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
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
    explicit Impl(const AppFolder& folder) : trials(folder), m_folder(folder) {}

    ComponentTrials trials;

    ObjectRef create(const std::string& progId);
    void registerFile(const fs::path& file);

private:
    fs::path fileOf(const std::string& layoutName) const;
    std::string layoutNameOf(const fs::path& file) const;
    ComponentLibrary& library(const std::string& layoutName);

    const AppFolder& m_folder;
    std::map<std::string, ComponentLibrary> m_libraries; ///< by layout name
};

ObjectRef Components::Impl::create(const std::string& progId)
{
    const std::optional<std::string> layoutName =
        isProgId(progId) ? trials.notes().value(progId, fileKey) : std::nullopt;
    if (!layoutName)
        refuse(progId, "no library is registered for it");
    const fs::path file = fileOf(*layoutName);
    trials.tryFirst(progId, *layoutName, file);
    ObjectRef object = library(*layoutName).create(progId);
    trials.createdWell(progId, file);
    return object;
}

void Components::Impl::registerFile(const fs::path& file)
{
    const std::string layoutName = layoutNameOf(file);
    if (const std::optional<std::string> why = trials.runProbe(layoutName, fileOf(layoutName), {}))
        refuse(layoutName, *why);
    const std::vector<std::string> classes = library(layoutName).registerClasses();
    IniText entries;
    try {
        entries = trials.notes();
    } catch (const RuntimeError& error) {
        if (error.number() != ErrorNumber::InvalidFileFormat)
            throw;
        // What a damaged file held can be registered again, so a new one takes its place.
    }
    for (const std::string& progId : classes) {
        entries.removeSection(progId);
        entries.setValue(progId, fileKey, layoutName);
        trials.forget(progId);
    }
    trials.writeNotes(entries);
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
    m_impl->trials.probe = std::move(probe);
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
