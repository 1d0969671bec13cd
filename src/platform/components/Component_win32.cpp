#include "platform/components/Component.h"

#include "base/RuntimeError.h"
#include "platform/components/ComponentTrials.h"
#include "platform/system/PathBytes.h"
#include "platform/system/SystemCodePage.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <windows.h>

#include <oleauto.h>

#include <iterator>
#include <optional>
#include <utility>

namespace fs = std::filesystem;

namespace {

std::string bytesOf(BSTR text)
{
    return text ? ::bytesOf(std::wstring_view(text, SysStringLen(text))) : std::string();
}

void demandMemory(const void* pointer)
{
    if (!pointer)
        throw RuntimeError(ErrorNumber::OutOfMemory);
}

BSTR newText(std::string_view bytes)
{
    const std::wstring wide = wideOf(bytes);
    BSTR text = SysAllocStringLen(wide.data(), static_cast<UINT>(wide.size()));
    demandMemory(text);
    return text;
}

[[noreturn]] void refuse(const std::string& progId, HRESULT result)
{
    throw RuntimeError(ErrorNumber::CannotCreateObject,
                       progId + ": " + std::to_string(static_cast<std::int32_t>(result)));
}

/// A VARIANT that is cleared at its end.
class Variant
{
public:
    Variant() { VariantInit(&m_variant); }
    Variant(const Variant&) = delete;
    Variant& operator=(const Variant&) = delete;
    ~Variant() { VariantClear(&m_variant); }

    VARIANT* get() { return &m_variant; }
    VARIANT* operator->() { return &m_variant; }

private:
    VARIANT m_variant;
};

/// A SAFEARRAY that is destroyed at its end.
class TextArray
{
public:
    explicit TextArray(const std::vector<ComponentValue>& values)
        : m_array(SafeArrayCreateVector(VT_BSTR, 0, static_cast<ULONG>(values.size())))
    {
        demandMemory(m_array);
        try {
            for (std::size_t index = 0; index < values.size(); ++index) {
                auto place = static_cast<LONG>(index);
                BSTR text = newText(values[index].toString());
                const HRESULT result = SafeArrayPutElement(m_array, &place, text); // which copies it
                SysFreeString(text);
                if (FAILED(result))
                    throw RuntimeError(ErrorNumber::OutOfMemory);
            }
        } catch (...) {
            SafeArrayDestroy(m_array);
            throw;
        }
    }
    TextArray(const TextArray&) = delete;
    TextArray& operator=(const TextArray&) = delete;
    ~TextArray()
    {
        if (m_array)
            SafeArrayDestroy(m_array);
    }

    /// For by-reference arguments: the component may put another array in its place.
    SAFEARRAY** place() { return &m_array; }

private:
    SAFEARRAY* m_array;
};

ComponentValue valueOf(VARIANT& variant);

ComponentValue::List listOf(SAFEARRAY* array)
{
    auto list = std::make_shared<std::vector<ComponentValue>>();
    if (!array)
        return list;
    VARTYPE type = VT_EMPTY;
    LONG first = 0;
    LONG last = -1;
    if (SafeArrayGetDim(array) != 1 || FAILED(SafeArrayGetVartype(array, &type)) ||
        FAILED(SafeArrayGetLBound(array, 1, &first)) || FAILED(SafeArrayGetUBound(array, 1, &last)))
        throw RuntimeError(ErrorNumber::TypeMismatch);
    for (LONG index = first; index <= last; ++index) {
        Variant element;
        HRESULT result = S_OK;
        if (type == VT_VARIANT) {
            result = SafeArrayGetElement(array, &index, element.get());
        } else if (type == VT_BSTR) {
            result = SafeArrayGetElement(array, &index, &element->bstrVal);
            if (SUCCEEDED(result))
                element->vt = VT_BSTR;
        } else {
            result = DISP_E_TYPEMISMATCH;
        }
        if (FAILED(result))
            throw RuntimeError(ErrorNumber::TypeMismatch);
        list->push_back(valueOf(*element.get()));
    }
    return list;
}

/// An object of the system, called by name through IDispatch.
class DispatchObject : public ComponentObject
{
public:
    /// @param dispatch  one reference of it, which this owns from now on
    DispatchObject(IDispatch* dispatch, std::string name) : m_dispatch(dispatch), m_name(std::move(name)) {}
    DispatchObject(const DispatchObject&) = delete;
    DispatchObject& operator=(const DispatchObject&) = delete;
    ~DispatchObject() override { m_dispatch->Release(); }

    ComponentValue call(std::string_view member, std::vector<ComponentValue> arguments) override;

private:
    [[noreturn]] void fail(HRESULT result, EXCEPINFO& exception, std::string_view member) const;

    IDispatch* m_dispatch;
    std::string m_name;
};

/// The arguments of one call, as the system wants them: last one first.
class Arguments
{
public:
    explicit Arguments(const std::vector<ComponentValue>& values) : m_values(values), m_variants(values.size())
    {
        for (std::size_t index = 0; index < values.size(); ++index)
            fill(*m_variants[values.size() - 1 - index].get(), values[index]);
        for (Variant& variant : m_variants)
            m_plain.push_back(*variant.get()); // borrowed: the variants stay their owners
    }

