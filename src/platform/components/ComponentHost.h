#pragma once

#include "platform/components/Component.h"

#include "qrvrc_plugin.h"

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The code page of all texts of all libraries of this process.
class HostCodePage
{
public:
    HostCodePage();

    /// Changes to the code page of that name, one that `CodePageMap` knows; any other changes nothing.
    void use(std::string_view name);
    const std::string& name() const { return m_name; }
    /// The characters of its 256 values by themselves, as UTF-16 units.
    const std::uint16_t* characters() const { return m_characters.data(); }

private:
    std::string m_name;
    std::array<std::uint16_t, 256> m_characters{};
};

HostCodePage& hostCodePage();

/// Runs `call`, which goes into a library. @return what it threw, for people: nothing that is thrown goes further
std::optional<std::string> thrownBy(const std::function<void()>& call);

/// What one plugin library is handed of the client: the table of functions, and what stands behind them.
struct ComponentHost
{
    using Attach = void (*)(const QrvrcHost*);

    /// @param shownName          what errors call the library
    /// @param applicationFolder  as a path of the file system
    /// @param libraryAttach      the library's function that takes the table
    ComponentHost(std::string shownName, std::string applicationFolder, Attach libraryAttach);
    ComponentHost(const ComponentHost&) = delete;
    ComponentHost& operator=(const ComponentHost&) = delete;
    ~ComponentHost() = default;

    /// Makes this the host that the library speaks to, for the call that follows: the system loads a file only once,
    /// however many hosts there are for it.
    void attach() const { attachTo(&table); }
    /// Takes over an instance that the library made; this host outlives it.
    ObjectRef adopt(QrvrcObject* object);
    /// What the library said about its last failure, which is thereby settled.
    std::string takeError();

    QrvrcHost table; ///< first, so that the address that the library hands back is this object's
    std::string shownName;
    std::string applicationFolder;
    std::string error;
    std::vector<std::string> enteredClasses;
    bool isRegistering = false;
    Attach attachTo;
};
