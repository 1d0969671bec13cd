#include "updater/UpdaterSystem.h"

#include <windows.h>

namespace fs = std::filesystem;

namespace updater {

namespace {

/// `word` as the other program's start-up code takes it apart again: backslashes count as such unless a quotation mark
/// follows.
std::wstring quoted(const std::wstring& word)
{
    std::wstring text = L"\"";
    std::size_t backslashes = 0;
    for (const wchar_t c : word) {
        if (c == L'"')
            text.append(backslashes + 1, L'\\');
        backslashes = c == L'\\' ? backslashes + 1 : 0;
        text += c;
    }
    return text.append(backslashes, L'\\') + L'"';
}

} // namespace

std::unique_ptr<StartedProgram> StartedProgram::start(const fs::path& program,
                                                      const std::vector<std::string>& arguments)
{
    std::wstring line = quoted(program.native());
    for (const std::string& argument : arguments)
        line += L' ' + quoted(fs::path(argument).native()); // UTF-8 like all paths that are kept as bytes here
    STARTUPINFOW start{};
    start.cb = sizeof start;
    PROCESS_INFORMATION process{};
    if (!CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &process))
        return nullptr;
    CloseHandle(process.hThread);
    return std::unique_ptr<StartedProgram>(new StartedProgram(reinterpret_cast<std::intptr_t>(process.hProcess)));
}

StartedProgram::~StartedProgram()
{
    CloseHandle(reinterpret_cast<HANDLE>(m_process));
}

std::optional<int> StartedProgram::exitStatus()
{
    DWORD status = 0;
    if (!GetExitCodeProcess(reinterpret_cast<HANDLE>(m_process), &status) || status == STILL_ACTIVE)
        return {};
    return static_cast<int>(status);
}

/// Folders of other users cannot be written to here.
bool isOwn(const fs::path&)
{
    return true;
}

fs::path ownFolder(const char* calledAs)
{
    std::wstring path(32768, L'\0'); // longer ones do not exist
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return (path.empty() ? fs::absolute(calledAs) : fs::path(path)).parent_path();
}

} // namespace updater
