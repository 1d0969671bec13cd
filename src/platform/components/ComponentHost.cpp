#include "platform/components/ComponentHost.h"

#include "base/RuntimeError.h"
#include "platform/components/ComponentLibrary.h"
#include "platform/system/CodePageMap.h"
#include "platform/system/SystemCodePage.h"

#include <algorithm>
#include <exception>
#include <type_traits>
#include <utility>

namespace {

constexpr std::int32_t numberOfTrue = -1;

std::int32_t codeOf(ErrorNumber number)
{
    return static_cast<std::int32_t>(number);
}

/// Runs `body` for a library: no exception may pass through foreign code.
template <typename Body>
std::int32_t guarded(Body&& body) noexcept
{
    try {
        body();
        return 0;
    } catch (const RuntimeError& error) {
        return codeOf(error.number());
    } catch (...) {
        return codeOf(ErrorNumber::OutOfMemory);
    }
}

const ComponentValue& of(const QrvrcValue* value)
{
    if (!value)
        throw RuntimeError(ErrorNumber::InvalidProcedureCall);
    return *reinterpret_cast<const ComponentValue*>(value);
}

ComponentValue& of(QrvrcValue* value)
{
    return const_cast<ComponentValue&>(of(static_cast<const QrvrcValue*>(value)));
}

QrvrcValue* handleOf(ComponentValue& value)
{
    return reinterpret_cast<QrvrcValue*>(&value);
}

ComponentHost& of(const QrvrcHost* host)
{
    // The table is the host's first member, and every host is made writable.
    return *const_cast<ComponentHost*>(reinterpret_cast<const ComponentHost*>(host));
}

/// An instance of a class of a library.
class LibraryObject : public ComponentObject
{
public:
    LibraryObject(ComponentHost& host, QrvrcObject* object) : m_host(host), m_object(object) {}
    LibraryObject(const LibraryObject&) = delete;
    LibraryObject& operator=(const LibraryObject&) = delete;
    ~LibraryObject() override
    {
        try {
            m_host.attach();
            m_object->functions->release(m_object);
        } catch (...) { // what it threw has nobody to tell
        }
    }

