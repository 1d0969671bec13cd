#include "platform/components/Component.h"

#include "base/RuntimeError.h"
#include "platform/components/ComponentTrials.h"
#include "platform/components/DispatchObject_win32.h"
#include "platform/system/PathBytes.h"
#include "platform/system/SystemCodePage.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <windows.h>

#include <iterator>
#include <utility>

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuse(const std::string& progId, HRESULT result)
{
    throw RuntimeError(ErrorNumber::CannotCreateObject,
                       progId + ": " + std::to_string(static_cast<std::int32_t>(result)));
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
    return adoptDispatch(static_cast<IDispatch*>(dispatch), progId);
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
