#include "platform/components/ComponentLibrary.h"

#include "base/RuntimeError.h"
#include "platform/components/ComponentHost.h"

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <optional>
#include <vector>

#include <dlfcn.h>
#if __has_include(<link.h>)
#include <link.h>
#endif

namespace fs = std::filesystem;

namespace {

#if __has_include(<link.h>)
using ElfHeader = ElfW(Ehdr);
using ElfSegment = ElfW(Phdr);

/// Whether all that the loader would map is there. It does not look itself, and touching what lies behind a file's end
/// ends the process.
bool isWholeLibrary(const fs::path& file)
{
    std::error_code fault;
    const std::uintmax_t size = fs::file_size(file, fault);
    std::ifstream stream(file, std::ios::binary);
    ElfHeader header{};
    if (fault || !stream.read(reinterpret_cast<char*>(&header), sizeof header))
        return false;
    if (!std::equal(header.e_ident, header.e_ident + SELFMAG, ELFMAG) || header.e_phentsize != sizeof(ElfSegment))
        return false;
    std::vector<ElfSegment> segments(header.e_phnum);
    const auto bytes = static_cast<std::streamsize>(segments.size() * sizeof(ElfSegment));
    if (header.e_phoff > size || !stream.seekg(static_cast<std::streamoff>(header.e_phoff)) ||
        !stream.read(reinterpret_cast<char*>(segments.data()), bytes))
        return false;
    return std::all_of(segments.begin(), segments.end(), [size](const ElfSegment& segment) {
        return segment.p_type != PT_LOAD || (segment.p_offset <= size && segment.p_filesz <= size - segment.p_offset);
    });
}
#else
bool isWholeLibrary(const fs::path&)
{
    return true;
}
#endif

constexpr std::size_t maxProgIdLength = 39; // as on systems with components of their own

} // namespace

bool isProgId(std::string_view text)
{
    const auto isAllowed = [](char c) {
        return (c >= '0' && c <= '9') || (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '.' || c == '_' ||
               c == '-';
    };
    return !text.empty() && text.size() <= maxProgIdLength && std::all_of(text.begin(), text.end(), isAllowed);
}

ComponentLibrary::ComponentLibrary(const fs::path& file, std::string shownName, const fs::path& applicationFolder)
    : m_shownName(std::move(shownName))
{
    if (!isWholeLibrary(file))
        refuse("the file is damaged, incomplete, or no library of this system");
    void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) {
        const char* reason = dlerror();
        std::string_view said = reason ? reason : "it cannot be loaded";
        if (const std::string path = file.string() + ": "; said.starts_with(path))
            said.remove_prefix(path.size()); // the shown name tells enough, and nothing of the machine
        refuse(said);
    }
    const auto abiVersion = entryPoint<std::int32_t (*)()>(library, "qrvrc_abi_version");
    const auto attachHost = entryPoint<ComponentHost::Attach>(library, "qrvrc_attach_host");
    m_registerServer = entryPoint<std::int32_t (*)()>(library, "DllRegisterServer");
    m_createObject = entryPoint<std::int32_t (*)(const char*, QrvrcObject**)>(library, "qrvrc_create_object");
    std::int32_t version = 0;
    if (const auto thrown = thrownBy([&] { version = abiVersion(); }))
        refuse("telling its version failed: " + *thrown);
    if (version != QRVRC_ABI_VERSION) {
        refuse("it was built for version " + std::to_string(version) + " of the plugin interface, this is version " +
               std::to_string(QRVRC_ABI_VERSION));
    }
    m_host = new ComponentHost(m_shownName, applicationFolder.string(), attachHost);
}

std::vector<std::string> ComponentLibrary::registerClasses() const
{
    m_host->enteredClasses.clear();
    m_host->error.clear();
    m_host->isRegistering = true;
    std::int32_t fault = 0;
    const auto thrown = thrownBy([&] {
        m_host->attach();
        fault = m_registerServer();
    });
    m_host->isRegistering = false;
    if (thrown)
        refuse("its registration failed: " + *thrown);
    if (fault != 0)
        refuse("its registration failed with " + std::to_string(fault) + ' ' + m_host->takeError());
    if (m_host->enteredClasses.empty())
        refuse("its registration entered no class");
    return m_host->enteredClasses;
}

ObjectRef ComponentLibrary::create(const std::string& progId) const
{
    m_host->error.clear();
    QrvrcObject* object = nullptr;
    std::int32_t fault = 0;
    const auto thrown = thrownBy([&] {
        m_host->attach();
        fault = m_createObject(progId.c_str(), &object);
    });
    if (thrown)
        refuse("creating '" + progId + "' failed: " + *thrown);
    if (fault != 0)
        refuse("creating '" + progId + "' failed with " + std::to_string(fault) + ' ' + m_host->takeError());
    return m_host->adopt(object);
}

void ComponentLibrary::refuse(std::string_view what) const
{
    throw RuntimeError(ErrorNumber::CannotCreateObject, m_shownName + ": " + std::string(what));
}

template <typename Function>
Function ComponentLibrary::entryPoint(void* library, const char* name) const
{
    void* address = dlsym(library, name);
    if (!address)
        refuse(std::string("it lacks the entry point '") + name + '\'');
    return reinterpret_cast<Function>(address);
}
