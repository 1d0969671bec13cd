// The component server of a plugin's library: class factory, IDispatch, registration for the current user. Windows
// only; comes with qrvrc_plugin.hpp.
#ifndef QRVRC_COM_HPP
#define QRVRC_COM_HPP

#include "qrvrc_host.hpp"

#include <olectl.h>

namespace qrvrc {
namespace com {

/// An object of the C interface as callers of the system's components see it. Made, called and released on one thread.
class Dispatch : public IDispatch
{
public:
    explicit Dispatch(QrvrcObject* object) : m_object(object) {}
    Dispatch(const Dispatch&) = delete;
    Dispatch& operator=(const Dispatch&) = delete;

    STDMETHODIMP QueryInterface(REFIID wanted, void** out) override
    {
        if (!out)
            return E_POINTER;
        const bool isOurs = IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IDispatch);
        *out = isOurs ? static_cast<IDispatch*>(this) : nullptr;
        if (isOurs)
            AddRef();
        return isOurs ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return static_cast<ULONG>(InterlockedIncrement(&m_references)); }
    STDMETHODIMP_(ULONG) Release() override
    {
        const LONG left = InterlockedDecrement(&m_references);
        if (left == 0)
            delete this;
        return static_cast<ULONG>(left);
    }

    STDMETHODIMP GetTypeInfoCount(UINT* count) override
    {
        *count = 0;
        return S_OK;
    }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    /// Any name gets a number: whether there is such a member shows when it is called.
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        for (UINT index = 1; index < count; ++index)
            ids[index] = DISPID_UNKNOWN; // arguments have no names
        const bool isGiven = guarded([&] {
                                 const std::string name = narrow(names[0], codePage());
                                 auto known = std::find_if(m_names.begin(), m_names.end(), [&name](const auto& one) {
                                     return detail::isSameName(one, name);
                                 });
                                 if (known == m_names.end())
                                     known = m_names.insert(m_names.end(), name);
                                 ids[0] = static_cast<DISPID>(known - m_names.begin()) + 1;
                             }) == 0;
        return !isGiven ? E_OUTOFMEMORY : count > 1 ? DISP_E_UNKNOWNNAME : S_OK;
    }
    STDMETHODIMP Invoke(DISPID id, REFIID, LCID, WORD, DISPPARAMS* parameters, VARIANT* result, EXCEPINFO* exception,
                        UINT*) override
    {
        if (id < 1 || static_cast<std::size_t>(id) > m_names.size())
            return DISP_E_MEMBERNOTFOUND;
        if (parameters->cNamedArgs > 0)
            return DISP_E_NONAMEDARGS;
        lastError().clear();
        const std::int32_t fault = invoke(m_names[static_cast<std::size_t>(id) - 1], *parameters, result);
        if (fault == QRVRC_ERROR_MEMBER_NOT_SUPPORTED)
            return DISP_E_MEMBERNOTFOUND;
        if (fault == 0)
            return S_OK;
        if (exception) {
            constexpr std::uint32_t classicFacility = 0x800A0000; // the number stands in the lower half
            constexpr std::uint32_t lowerHalf = 0xFFFF;
            *exception = EXCEPINFO{};
            exception->scode = static_cast<SCODE>(classicFacility | (static_cast<std::uint32_t>(fault) & lowerHalf));
            guarded([&] { exception->bstrDescription = newText(lastError()); });
        }
        return DISP_E_EXCEPTION;
    }

private:
    virtual ~Dispatch() { m_object->functions->release(m_object); }

    /// @param member  a copy: the call may get names for more
    std::int32_t invoke(std::string member, const DISPPARAMS& parameters, VARIANT* result)
    {
        std::int32_t fault = 0;
        const std::int32_t border = guarded([&] {
            const std::size_t count = parameters.cArgs;
            std::vector<std::unique_ptr<QrvrcValue>> values;
            std::vector<QrvrcValue*> handles;
            for (std::size_t index = 0; index < count; ++index) { // the last argument comes first
                values.push_back(std::make_unique<QrvrcValue>());
                read(parameters.rgvarg[count - 1 - index], *values.back());
                handles.push_back(values.back().get());
            }
            QrvrcValue answer;
            fault = m_object->functions->call(m_object, member.c_str(), handles.data(),
                                              static_cast<std::int32_t>(count), &answer);
            if (fault != 0)
                return;
            for (std::size_t index = 0; index < count; ++index)
                writeBack(*values[index], parameters.rgvarg[count - 1 - index]);
            if (result)
                write(answer, *result);
        });
        return border != 0 ? border : fault;
    }

    QrvrcObject* m_object;
    std::vector<std::string> m_names; ///< the member numbered n is the one before n
    LONG m_references = 1;
};

inline IDispatch* newDispatch(QrvrcObject* object)
{
    try {
        return new Dispatch(object);
    } catch (...) {
        object->functions->release(object);
        throw;
    }
}

using Create = std::int32_t (*)(const char* progId, QrvrcObject** object);

