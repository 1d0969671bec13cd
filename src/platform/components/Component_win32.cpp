#include "platform/components/Component.h"

#include "base/RuntimeError.h"
#include "platform/components/ComponentTrials.h"
#include "platform/components/DispatchObject_win32.h"
#include "platform/components/Variants_win32.h"
#include "platform/system/PathBytes.h"
#include "platform/system/SystemCodePage.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <windows.h>

#include <array>
#include <cstdio>
#include <iterator>
#include <string_view>
#include <utility>

namespace fs = std::filesystem;

namespace {

/// What people are told of a file: nothing of where it lies on this machine.
std::string shownName(const fs::path& file)
{
    return bytesOf(file.filename());
}

[[noreturn]] void refuse(const std::string& who, const std::string& what)
{
    throw RuntimeError(ErrorNumber::CannotCreateObject, who + ": " + what);
}

/// A result of the system as it calls it, and in its words if it has any.
std::string textOf(HRESULT result)
{
    std::array<char, 11> number{};
    std::snprintf(number.data(), number.size(), "0x%08lX", static_cast<unsigned long>(result));
    std::array<wchar_t, 512> words{};
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_MAX_WIDTH_MASK,
                       nullptr, static_cast<DWORD>(result), 0, words.data(), static_cast<DWORD>(words.size()), nullptr);
    return number.data() + (length > 0 ? ", " + bytesOf(std::wstring_view(words.data(), length)) : std::string());
}

[[noreturn]] void refuse(const std::string& progId, HRESULT result)
{
    refuse(progId, textOf(result));
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

/// @throws RuntimeError CannotCreateObject with what stands in the way
void registerLibrary(const fs::path& file)
{
    // Stays loaded: what it registered may be in use from now on.
    const HMODULE library = LoadLibraryExW(file.c_str(), nullptr, LOAD_WITH_ALTERED_SEARCH_PATH);
    if (!library)
        refuse(shownName(file), HRESULT_FROM_WIN32(GetLastError()));
    const FARPROC address = GetProcAddress(library, "DllRegisterServer");
    if (!address)
        refuse(shownName(file), "it lacks the entry point 'DllRegisterServer'");
    const auto registerServer = reinterpret_cast<HRESULT(STDAPICALLTYPE*)()>(reinterpret_cast<void*>(address));
    HRESULT result = E_FAIL;
    try {
        result = registerServer();
    } catch (...) {
        refuse(shownName(file), "its registration threw an exception");
    }
    if (result != S_OK)
        refuse(shownName(file), "its registration failed with " + textOf(result));
}

} // namespace

/// The system finds and registers components itself.
class Components::Impl
{
public:
    explicit Impl(const AppFolder& folder)
        : m_trials(std::make_shared<ComponentTrials>(folder)),
          m_initialized(SUCCEEDED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED)))
    {}
    Impl(const Impl&) = delete;
    Impl& operator=(const Impl&) = delete;
    ~Impl()
    {
        if (m_initialized)
            CoUninitialize();
    }

    ComponentTrials& trials() { return *m_trials; }

    /// What was found out about the classes of a library counts no more.
    void forgetClassesOf(const fs::path& file)
    {
        const IniText before = m_trials->notes();
        IniText after = before;
        for (const std::string& progId : before.sectionNames()) {
            CLSID classId{};
            std::error_code fault;
            if (FAILED(CLSIDFromProgID(wideOf(progId).c_str(), &classId)) ||
                !fs::equivalent(libraryOf(classId), file, fault))
                continue;
            after.removeSection(progId);
            m_trials->forget(progId);
        }
        if (after.bytes() != before.bytes())
            m_trials->writeNotes(after);
    }

private:
    std::shared_ptr<ComponentTrials> m_trials;
    bool m_initialized;
};

Components::Components(const AppFolder& folder) : m_impl(std::make_unique<Impl>(folder)) {}

Components::~Components() = default;

void Components::setProbe(Probe probe)
{
    m_impl->trials().setProbe(std::move(probe));
}

void Components::useCodePage(std::string_view name)
{
    useTextCodePage(name);
}

bool Components::isTried(const std::string& progId) const
{
    try {
        const fs::path file = libraryOf(classOf(progId));
        return file.empty() || m_impl->trials().verdict(progId, file).has_value();
    } catch (const RuntimeError&) {
        return true; // creating it says what is wrong
    }
}

void Components::tryClass(const std::string& progId, const Done& done)
{
    fs::path file;
    const ComponentFault fault = faultIn([&] { file = libraryOf(classOf(progId)); });
    if (fault || file.empty())
        done(fault);
    else
        m_impl->trials().tryClass(progId, shownName(file), file, done);
}

ObjectRef Components::createObject(const std::string& progId)
{
    const fs::path file = libraryOf(classOf(progId));
    if (!file.empty())
        m_impl->trials().demandPassed(progId, shownName(file), file);
    ObjectRef object = create(progId);
    if (!file.empty())
        m_impl->trials().createdWell(progId);
    return object;
}

void Components::registerFile(const fs::path& file, const Done& done)
{
    m_impl->trials().run(file, {}, [this, file, done](const Verdict& verdict) {
        ComponentFault fault = faultOf(shownName(file), verdict);
        if (!fault) {
            fault = faultIn([&] {
                registerLibrary(file);
                m_impl->forgetClassesOf(file);
            });
        }
        done(fault);
    });
}

void tryComponent(const AppFolder& folder, const fs::path& file, const std::string& progId,
                  const std::function<void(ComponentObject&)>& examine)
{
    Components components(folder);
    try {
        if (progId.empty())
            components.registerFile(file, [](const ComponentFault&) {});
        else
            examine(*components.createObject(progId));
    } catch (const RuntimeError&) { // the client makes the same try and tells people what comes of it
    }
}
