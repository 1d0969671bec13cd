#pragma once

#include "platform/components/Component.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct ComponentHost;
struct QrvrcObject;

/// One shared library that offers components through the interface of sdk/qrvrc_plugin.h. It stays loaded to the end of
/// the run, so that what it left behind (timers, windows, objects) keeps its code.
class ComponentLibrary
{
public:
    /// Loads the library and hands it the client's services.
    /// @param file              full path; never looked for elsewhere
    /// @param shownName         what errors call it, for example "\Plugins\qrvrcWatch.dll"
    /// @param applicationFolder what the library is told to be the application folder
    /// @throws RuntimeError CannotCreateObject for what is no complete library of this platform, lacks an entry point
    ///         or was built for another interface; the description names the file and what is wrong with it
    ComponentLibrary(const std::filesystem::path& file, std::string shownName,
                     const std::filesystem::path& applicationFolder);

    /// Calls DllRegisterServer.
    /// @return the classes that the library entered; one at least
    /// @throws RuntimeError CannotCreateObject when it reports a failure or enters nothing
    std::vector<std::string> registerClasses() const;

    /// @throws RuntimeError CannotCreateObject with what the library says
    ObjectRef create(const std::string& progId) const;

private:
    [[noreturn]] void refuse(std::string_view what) const;
    template <typename Function>
    Function entryPoint(void* library, const char* name) const;

    std::string m_shownName;
    ComponentHost* m_host = nullptr; ///< never freed: the library keeps it as long as it stays loaded
    int (*m_registerServer)() = nullptr;
    int (*m_createObject)(const char*, QrvrcObject**) = nullptr;
};

/// Whether a component's programmatic identifier can be one: letters, digits, ".", "_" and "-", at most 39 characters.
bool isProgId(std::string_view text);
