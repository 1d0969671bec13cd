#include "updates/InstallUpdates.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"
#include "store/AppFolder.h"
#include "store/IniText.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <algorithm>
#include <exception>
#include <optional>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view orderFile = "\\settings\\restart.ini";
constexpr std::string_view orderSection = "Restart";

/// Where the file that is to be replaced is kept: in the same folders below the one for replaced files.
std::string keptName(const WaitingFile& file)
{
    const std::string below = file.folder == systemFolderMark ? '\\' + file.folder + '\\' : file.folder;
    return std::string(replacedFolder).append(below).append(file.name);
}

/// Keeps `target` under another name without taking it away. An older one that is kept already stays: the program
/// has not started with what replaced it.
void keep(const AppFolder& folder, const fs::path& target, const WaitingFile& file)
{
    const std::string name = keptName(file);
    folder.makeFolder(name.substr(0, name.rfind('\\')));
    const fs::path kept = folder.path(name);
    std::error_code fault;
    if (fs::exists(kept, fault))
        return;
    fs::create_hard_link(target, kept, fault);
    if (fault)
        copyFile(target, kept); // another disk, or one without links
}

class Installation
{
public:
    Installation(const UpdateTargets& targets, const StepHook& beforeStep) : m_targets(targets), m_hook(beforeStep) {}

    std::vector<std::string> run()
    {
        const AppFolder& folder = m_targets.folder();
        if (!folder.folderExists(updatesFolder))
            return {};
        std::vector<WaitingFile> files;
        attempt("updates.ini", [&] { files = waitingFiles(folder); });
        for (const WaitingFile& file : files)
            attempt(file.name, [&] { install(file); });
        if (!m_problems.empty()) {
            step("problems");
            attempt("UpdateProblems.txt", [&] { writeProblems(); });
        }
        step("remove");
        attempt("Updates", [&] { fs::remove_all(folder.path(updatesFolder)); });
        return m_problems;
    }

private:
    void step(std::string_view name) const
    {
        if (m_hook)
            m_hook(name);
    }

    template <typename Body>
    void attempt(std::string_view what, Body&& body)
    {
        try {
            std::forward<Body>(body)();
        } catch (const RuntimeError& error) {
            m_problems.push_back(std::string(what) + ": " + error.description());
        } catch (const fs::filesystem_error& error) {
            m_problems.push_back(std::string(what) + ": " + error.code().message());
        }
    }

    void install(const WaitingFile& file)
    {
        const AppFolder& folder = m_targets.folder();
        const std::optional<fs::path> target = m_targets.pathOf(file.name, file.folder, ListKind::Client);
        if (!target)
            throw RuntimeError(ErrorNumber::PathNotFound, file.folder);
        const std::string name = std::string(updatesFolder).append("\\").append(file.name);
        if (!folder.fileExists(name))
            return; // moved by an installation that was ended before it was done
        step("keep");
        std::error_code fault;
        if (fs::is_regular_file(*target, fault))
            keep(folder, *target, file);
        step("move");
        fs::create_directories(target->parent_path(), fault); // where it fails, so does the move, which says why
        moveFile(folder.path(name), *target);
    }

    void writeProblems() const
    {
        std::string text;
        for (const std::string& problem : m_problems)
            text.append(problem).append("\r\n");
        writeBytes(m_targets.folder().path(problemsFile), text);
    }

    const UpdateTargets& m_targets;
    const StepHook& m_hook;
    std::vector<std::string> m_problems;
};

/// Layout name, counted from the folder of replaced files, of a file in it.
std::string layoutName(const fs::path& relative)
{
    std::string name;
    for (const fs::path& part : relative)
        name.append("\\").append(bytesOf(part));
    return name;
}

} // namespace

std::vector<std::string> installWaiting(const UpdateTargets& targets, const StepHook& beforeStep)
{
    return Installation(targets, beforeStep).run();
}

std::vector<std::string> restoreReplaced(const UpdateTargets& targets)
{
    const fs::path kept = targets.folder().path(replacedFolder);
    std::vector<std::string> problems;
    std::error_code fault;
    std::vector<fs::path> files;
    for (fs::recursive_directory_iterator entry(kept, fault); !fault && entry != fs::recursive_directory_iterator();
         entry.increment(fault)) {
        if (entry->is_regular_file(fault))
            files.push_back(entry->path());
    }
    for (const fs::path& file : files) {
        std::string name = layoutName(file.lexically_relative(kept));
        const std::size_t cut = name.rfind('\\') + 1;
        std::string folder = name.substr(0, cut);
        if (folder == std::string("\\").append(systemFolderMark).append("\\"))
            folder = systemFolderMark;
        try {
            const std::optional<fs::path> target = targets.pathOf(name.substr(cut), folder, ListKind::Client);
            if (target)
                moveFile(file, *target);
        } catch (const RuntimeError& error) {
            problems.push_back(name + ": " + error.description());
        }
    }
    if (problems.empty())
        forgetReplaced(targets.folder());
    return problems;
}

void forgetReplaced(const AppFolder& folder) noexcept
{
    std::error_code ignored;
    try {
        fs::remove_all(folder.path(replacedFolder), ignored);
    } catch (const std::exception&) {
        return; // a name that is taken by something else is nobody's replaced file
    }
}

void writeRestartOrder(const AppFolder& folder, const RestartOrder& order)
{
    IniText text;
    text.setValue(orderSection, "Program", order.program.string());
    for (std::size_t index = 0; index < order.arguments.size(); ++index)
        text.setValue(orderSection, "Argument" + std::to_string(index + 1), order.arguments[index]);
    folder.makeFolder("\\settings");
    writeBytes(folder.path(orderFile), text.bytes(), Access::OwnerOnly);
}

RestartOrder readRestartOrder(const AppFolder& folder)
{
    const fs::path path = folder.path(orderFile);
    const IniText text(readBytesIfPresent(path, IniText::maxBytes).value_or(std::string()), path.string());
    RestartOrder order{.program = text.value(orderSection, "Program").value_or(std::string()), .arguments = {}};
    for (std::size_t index = 1;; ++index) {
        const std::optional<std::string> argument = text.value(orderSection, "Argument" + std::to_string(index));
        if (!argument)
            return order;
        order.arguments.push_back(*argument);
    }
}