    DISPPARAMS parameters()
    {
        return {.rgvarg = m_plain.data(),
                .rgdispidNamedArgs = nullptr,
                .cArgs = static_cast<UINT>(m_plain.size()),
                .cNamedArgs = 0};
    }

    /// Carries what the component did to its lists back into those of the caller.
    void takeBack()
    {
        std::size_t next = 0;
        for (const ComponentValue& value : m_values) {
            if (std::holds_alternative<ComponentValue::List>(value.variant()))
                *value.toList() = *listOf(*m_arrays[next++]->place());
        }
    }

private:
    void fill(VARIANT& variant, const ComponentValue& value)
    {
        if (const auto* boolean = std::get_if<bool>(&value.variant())) {
            variant.vt = VT_BOOL;
            variant.boolVal = *boolean ? VARIANT_TRUE : VARIANT_FALSE;
        } else if (const auto* number = std::get_if<std::int32_t>(&value.variant())) {
            variant.vt = VT_I4;
            variant.lVal = *number;
        } else if (const auto* text = std::get_if<std::string>(&value.variant())) {
            variant.bstrVal = newText(*text);
            variant.vt = VT_BSTR;
        } else if (std::holds_alternative<ComponentValue::List>(value.variant())) {
            m_arrays.push_back(std::make_unique<TextArray>(*value.toList()));
            variant.vt = VT_ARRAY | VT_BSTR | VT_BYREF; // which VariantClear leaves alone
            variant.pparray = m_arrays.back()->place();
        } else if (!value.isEmpty()) {
            throw RuntimeError(ErrorNumber::TypeMismatch); // objects only come, they do not go
        }
    }

    const std::vector<ComponentValue>& m_values;
    std::vector<Variant> m_variants;
    std::vector<VARIANT> m_plain;
    std::vector<std::unique_ptr<TextArray>> m_arrays; ///< in the order of the caller's arguments
};

ComponentValue valueOf(VARIANT& variant)
{
    if (variant.vt == VT_EMPTY || variant.vt == VT_NULL)
        return {};
    if (variant.vt == VT_BOOL)
        return variant.boolVal != VARIANT_FALSE;
    if (variant.vt == VT_BSTR)
        return bytesOf(variant.bstrVal);
    if (variant.vt == VT_DISPATCH) {
        if (!variant.pdispVal)
            return {};
        variant.pdispVal->AddRef();
        return ObjectRef(std::make_shared<DispatchObject>(variant.pdispVal, "object"));
    }
    if (variant.vt & VT_ARRAY)
        return listOf(variant.vt & VT_BYREF ? *variant.pparray : variant.parray);
    Variant number; // everything else that is a number, or refers to one of the above
    if (variant.vt & VT_BYREF) {
        if (FAILED(VariantCopyInd(number.get(), &variant)) || (number->vt & VT_BYREF))
            throw RuntimeError(ErrorNumber::TypeMismatch);
        return valueOf(*number.get());
    }
    if (FAILED(VariantChangeType(number.get(), &variant, 0, VT_I4)))
        throw RuntimeError(ErrorNumber::TypeMismatch);
    return static_cast<std::int32_t>(number->lVal);
}

void DispatchObject::fail(HRESULT result, EXCEPINFO& exception, std::string_view member) const
{
    std::string detail = m_name + ", " + std::string(member);
    std::optional<std::int32_t> raised;
    if (result == DISP_E_EXCEPTION) {
        if (exception.pfnDeferredFillIn)
            exception.pfnDeferredFillIn(&exception);
        // Errors of the classic languages are 0x800A0000 and their number.
        constexpr std::uint32_t classicFacility = 0x800A0000;
        constexpr std::uint32_t facility = 0xFFFF0000;
        const auto code = static_cast<std::uint32_t>(exception.scode);
        if (exception.wCode != 0)
            raised = exception.wCode;
        else
            raised = static_cast<std::int32_t>((code & facility) == classicFacility ? code & ~facility : code);
        if (exception.bstrDescription)
            detail += ": " + bytesOf(exception.bstrDescription);
        SysFreeString(exception.bstrSource);
        SysFreeString(exception.bstrDescription);
        SysFreeString(exception.bstrHelpFile);
    }
    ErrorNumber number = ErrorNumber::InternalError;
    switch (result) {
    case DISP_E_EXCEPTION:
        number = static_cast<ErrorNumber>(*raised);
        break;
    case DISP_E_UNKNOWNNAME:
    case DISP_E_MEMBERNOTFOUND:
        number = ErrorNumber::MemberNotSupported;
        break;
    case DISP_E_TYPEMISMATCH:
        number = ErrorNumber::TypeMismatch;
        break;
    case DISP_E_OVERFLOW:
        number = ErrorNumber::Overflow;
        break;
    case E_OUTOFMEMORY:
        number = ErrorNumber::OutOfMemory;
        break;
    case DISP_E_BADPARAMCOUNT:
    case DISP_E_PARAMNOTOPTIONAL:
        number = ErrorNumber::InvalidProcedureCall;
        break;
    default:
        detail += ": " + std::to_string(static_cast<std::int32_t>(result));
    }
    throw RuntimeError(number, detail);
}

ComponentValue DispatchObject::call(std::string_view member, std::vector<ComponentValue> arguments)
{
    EXCEPINFO exception{};
    std::wstring name = wideOf(member);
    LPOLESTR names = name.data();
    DISPID id = 0;
    HRESULT result = m_dispatch->GetIDsOfNames(IID_NULL, &names, 1, LOCALE_USER_DEFAULT, &id);
    if (FAILED(result))
        fail(result, exception, member);
    Arguments passed(arguments);
    DISPPARAMS parameters = passed.parameters();
    Variant answer;
    UINT wrongArgument = 0;
    result = m_dispatch->Invoke(id, IID_NULL, LOCALE_USER_DEFAULT, DISPATCH_METHOD | DISPATCH_PROPERTYGET, &parameters,
                                answer.get(), &exception, &wrongArgument);
    if (FAILED(result))
        fail(result, exception, member);
    passed.takeBack();
    return valueOf(*answer.get());
}

CLSID classOf(const std::string& progId)
{
    CLSID classId{};
    const HRESULT result = CLSIDFromProgID(wideOf(progId).c_str(), &classId);
    if (FAILED(result))
        refuse(progId, result);
    return classId;
}

/// The library that the system creates the class from; empty when it tells none.
fs::path libraryOf(const CLSID& classId)
{
    wchar_t id[40] = {};
    StringFromGUID2(classId, id, static_cast<int>(std::size(id)));
    const std::wstring key = L"CLSID\\" + std::wstring(id) + L"\\InprocServer32";
    std::wstring path(32768, L'\0'); // longer ones do not exist
    auto bytes = static_cast<DWORD>(path.size() * sizeof(wchar_t));
    if (RegGetValueW(HKEY_CLASSES_ROOT, key.c_str(), nullptr, RRF_RT_REG_SZ, nullptr, path.data(), &bytes) !=
        ERROR_SUCCESS)
        return {};
    path.resize(path.find(L'\0'));
    return path;
}

ObjectRef create(const std::string& progId)
{
    void* dispatch = nullptr;
    const HRESULT result = CoCreateInstance(classOf(progId), nullptr, CLSCTX_INPROC_SERVER, IID_IDispatch, &dispatch);
    if (FAILED(result) || !dispatch)
        refuse(progId, result);
    return std::make_shared<DispatchObject>(static_cast<IDispatch*>(dispatch), progId);
}

bool registerLibrary(const fs::path& file)
{
    // Stays loaded: what it registered may be in use from now on.
    const HMODULE library = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!library)
        return false;
    const FARPROC address = GetProcAddress(library, "DllRegisterServer");
    if (!address)
        return false;
    const auto registerServer = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(reinterpret_cast<void*>(address));
    return registerServer() == S_OK;
}

} // namespace

