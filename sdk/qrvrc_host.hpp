// What stands behind QrvrcHost where plugins are components of the system: the plugin's own library. Windows only;
// comes with qrvrc_plugin.hpp.
#ifndef QRVRC_HOST_HPP
#define QRVRC_HOST_HPP

#include "qrvrc_variants.hpp"

namespace qrvrc {
namespace com {

/// An object that callers reach by IDispatch; defined with the server. Takes `object` over, also when it fails.
/// @return one reference
IDispatch* newDispatch(QrvrcObject* object);

/// Where this library lies.
inline std::wstring modulePath()
{
    HMODULE module = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
                       reinterpret_cast<LPCWSTR>(&modulePath), &module);
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size()));
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(2 * path.size());
    }
}

/// The folder of this library, or the one above where that is the client's folder of plugins.
inline const std::string& applicationFolder()
{
    static const std::string folder = [] {
        const auto parent = [](std::wstring& path) { path.resize(std::min(path.size(), path.rfind(L'\\'))); };
        const std::wstring plugins = L"\\Plugins";
        std::wstring path = modulePath();
        parent(path);
        if (path.size() > plugins.size() && _wcsicmp(path.c_str() + path.size() - plugins.size(), plugins.c_str()) == 0)
            parent(path);
        return narrow(path, CP_UTF8);
    }();
    return folder;
}

/// What the member under way says about its failure.
inline std::string& lastError()
{
    static std::string text;
    return text;
}

template <typename Body>
std::int32_t guarded(Body&& body) noexcept
{
    try {
        body();
        return 0;
    } catch (const Error& error) {
        return error.number();
    } catch (...) {
        return QRVRC_ERROR_OUT_OF_MEMORY;
    }
}

/// @throws Error for what is neither a number nor empty
inline std::int32_t numberOf(const QrvrcValue& value)
{
    if (const bool* boolean = std::get_if<bool>(&value.content))
        return *boolean ? -1 : 0;
    if (const std::int32_t* number = std::get_if<std::int32_t>(&value.content))
        return *number;
    if (const std::string* text = std::get_if<std::string>(&value.content)) {
        Variant number;
        number.bstrVal = newText(*text);
        number.vt = VT_BSTR;
        if (FAILED(VariantChangeType(&number, &number, 0, VT_I4)))
            mismatch();
        return static_cast<std::int32_t>(number.lVal);
    }
    if (!std::holds_alternative<std::monostate>(value.content))
        mismatch();
    return 0;
}

/// The list that a value is; nothing for an empty value. @throws Error for anything else
inline const QrvrcValue::List* listIn(const QrvrcValue& value)
{
    const auto* list = std::get_if<QrvrcValue::List>(&value.content);
    if (!list && !std::holds_alternative<std::monostate>(value.content))
        mismatch();
    return list;
}

inline const QrvrcHost& host()
{
    static const QrvrcHost table = [] {
        QrvrcHost made{};
        made.size = sizeof made;
        made.abi_version = QRVRC_ABI_VERSION;
        made.application_folder = [](const QrvrcHost*) { return applicationFolder().c_str(); };
        made.code_page = [](const QrvrcHost*) -> const char* {
            static std::string name;
            name = "windows-" + std::to_string(codePage());
            return name.c_str();
        };
        made.characters = [](const QrvrcHost*) -> const std::uint16_t* {
            static std::uint16_t units[256];
            for (std::size_t value = 0; value < 256; ++value) {
                const char byte = static_cast<char>(value);
                const std::wstring character = wideOf({&byte, 1});
                units[value] = static_cast<std::uint16_t>(character.empty() ? value : character[0]);
            }
            return units;
        };
        made.register_class = [](const QrvrcHost*, const char*) { return std::int32_t{QRVRC_ERROR_INVALID_CALL}; };
        made.set_error = [](const QrvrcHost*, const char* text, std::size_t size) {
            guarded([&] { lastError().assign(text ? text : "", text ? size : 0); });
        };
        made.type_of = [](const QrvrcValue* value) { return static_cast<std::int32_t>(value->content.index()); };
        made.get_boolean = [](const QrvrcValue* value, std::int32_t* out) {
            return guarded([&] { *out = numberOf(*value) != 0 ? -1 : 0; });
        };
        made.get_int32 = [](const QrvrcValue* value, std::int32_t* out) {
            return guarded([&] { *out = numberOf(*value); });
        };
        made.get_string = [](const QrvrcValue* value, const char** data, std::size_t* size) {
            return guarded([&] {
                const std::string* text = std::get_if<std::string>(&value->content);
                if (!text && !std::holds_alternative<std::monostate>(value->content))
                    mismatch();
                *data = text ? text->c_str() : "";
                *size = text ? text->size() : 0;
            });
        };
        made.list_size = [](const QrvrcValue* value, std::size_t* out) {
            return guarded([&] {
                const QrvrcValue::List* list = listIn(*value);
                *out = list ? list->size() : 0;
            });
        };
        made.list_at = [](const QrvrcValue* value, std::size_t index) -> QrvrcValue* {
            const auto* list = std::get_if<QrvrcValue::List>(&value->content);
            return list && index < list->size() ? (*list)[index].get() : nullptr;
        };
        made.set_boolean = [](QrvrcValue* value, std::int32_t boolean) {
            return guarded([&] { value->content = boolean != 0; });
        };
        made.set_int32 = [](QrvrcValue* value, std::int32_t number) {
            return guarded([&] { value->content = number; });
        };
        made.set_string = [](QrvrcValue* value, const char* data, std::size_t size) {
            return guarded([&] { value->content = data ? std::string(data, size) : std::string(); });
        };
        made.set_object = [](const QrvrcHost*, QrvrcValue* value, QrvrcObject* object) {
            return guarded([&] { value->content = QrvrcValue::Object(newDispatch(object)); });
        };
        made.list_append = [](QrvrcValue* value) -> QrvrcValue* {
            QrvrcValue* element = nullptr;
            guarded([&] {
                if (!listIn(*value))
                    value->content = QrvrcValue::List();
                auto& list = std::get<QrvrcValue::List>(value->content);
                list.push_back(std::make_unique<QrvrcValue>());
                element = list.back().get();
            });
            return element;
        };
        made.list_clear = [](QrvrcValue* value) { return guarded([&] { value->content = QrvrcValue::List(); }); };
        return made;
    }();
    return table;
}

} // namespace com
} // namespace qrvrc

#endif