/// Makes instances of the library's one class. Lives as long as the library.
class Factory : public IClassFactory
{
public:
    Factory(const char* progId, Create create) : m_progId(progId), m_create(create) {}

    STDMETHODIMP QueryInterface(REFIID wanted, void** out) override
    {
        const bool isOurs = IsEqualIID(wanted, IID_IUnknown) || IsEqualIID(wanted, IID_IClassFactory);
        *out = isOurs ? static_cast<IClassFactory*>(this) : nullptr;
        return isOurs ? S_OK : E_NOINTERFACE;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; }
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID wanted, void** out) override
    {
        *out = nullptr;
        if (outer)
            return CLASS_E_NOAGGREGATION;
        QrvrcObject* object = nullptr;
        if (m_create(m_progId, &object) != 0)
            return E_FAIL;
        HRESULT result = E_OUTOFMEMORY;
        guarded([&] {
            const QrvrcValue::Object dispatch(newDispatch(object));
            result = dispatch->QueryInterface(wanted, out);
        });
        return result;
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }

private:
    const char* m_progId;
    Create m_create;
};

/// The class's identity, made from its programmatic identifier, so that it is the same in every build of the plugin.
inline CLSID classId(std::string_view progId)
{
    std::uint64_t halves[2] = {0xCBF29CE484222325, 0x6C62272E07BB0142}; // two hashes of it
    for (std::uint64_t& half : halves) {
        for (const char c : progId)
            half = (half ^ static_cast<unsigned char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c)) * 0x100000001B3;
    }
    CLSID id{};
    std::copy_n(reinterpret_cast<const unsigned char*>(halves), sizeof id, reinterpret_cast<unsigned char*>(&id));
    id.Data3 = static_cast<unsigned short>((id.Data3 & 0x0FFF) | 0x8000); // made by a rule of one's own
    id.Data4[0] = static_cast<unsigned char>((id.Data4[0] & 0x3F) | 0x80);
    return id;
}

inline std::wstring classIdText(std::string_view progId)
{
    wchar_t text[40] = {};
    StringFromGUID2(classId(progId), text, sizeof text / sizeof *text);
    return text;
}

inline std::wstring classesKey(const std::wstring& key)
{
    return L"Software\\Classes\\" + key;
}

inline bool setKey(const std::wstring& key, const wchar_t* name, const std::wstring& value)
{
    const auto bytes = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
    return RegSetKeyValueW(HKEY_CURRENT_USER, classesKey(key).c_str(), name, REG_SZ, value.c_str(), bytes) ==
           ERROR_SUCCESS;
}

inline HRESULT registerServer(const char* progId)
{
    const std::wstring name = wideOf(progId);
    const std::wstring id = classIdText(progId);
    const std::wstring server = L"CLSID\\" + id + L"\\InprocServer32";
    const bool isDone = setKey(name, nullptr, name) && setKey(name + L"\\CLSID", nullptr, id) &&
                        setKey(L"CLSID\\" + id, nullptr, name) &&
                        setKey(L"CLSID\\" + id + L"\\ProgID", nullptr, name) && setKey(server, nullptr, modulePath()) &&
                        setKey(server, L"ThreadingModel", L"Apartment");
    return isDone ? S_OK : SELFREG_E_CLASS;
}

inline HRESULT unregisterServer(const char* progId)
{
    const auto remove = [](const std::wstring& key) {
        const LSTATUS status = RegDeleteTreeW(HKEY_CURRENT_USER, classesKey(key).c_str());
        return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
    };
    const bool isDone = remove(wideOf(progId)) && remove(L"CLSID\\" + classIdText(progId));
    return isDone ? S_OK : SELFREG_E_CLASS;
}

} // namespace com
} // namespace qrvrc

/// What a library exports; it stays loaded, so that what it left behind (timers, windows) keeps its code.
#define QRVRC_COM_SERVER(progId, create)                                                                               \
    STDAPI DllGetClassObject(REFCLSID wantedClass, REFIID wanted, void** out)                                          \
    {                                                                                                                  \
        static qrvrc::com::Factory factory(progId, create);                                                            \
        qrvrc::com::modulePath();                                                                                      \
        qrvrc::detail::attachedHost() = &qrvrc::com::host();                                                           \
        if (!IsEqualCLSID(wantedClass, qrvrc::com::classId(progId)))                                                   \
            return CLASS_E_CLASSNOTAVAILABLE;                                                                          \
        return factory.QueryInterface(wanted, out);                                                                    \
    }                                                                                                                  \
    STDAPI DllCanUnloadNow()                                                                                           \
    {                                                                                                                  \
        return S_FALSE;                                                                                                \
    }                                                                                                                  \
    STDAPI DllRegisterServer()                                                                                         \
    {                                                                                                                  \
        return qrvrc::com::registerServer(progId);                                                                     \
    }                                                                                                                  \
    STDAPI DllUnregisterServer()                                                                                       \
    {                                                                                                                  \
        return qrvrc::com::unregisterServer(progId);                                                                   \
    }                                                                                                                  \
    static_assert(true, "takes the semicolon")

#endif
