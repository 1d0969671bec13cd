#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

class AppFolder;
class ComponentObject;

using ObjectRef = std::shared_ptr<ComponentObject>;

/// What travels to and from a component. Strings are bytes in the host's code page. A list is shared by its copies, so
/// that a component which is handed one can change it (by-reference arguments).
class ComponentValue
{
public:
    using List = std::shared_ptr<std::vector<ComponentValue>>;

    ComponentValue() = default;
    ComponentValue(bool value) : m_value(value) {}
    ComponentValue(std::int32_t value) : m_value(value) {}
    ComponentValue(std::string value) : m_value(std::move(value)) {}
    ComponentValue(const char* value) : m_value(std::string(value)) {}
    ComponentValue(List value) : m_value(std::move(value)) {}
    ComponentValue(ObjectRef value) : m_value(std::move(value)) {}

    static ComponentValue listOf(const std::vector<std::string>& texts);

    bool isEmpty() const { return std::holds_alternative<std::monostate>(m_value); }
    /// The value as the type asked for. Numbers and texts of digits convert into one another, Booleans into numbers
    /// (-1 and 0) and back; empty is false, 0, "" and the empty list.
    /// @throws RuntimeError TypeMismatch for what does not convert
    bool toBoolean() const;
    std::int32_t toInt32() const;
    std::string toString() const;
    List toList() const;
    ObjectRef toObject() const;

    const auto& variant() const { return m_value; }

private:
    std::variant<std::monostate, bool, std::int32_t, std::string, List, ObjectRef> m_value;
};

/// A component instance, called by member name. Released with its last reference.
class ComponentObject
{
public:
    virtual ~ComponentObject() = default;

    /// Calls a method or reads a property.
    /// @throws RuntimeError MemberNotSupported for an unknown member, TypeMismatch for arguments that do not fit, and
    ///         what the component itself raises, with its number and description
    virtual ComponentValue call(std::string_view member, std::vector<ComponentValue> arguments = {}) = 0;
};

/// Creates components by their programmatic identifiers. Where the system has no components of its own, they are shared
/// libraries with the ending ".dll" in the application folder or its "\Plugins", which must have been registered for
/// that folder through their own DllRegisterServer.
///
/// A library that is new or has changed is tried in another process first, when there is a probe, so that one that ends
/// its process does not end the client, now or at the next start.
class Components
{
public:
    /// Tries a library where it can do no harm.
    /// @param file    full path
    /// @param progId  the class to create; empty to call the library's registration instead
    /// @param why     what happened, for people; only when the answer is false
    /// @return whether the try came to its end, with or without an object; false is kept until the file changes or is
    ///         registered again
    /// @throws RuntimeError CannotCreateObject when it could not be tried, which is not kept
    using Probe = std::function<bool(const std::filesystem::path& file, const std::string& progId, std::string& why)>;

    /// @param folder  outlives this
    explicit Components(const AppFolder& folder);
    ~Components();

    /// Without a probe nothing is tried beforehand.
    /// @param probe  may let events run; while it does, its library is refused to others
    void setProbe(Probe probe);

    /// @param progId  such as "qrvrcBHDGS.clsPlugin"
    /// @throws RuntimeError CannotCreateObject when nothing is registered under the name or its library cannot be used;
    ///         the description names the file and what is wrong with it
    ObjectRef createObject(const std::string& progId);

    /// Calls the library's own registration, and forgets what was found out about the library before.
    /// @return whether it succeeded; false for what is no library, lies in neither folder, lacks the entry point, or
    ///         reports a failure
    bool registerFile(const std::filesystem::path& file);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

/// What a probe does in its own process: loads the library and makes and releases an instance, or registers nothing but
/// calls the registration when `progId` is empty. Failures that are told in an orderly way are none here.
void tryComponent(const AppFolder& folder, const std::filesystem::path& file, const std::string& progId);