    ComponentValue call(std::string_view member, std::vector<ComponentValue> arguments) override
    {
        std::vector<QrvrcValue*> handles;
        handles.reserve(arguments.size());
        for (ComponentValue& argument : arguments)
            handles.push_back(handleOf(argument));
        const std::string name(member);
        const std::string source = m_host.shownName + ", " + name;
        ComponentValue result;
        m_host.error.clear();
        std::int32_t fault = 0;
        const auto thrown = thrownBy([&] {
            m_host.attach();
            fault = m_object->functions->call(m_object, name.c_str(), handles.data(),
                                              static_cast<std::int32_t>(handles.size()), handleOf(result));
        });
        if (thrown)
            throw RuntimeError(ErrorNumber::InternalError, source + ": " + *thrown);
        if (fault != 0) {
            const std::string said = m_host.takeError();
            throw RuntimeError(static_cast<ErrorNumber>(fault), said.empty() ? source : source + ": " + said);
        }
        return result;
    }

private:
    ComponentHost& m_host;
    QrvrcObject* m_object;
};

extern "C" {

const char* applicationFolder(const QrvrcHost* host)
{
    return of(host).applicationFolder.c_str();
}

const char* codePage(const QrvrcHost*)
{
    return hostCodePage().name().c_str();
}

const std::uint16_t* characters(const QrvrcHost*)
{
    return hostCodePage().characters();
}

std::int32_t registerClass(const QrvrcHost* host, const char* progId)
{
    return guarded([&] {
        if (!progId || !isProgId(progId) || !of(host).isRegistering)
            throw RuntimeError(ErrorNumber::InvalidProcedureCall);
        of(host).enteredClasses.emplace_back(progId);
    });
}

void setError(const QrvrcHost* host, const char* description, std::size_t size)
{
    guarded([&] { of(host).error = description ? std::string(description, size) : std::string(); });
}

std::int32_t typeOf(const QrvrcValue* value)
{
    struct Types
    {
        std::int32_t operator()(std::monostate) const { return QRVRC_EMPTY; }
        std::int32_t operator()(bool) const { return QRVRC_BOOLEAN; }
        std::int32_t operator()(std::int32_t) const { return QRVRC_INT32; }
        std::int32_t operator()(const std::string&) const { return QRVRC_STRING; }
        std::int32_t operator()(const ComponentValue::List&) const { return QRVRC_LIST; }
        std::int32_t operator()(const ObjectRef&) const { return QRVRC_OBJECT; }
    };
    return value ? std::visit(Types(), of(value).variant()) : QRVRC_EMPTY;
}

std::int32_t getBoolean(const QrvrcValue* value, std::int32_t* out)
{
    return guarded([&] { *out = of(value).toBoolean() ? numberOfTrue : 0; });
}

std::int32_t getInt32(const QrvrcValue* value, std::int32_t* out)
{
    return guarded([&] { *out = of(value).toInt32(); });
}

std::int32_t getString(const QrvrcValue* value, const char** data, std::size_t* size)
{
    return guarded([&] {
        const std::string* text = std::get_if<std::string>(&of(value).variant());
        if (!text && !of(value).isEmpty())
            throw RuntimeError(ErrorNumber::TypeMismatch);
        *data = text ? text->c_str() : "";
        *size = text ? text->size() : 0;
    });
}

std::int32_t listSize(const QrvrcValue* value, std::size_t* out)
{
    return guarded([&] { *out = of(value).toList()->size(); });
}

QrvrcValue* listAt(const QrvrcValue* value, std::size_t index)
{
    QrvrcValue* element = nullptr;
    guarded([&] { element = handleOf(of(value).toList()->at(index)); });
    return element;
}

std::int32_t setBoolean(QrvrcValue* value, std::int32_t boolean)
{
    return guarded([&] { of(value) = boolean != 0; });
}

std::int32_t setInt32(QrvrcValue* value, std::int32_t number)
{
    return guarded([&] { of(value) = number; });
}

std::int32_t setString(QrvrcValue* value, const char* data, std::size_t size)
{
    return guarded([&] { of(value) = data ? std::string(data, size) : std::string(); });
}

std::int32_t setObject(const QrvrcHost* host, QrvrcValue* value, QrvrcObject* object)
{
    return guarded([&] {
        ObjectRef adopted = of(host).adopt(object);
        of(value) = std::move(adopted);
    });
}

std::int32_t listClear(QrvrcValue* value)
{
    return guarded([&] {
        if (typeOf(value) == QRVRC_LIST)
            of(value).toList()->clear();
        else
            of(value) = std::make_shared<std::vector<ComponentValue>>();
    });
}

QrvrcValue* listAppend(QrvrcValue* value)
{
    QrvrcValue* element = nullptr;
    guarded([&] {
        if (of(value).isEmpty())
            listClear(value);
        element = handleOf(of(value).toList()->emplace_back());
    });
    return element;
}

} // extern "C"

constexpr QrvrcHost functions{
    .size = sizeof(QrvrcHost),
    .abi_version = QRVRC_ABI_VERSION,
    .application_folder = applicationFolder,
    .code_page = codePage,
    .register_class = registerClass,
    .set_error = setError,
    .type_of = typeOf,
    .get_boolean = getBoolean,
    .get_int32 = getInt32,
    .get_string = getString,
    .list_size = listSize,
    .list_at = listAt,
    .set_boolean = setBoolean,
    .set_int32 = setInt32,
    .set_string = setString,
    .set_object = setObject,
    .list_append = listAppend,
    .list_clear = listClear,
    .characters = characters,
};

} // namespace

std::optional<std::string> thrownBy(const std::function<void()>& call)
{
    try {
        call();
        return std::nullopt;
    } catch (const std::exception& error) {
        return error.what();
    } catch (...) {
        return "it threw something that is no exception";
    }
}

HostCodePage::HostCodePage()
{
    use(systemCodePage());
}

void HostCodePage::use(std::string_view name)
{
    const std::shared_ptr<const CodePageMap> map = CodePageMap::named(name);
    if (!map)
        return;
    m_name = name;
    std::copy(map->characters().begin(), map->characters().end(), m_characters.begin());
}

HostCodePage& hostCodePage()
{
    static HostCodePage codePage;
    return codePage;
}

ComponentHost::ComponentHost(std::string name, std::string folder, Attach libraryAttach)
    : table(functions),
      shownName(std::move(name)),
      applicationFolder(std::move(folder)),
      attachTo(libraryAttach)
{
    static_assert(std::is_standard_layout_v<ComponentHost>, "the table's address must be the host's");
}

ObjectRef ComponentHost::adopt(QrvrcObject* object)
{
    constexpr std::size_t neededSize = offsetof(QrvrcObjectFunctions, release) + sizeof(QrvrcObjectFunctions::release);
    if (!object || !object->functions || object->functions->size < neededSize || !object->functions->call ||
        !object->functions->release)
        throw RuntimeError(ErrorNumber::CannotCreateObject, shownName + ": it handed over an object without functions");
    return std::make_shared<LibraryObject>(*this, object);
}

std::string ComponentHost::takeError()
{
    return std::exchange(error, {});
}