/// The system finds and registers components itself.
class Components::Impl
{
public:
    explicit Impl(const AppFolder& folder)
        : trials(folder),
          m_initialized(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
    {}
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl()
    {
        if (m_initialized)
            CoUninitialize();
    }

    ComponentTrials trials;

    /// What was found out about the classes of a library counts no more.
    void forgetClassesOf(const fs::path& file)
    {
        const IniText before = trials.notes();
        IniText after = before;
        for (const std::string& progId : before.sectionNames()) {
            CLSID classId{};
            std::error_code fault;
            if (FAILED(CLSIDFromProgID(wideOf(progId).c_str(), &classId)) ||
                !fs::equivalent(libraryOf(classId), file, fault))
                continue;
            after.removeSection(progId);
            trials.forget(progId);
        }
        if (after.bytes() != before.bytes())
            trials.writeNotes(after);
    }

private:
    bool m_initialized;
};

Components::Components(const AppFolder& folder) : m_impl(std::make_unique<Impl>(folder)) {}

Components::~Components() = default;

void Components::setProbe(Probe probe)
{
    m_impl->trials.probe = std::move(probe);
}

ObjectRef Components::createObject(const std::string& progId)
{
    const fs::path file = libraryOf(classOf(progId));
    if (!file.empty())
        m_impl->trials.tryFirst(progId, bytesOf(file), file);
    ObjectRef object = create(progId);
    if (!file.empty())
        m_impl->trials.createdWell(progId, file);
    return object;
}

bool Components::registerFile(const fs::path& file)
{
    try {
        if (m_impl->trials.runProbe(bytesOf(file), file, {}) || !registerLibrary(file))
            return false;
        m_impl->forgetClassesOf(file);
        return true;
    } catch (const RuntimeError&) {
        return false;
    }
}

void tryComponent(const AppFolder& folder, const fs::path& file, const std::string& progId)
{
    Components components(folder);
    try {
        if (progId.empty())
            components.registerFile(file);
        else
            components.createObject(progId);
    } catch (const RuntimeError&) { // the client makes the same try and tells people what comes of it
    }
}
