// The client's values where plugins are components of the system: what QrvrcHost offers is done here, inside the
// plugin's own library, on variants. Windows only; comes with qrvrc_plugin.hpp.
#ifndef QRVRC_VARIANTS_HPP
#define QRVRC_VARIANTS_HPP

#include "qrvrc_values.hpp"

#include <algorithm>
#include <cwchar>
#include <memory>
#include <variant>

#include <windows.h>

#include <oleauto.h>

/// One value of a call. A list lives in memory of its own, as its elements are handed out by address.
struct QrvrcValue
{
    using List = std::vector<std::unique_ptr<QrvrcValue>>;

    struct Release
    {
        void operator()(IDispatch* object) const { object->Release(); }
    };
    using Object = std::unique_ptr<IDispatch, Release>;

    std::variant<std::monostate, bool, std::int32_t, std::string, List, Object>
        content; ///< in the order of QRVRC_EMPTY...
};

namespace qrvrc {
namespace com {

/// What the system itself uses when that has one byte a character, otherwise Windows-1252.
inline UINT systemCodePage()
{
    static const UINT page = [] {
        constexpr UINT western = 1252;
        DWORD number = 0;
        const int length = GetLocaleInfoW(LOCALE_SYSTEM_DEFAULT, LOCALE_IDEFAULTANSICODEPAGE | LOCALE_RETURN_NUMBER,
                                          reinterpret_cast<LPWSTR>(&number), sizeof number / sizeof(wchar_t));
        CPINFO info{};
        return length > 0 && GetCPInfo(number, &info) && info.MaxCharSize == 1 ? UINT{number} : western;
    }();
    return page;
}

/// The code page of the host, which the client keeps in the process's environment as "windows-1251"; the system's
/// without one.
inline UINT codePage()
{
    constexpr std::wstring_view prefix = L"windows-";
    wchar_t name[32] = {};
    const DWORD length = GetEnvironmentVariableW(L"QRVRC_CODE_PAGE", name, sizeof name / sizeof *name);
    CPINFO info{};
    if (length <= prefix.size() || length >= sizeof name / sizeof *name ||
        prefix.compare(0, prefix.size(), name, prefix.size()) != 0)
        return systemCodePage();
    const auto page = static_cast<UINT>(std::wcstoul(name + prefix.size(), nullptr, 10));
    return GetCPInfo(page, &info) && info.MaxCharSize == 1 ? page : systemCodePage();
}

inline std::wstring wideOf(std::string_view bytes)
{
    std::wstring text(bytes.size(), L'\0'); // a character has at least one byte
    const int size = bytes.empty() ? 0
                                   : MultiByteToWideChar(codePage(), 0, bytes.data(), static_cast<int>(bytes.size()),
                                                         text.data(), static_cast<int>(text.size()));
    text.resize(static_cast<std::size_t>(size));
    return text;
}

inline std::string narrow(std::wstring_view text, UINT page)
{
    const auto length = static_cast<int>(text.size());
    const int size = length > 0 ? WideCharToMultiByte(page, 0, text.data(), length, nullptr, 0, nullptr, nullptr) : 0;
    std::string bytes(static_cast<std::size_t>(size), '\0');
    if (size > 0)
        WideCharToMultiByte(page, 0, text.data(), length, bytes.data(), size, nullptr, nullptr);
    return bytes;
}

inline BSTR newText(std::string_view bytes)
{
    const std::wstring wide = wideOf(bytes);
    BSTR text = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    if (!text)
        throw std::bad_alloc();
    return text;
}

inline std::string bytesOf(BSTR text)
{
    return text ? narrow(std::wstring_view(text, SysStringLen(text)), codePage()) : std::string();
}

[[noreturn]] inline void mismatch()
{
    throw Error(QRVRC_ERROR_TYPE_MISMATCH, "a value of another type was expected");
}

/// A VARIANT that is cleared at its end.
struct Variant : VARIANT
{
    Variant() { VariantInit(this); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(this); }
};

inline void read(VARIANT& from, QrvrcValue& to);

inline QrvrcValue::List listOf(SAFEARRAY* array)
{
    QrvrcValue::List list;
    VARTYPE type = VT_EMPTY;
    LONG first = 0;
    LONG last = -1;
    if (!array)
        return list;
    if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last)) ||
        (type != VT_BSTR && type != VT_VARIANT))
        mismatch();
    for (LONG index = first; index <= last; ++index) {
        Variant element;
        const HRESULT result = type == VT_VARIANT ? SafeArrayGetElement(array, &index, &element)
                                                  : SafeArrayGetElement(array, &index, &element.bstrVal);
        if (FAILED(result))
            mismatch();
        if (type == VT_BSTR)
            element.vt = VT_BSTR;
        list.push_back(std::make_unique<QrvrcValue>());
        read(element, *list.back());
    }
    return list;
}

