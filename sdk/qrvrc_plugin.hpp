// C++ on top of qrvrc_plugin.h: derive from qrvrc::Plugin, and export the class with QRVRC_PLUGIN. C++17, no library
// needed. What a plugin throws ends at the border and reaches the client as an error number with its description.
#ifndef QRVRC_PLUGIN_HPP
#define QRVRC_PLUGIN_HPP

#include "qrvrc_values.hpp"
#if defined(_WIN32)
#include "qrvrc_com.hpp"
#endif

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace qrvrc QRVRC_LOCAL {

/// What a plugin says of itself. Texts are bytes in the host's code page.
struct Data
{
    std::string name;    ///< as the tracker reports it, for example "Match Watch"
    std::string file;    ///< the library's file name
    std::string version; ///< four parts
    std::string author;
    std::string description;
    std::string game; ///< for example "DFBHD"; empty for any
    bool hasInterface = false;
    bool profileMenu = false;
    bool serverMenu = false;
    std::vector<std::string> profileMenuItems;
    std::vector<std::string> serverMenuItems;
    std::string helpFile;        ///< in the plugin folder; empty for none
    std::string minRccVer = "0"; ///< lowest version of the client, digits without dots: "3010" is 3.0.1.0
    std::string minGmfVer = "0"; ///< lowest version of the game module, in the same form
};

/// A plugin's class. One instance is kept as long as the plugin is listed; for each message of the tracker another one
/// is made, so that state which both need belongs to the library.
class Plugin
{
public:
    virtual ~Plugin() = default;

    virtual Data data() const = 0;
    /// What the account may do with this plugin; called before LoadInterface.
    virtual void SetPrivis(const Privileges& /*privileges*/, const Privileges& /*further*/, bool /*isSuper*/) {}
    /// Shows the plugin's window, and must not wait for it to close.
    /// @param window  native handle of the client's frame
    /// @param list    the caller sees what is changed here
    virtual void LoadInterface(std::int32_t profileId, std::int32_t window, std::vector<std::string>& list,
                               const std::string& user) = 0;
    virtual void HideInterface(const std::string& /*text*/) {}
    /// What the plugin's counterpart on the tracker sent.
    virtual void RemoteData(const std::string& /*payload*/) {}
};

namespace detail {

/// The arguments and the result of one call.
struct Call
{
    std::string_view member;
    QrvrcValue* const* arguments;
    std::int32_t count;
    Value result;

    bool is(std::string_view name) const { return isSameName(member, name); }
    void expect(std::int32_t wanted) const
    {
        if (count != wanted)
            throw Error(QRVRC_ERROR_INVALID_CALL, "wrong number of arguments");
    }
    Value argument(std::int32_t index) const { return Value(arguments[index]); }
};

[[noreturn]] inline void refuseMember()
{
    throw Error(QRVRC_ERROR_MEMBER_NOT_SUPPORTED, "there is no such member");
}

/// An object of the C interface that forwards to `call(Call&)` of `Self`.
template <typename Self>
class Object : public QrvrcObject
{
public:
    Object() : QrvrcObject{&functionTable} {}
    Object(const Object&) = delete;
    Object& operator=(const Object&) = delete;

private:
    static std::int32_t callMember(QrvrcObject* self, const char* member, QrvrcValue* const* arguments,
                                   std::int32_t count, QrvrcValue* result)
    {
        return atBorder([&] {
            Call call{member, arguments, count, Value(result)};
            static_cast<Self*>(self)->call(call);
        });
    }
    static void release(QrvrcObject* self)
    {
        atBorder([&] { delete static_cast<Self*>(self); });
    }

    static constexpr QrvrcObjectFunctions functionTable{sizeof(QrvrcObjectFunctions), &callMember, &release};
};

/// What the property "GetData" gives out.
class DataObject : public Object<DataObject>
{
public:
    explicit DataObject(Data data) : m_data(std::move(data)) {}

    void call(Call& call)
    {
        struct Text
        {
            const char* name;
            std::string Data::*value;
        };
        struct Flag
        {
            const char* name;
            bool Data::*value;
        };
        struct List
        {
            const char* name;
            std::vector<std::string> Data::*value;
        };
        static constexpr Text texts[] = {
            {"Name", &Data::name},         {"File", &Data::file},           {"Version", &Data::version},
            {"Author", &Data::author},     {"Game", &Data::game},           {"Description", &Data::description},
            {"HelpFile", &Data::helpFile}, {"MinRCCVer", &Data::minRccVer}, {"MinGMFVer", &Data::minGmfVer},
        };
        static constexpr Flag flags[] = {
            {"HasInterface", &Data::hasInterface},
            {"ProfileMenu", &Data::profileMenu},
            {"ServerMenu", &Data::serverMenu},
        };
        static constexpr List lists[] = {
            {"ProfileMenuItems", &Data::profileMenuItems},
            {"ServerMenuItems", &Data::serverMenuItems},
        };
        if (!set(call, texts) && !set(call, flags) && !set(call, lists))
            refuseMember();
    }

private:
    template <typename Members>
    bool set(Call& call, const Members& members) const
    {
        for (const auto& member : members) {
            if (call.is(member.name)) {
                call.result.set(m_data.*member.value);
                return true;
            }
        }
        return false;
    }

    Data m_data;
};

/// An instance of the plugin's class as the client calls it.
template <typename PluginClass>
class PluginObject : public Object<PluginObject<PluginClass>>
{
public:
    void call(Call& call)
    {
        if (call.is("GetData")) {
            call.result.set(new DataObject(m_plugin.data()));
        } else if (call.is("SetPrivis")) {
            call.expect(3);
            m_plugin.SetPrivis(call.argument(0).toPrivileges(), call.argument(1).toPrivileges(),
                               call.argument(2).toBoolean());
        } else if (call.is("LoadInterface")) {
            call.expect(4);
            std::vector<std::string> list = call.argument(2).toStrings();
            m_plugin.LoadInterface(call.argument(0).toInt32(), call.argument(1).toInt32(), list,
                                   call.argument(3).toString());
            call.argument(2).set(list);
        } else if (call.is("HideInterface")) {
            call.expect(1);
            m_plugin.HideInterface(call.argument(0).toString());
        } else if (call.is("RemoteData")) {
            call.expect(1);
            m_plugin.RemoteData(call.argument(0).toString());
        } else {
            refuseMember();
        }
    }

private:
    PluginClass m_plugin;
};

template <typename PluginClass>
QrvrcObject* newPlugin(const char* ownProgId, const char* progId)
{
    if (!isSameName(ownProgId, progId))
        throw Error(QRVRC_ERROR_CANNOT_CREATE, "the library has no such class");
    return new PluginObject<PluginClass>();
}

template <typename PluginClass>
std::int32_t create(const char* ownProgId, const char* progId, QrvrcObject** object) noexcept
{
    return atBorder([&] { *object = newPlugin<PluginClass>(ownProgId, progId); });
}

} // namespace detail

} // namespace QRVRC_LOCAL

