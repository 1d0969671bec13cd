#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
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

/// What is wrong, for people; nothing when it went well. Texts name the file.
using ComponentFault = std::optional<std::string>;

/// Runs `body`. @return what an error that ended it says to people
ComponentFault faultIn(const std::function<void()>& body);

/// Creates components by their programmatic identifiers. Where the system has no components of its own, they are shared
/// libraries with the ending ".dll" in the application folder or its "\Plugins", which must have been registered for
/// that folder through their own DllRegisterServer.
///
/// With a probe, a library that is new or has changed must pass a trial in another process first, so that one that ends
/// its process or never returns does no harm to the client, now or at the next start. Trials end from the event loop.
class Components
{
public:
    /// Takes what came of something that was begun; called once, at once or later from the event loop.
    using Done = std::function<void(const ComponentFault& fault)>;

    /// How a trial came out.
    struct Verdict
    {
        enum class How {
            Passed,  ///< came to its end, with or without an object
            Failed,  ///< kept until the file changes or is registered again
            NotMade, ///< could not be tried; kept for this run
        };

        How how = How::Passed;
        std::string why = {}; ///< for people; empty when it passed
    };

    /// Tries a library where it can do no harm. A probe that is destroyed ends its trials and calls nothing any more.
    /// @param file    full path
    /// @param progId  the class to create and to read; empty to call the library's registration instead
    /// @param done    called once, from the event loop
    using Probe = std::function<void(const std::filesystem::path& file, const std::string& progId,
                                     std::function<void(const Verdict&)> done)>;

    /// @param folder  outlives this
    explicit Components(const AppFolder& folder);
    ~Components();

    /// Without a probe nothing is tried beforehand. What could not be tried with an earlier one is tried again.
    void setProbe(Probe probe);
    /// Tells components in which code page their texts are.
    /// @param name  one that `CodePageMap` knows; without a call it is the system's
    void useCodePage(std::string_view name);

    /// Whether nothing stands out before the class can be created: it has been tried in the present state of its
    /// file, however that came out, or needs no trial.
    bool isTried(const std::string& progId) const;
    /// Tries a class that has not been tried yet. One that is being tried is not tried twice.
    void tryClass(const std::string& progId, const Done& done);
    /// Never lets events run.
    /// @param progId  such as "qrvrcBHDGS.clsPlugin"
    /// @throws RuntimeError CannotCreateObject when nothing is registered under the name, its library has not passed
    /// its
    ///         trial or cannot be used; the description names the file and what is wrong with it
    ObjectRef createObject(const std::string& progId);

    /// Calls the library's own registration, after a trial of it, and forgets what was found out about the library
    /// before. It fails for what is no library, lies in neither folder, lacks the entry point, or reports a failure.
    void registerFile(const std::filesystem::path& file, const Done& done);

private:
    class Impl;
    std::unique_ptr<Impl> m_impl;
};

/// What a probe does in its own process: loads the library, makes an instance, lets `examine` use it and releases it,
/// or calls the registration when `progId` is empty. Failures that are told in an orderly way are none here.
void tryComponent(const AppFolder& folder, const std::filesystem::path& file, const std::string& progId,
                  const std::function<void(ComponentObject&)>& examine);