inline void read(VARIANT& from, QrvrcValue& to)
{
    if (from.vt == (VT_BYREF | VT_VARIANT)) {
        read(*from.pvarVal, to);
    } else if (from.vt & VT_ARRAY) {
        to.content = listOf(from.vt & VT_BYREF ? *from.pparray : from.parray);
    } else if (from.vt & VT_BYREF) {
        Variant copy;
        if (FAILED(VariantCopyInd(&copy, &from)))
            mismatch();
        read(copy, to);
    } else if (from.vt == VT_BOOL) {
        to.content = from.boolVal != VARIANT_FALSE;
    } else if (from.vt == VT_BSTR) {
        to.content = bytesOf(from.bstrVal);
    } else if (from.vt == VT_DISPATCH && from.pdispVal) {
        from.pdispVal->AddRef();
        to.content = QrvrcValue::Object(from.pdispVal);
    } else if (from.vt != VT_EMPTY && from.vt != VT_NULL && from.vt != VT_ERROR && from.vt != VT_DISPATCH) {
        Variant number;
        if (FAILED(VariantChangeType(&number, &from, 0, VT_I4)))
            mismatch();
        to.content = static_cast<std::int32_t>(number.lVal);
    }
}

inline void write(const QrvrcValue& from, VARIANT& to);

/// @param type  of the elements: VT_BSTR, which holds texts only, or VT_VARIANT
inline SAFEARRAY* newArray(const QrvrcValue::List& list, VARTYPE type)
{
    SAFEARRAY* array = SafeArrayCreateVector(type, 0, static_cast<ULONG>(list.size()));
    if (!array)
        throw std::bad_alloc();
    LONG index = 0;
    for (const std::unique_ptr<QrvrcValue>& value : list) {
        Variant element;
        write(*value, element);
        if (type == VT_BSTR && FAILED(VariantChangeType(&element, &element, 0, VT_BSTR)))
            element.vt = VT_EMPTY;
        SafeArrayPutElement(array, &index, type == VT_BSTR ? static_cast<void*>(element.bstrVal) : &element);
        ++index;
    }
    return array;
}

inline void write(const QrvrcValue& from, VARIANT& to)
{
    if (const bool* boolean = std::get_if<bool>(&from.content)) {
        to.vt = VT_BOOL;
        to.boolVal = *boolean ? VARIANT_TRUE : VARIANT_FALSE;
    } else if (const std::int32_t* number = std::get_if<std::int32_t>(&from.content)) {
        to.vt = VT_I4;
        to.lVal = *number;
    } else if (const std::string* text = std::get_if<std::string>(&from.content)) {
        to.bstrVal = newText(*text);
        to.vt = VT_BSTR;
    } else if (const auto* list = std::get_if<QrvrcValue::List>(&from.content)) {
        to.parray = newArray(*list, VT_VARIANT);
        to.vt = VT_ARRAY | VT_VARIANT;
    } else if (const auto* object = std::get_if<QrvrcValue::Object>(&from.content)) {
        to.pdispVal = object->get();
        to.pdispVal->AddRef();
        to.vt = VT_DISPATCH;
    }
}

/// Gives the caller what has become of a list that he handed over by reference; anything else stays as it is.
inline void writeBack(const QrvrcValue& value, VARIANT& argument)
{
    const auto* list = std::get_if<QrvrcValue::List>(&value.content);
    if (argument.vt == (VT_BYREF | VT_VARIANT)) {
        if (list && (argument.pvarVal->vt & VT_ARRAY)) {
            VariantClear(argument.pvarVal);
            write(value, *argument.pvarVal);
        }
    } else if (list && (argument.vt & VT_ARRAY) && (argument.vt & VT_BYREF)) {
        SAFEARRAY* changed = newArray(*list, static_cast<VARTYPE>(argument.vt & VT_TYPEMASK));
        SafeArrayDestroy(std::exchange(*argument.pparray, changed));
    }
}

} // namespace com

} // namespace qrvrc

#endif