/// Exports a plugin's class: once a library, outside of all namespaces.
/// @param progId   the file name without ".dll", followed by ".clsPlugin"
/// @param version  the library's four-part file version; on Windows that of its version resource counts
#if defined(_WIN32)
#define QRVRC_PLUGIN(PluginClass, progId, version)                                                                     \
    QRVRC_COM_SERVER(progId, [](const char* askedFor, QrvrcObject** object) {                                          \
        return qrvrc::detail::create<PluginClass>(progId, askedFor, object);                                           \
    })
#else
#define QRVRC_PLUGIN(PluginClass, progId, version)                                                                     \
    extern "C" {                                                                                                       \
    QRVRC_FILE_VERSION(version);                                                                                       \
    std::int32_t qrvrc_abi_version(void)                                                                               \
    {                                                                                                                  \
        return QRVRC_ABI_VERSION;                                                                                      \
    }                                                                                                                  \
    void qrvrc_attach_host(const QrvrcHost* host)                                                                      \
    {                                                                                                                  \
        qrvrc::detail::attachedHost() = host;                                                                          \
    }                                                                                                                  \
    std::int32_t DllRegisterServer(void)                                                                               \
    {                                                                                                                  \
        const QrvrcHost* host = qrvrc::detail::attachedHost();                                                         \
        return host->register_class(host, progId);                                                                     \
    }                                                                                                                  \
    std::int32_t qrvrc_create_object(const char* wanted, QrvrcObject** object)                                         \
    {                                                                                                                  \
        return qrvrc::detail::create<PluginClass>(progId, wanted, object);                                             \
    }                                                                                                                  \
    }                                                                                                                  \
    static_assert(true, "takes the semicolon")
#endif

#endif
