#include "updates/InstallUpdates.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/ExecutableFile.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"
#include "store/AppFolder.h"
#include "store/IniText.h"
#include "updates/Sha256.h"
#include "updates/UpdateState.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <algorithm>
#include <exception>
#include <map>
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

std::string waitingName(const WaitingFile& file)
{
    return std::string(updatesFolder).append("\\").append(file.name);
}

bool isFile(const fs::path& path)
{
    std::error_code fault;
    return fs::is_regular_file(path, fault);
}

/// Whether the update brought it where there was nothing before.
bool isAdded(const UpdateState& state, const WaitingFile& file)
{
    const std::vector<WaitingFile> added = state.added();
    return std::find(added.begin(), added.end(), file) != added.end();
}

/// Leaves nothing that waits, nor what is known of it.
void dropAllWaiting(const AppFolder& folder, const UpdateState& state)
{
    fs::remove_all(folder.path(updatesFolder));
    state.forgetDigests();
    state.noteHandOver(UpdateState::HandOver::None);
}

/// One file that waits, as it was judged.
struct Step
{
    WaitingFile file;
    fs::path waiting;
    fs::path target;
    fs::path kept;
    bool isMoved = false; ///< by this installation, or by one that was ended before it was done
};

class Installation
{
public:
    Installation(const UpdateTargets& targets, const StepHook& beforeStep)
        : m_targets(targets),
          m_state(targets.folder()),
          m_hook(beforeStep)
    {}

    std::vector<std::string> run()
    {
        const AppFolder& folder = m_targets.folder();
        if (!folder.folderExists(updatesFolder))
            return {};
        judgeAll();
        if (!m_problems.empty())
            return giveUp(UpdateState::HandOver::Told); // half a set is none: the rest waits for another download
        for (const Step& file : m_steps)
            attempt(file.file.name, [&] { keep(file); });
        for (Step& file : m_steps) {
            if (m_problems.empty())
                attempt(file.file.name, [&] { move(file); });
        }
        if (!m_problems.empty()) {
            for (Step& file : m_steps)
                attempt(file.file.name, [&] { takeBack(file); });
            return giveUp(UpdateState::HandOver::None);
        }
        step("remove");
        attempt("updates.ini", [&] { conclude(); });
        return m_problems;
    }

private:
    void step(std::string_view name) const
    {
        if (m_hook)
            m_hook(name);
    }

    template <typename Body>
    bool attempt(std::string_view what, Body&& body)
    {
        try {
            std::forward<Body>(body)();
            return true;
        } catch (const RuntimeError& error) {
            m_problems.push_back(std::string(what) + ": " + error.description());
        } catch (const fs::filesystem_error& error) {
            m_problems.push_back(std::string(what) + ": " + error.code().message());
        }
        return false;
    }

    void judgeAll()
    {
        std::vector<WaitingFile> files;
        if (!attempt("updates.ini", [&] { files = waitingFiles(m_targets.folder()); })) {
            // Nobody knows any more where these files belong, and nothing could be added to such a list.
            attempt("Updates", [&] { fs::remove_all(m_targets.folder().path(updatesFolder)); });
            return;
        }
        const std::map<std::string, std::string> digests = m_state.digests();
        std::vector<WaitingFile> hopeless;
        for (const WaitingFile& file : files) {
            const auto digest = digests.find(file.name);
            if (!attempt(file.name, [&] { judge(file, digest == digests.end() ? std::string() : digest->second); }))
                hopeless.push_back(file);
        }
        if (!hopeless.empty())
            attempt("updates.ini", [&] { dropWaiting(m_targets.folder(), hopeless); });
    }

    /// @param digest  what the file was when it arrived; empty when nobody knows
    void judge(const WaitingFile& file, const std::string& digest)
    {
        const AppFolder& folder = m_targets.folder();
        const std::optional<fs::path> target = m_targets.pathOf(file.name, file.folder, ListKind::Client);
        if (!target)
            throw RuntimeError(ErrorNumber::PathNotFound, file.folder);
        Step found{.file = file,
                   .waiting = folder.path(waitingName(file)),
                   .target = *target,
                   .kept = folder.path(keptName(file))};
        found.isMoved = !isFile(found.waiting);
        const fs::path& arrived = found.isMoved ? found.target : found.waiting;
        if (found.isMoved && !isFile(found.target) && !digest.empty())
            throw RuntimeError(ErrorNumber::FileNotFound, waitingName(file));
        if (!digest.empty() && sha256Of(arrived) != digest)
            throw RuntimeError(ErrorNumber::InvalidFileFormat, "it is not what was downloaded");
        if (!found.isMoved && !mayReplace(found.waiting, found.target))
            throw RuntimeError(ErrorNumber::InvalidFileFormat, "it is no program for this system");
        m_steps.push_back(std::move(found));
    }

    void keep(const Step& file) const
    {
        step("keep");
        if (!file.isMoved)
            keepReplaced(m_targets.folder(), file.target, file.file);
    }

    void move(Step& file) const
    {
        step("move");
        if (file.isMoved)
            return;
        std::error_code fault;
        fs::create_directories(file.target.parent_path(), fault); // where it fails, so does the move, which says why
        moveFile(file.waiting, file.target);
        file.isMoved = true;
    }

    void takeBack(Step& file) const
    {
        const bool hasOld = isFile(file.kept);
        if (!file.isMoved || !isFile(file.target) || (!hasOld && !isAdded(m_state, file.file)))
            return;
        moveFile(file.target, file.waiting);
        file.isMoved = false;
        if (hasOld)
            moveFile(file.kept, file.target);
    }

    void conclude() const
    {
        m_state.noteTrial(true);
        dropAllWaiting(m_targets.folder(), m_state);
    }

    std::vector<std::string> giveUp(UpdateState::HandOver state)
    {
        step("problems");
        std::vector<std::string> problems = m_problems;
        if (state == UpdateState::HandOver::Told && !m_steps.empty())
            problems.emplace_back("The other files wait until these have been downloaded again.");
        attempt("UpdateProblems.txt", [&] {
            writeProblems(m_targets.folder(), problems);
            m_state.noteHandOver(state);
        });
        return m_problems;
    }

    const UpdateTargets& m_targets;
    UpdateState m_state;
    const StepHook& m_hook;
    std::vector<Step> m_steps;
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

/// The files that are kept, by where they belong.
std::vector<WaitingFile> keptFiles(const AppFolder& folder)
{
    const fs::path kept = folder.path(replacedFolder);
    std::vector<WaitingFile> files;
    std::error_code fault;
    for (fs::recursive_directory_iterator entry(kept, fault); !fault && entry != fs::recursive_directory_iterator();
         entry.increment(fault)) {
        if (!entry->is_regular_file(fault))
            continue;
        const std::string name = layoutName(entry->path().lexically_relative(kept));
        const std::size_t cut = name.rfind('\\') + 1;
        WaitingFile file{.name = name.substr(cut), .folder = name.substr(0, cut)};
        if (file.folder == std::string("\\").append(systemFolderMark).append("\\"))
            file.folder = systemFolderMark;
        files.push_back(std::move(file));
    }
    return files;
}

} // namespace

std::optional<fs::path> placeToKeep(const AppFolder& folder, const fs::path& target, const WaitingFile& file)
{
    const std::string name = keptName(file);
    fs::path kept = folder.path(name);
    std::error_code fault;
    if (fs::exists(kept, fault))
        return {};
    const UpdateState state(folder);
    if (isAdded(state, file))
        return {}; // what is there now came with the same update
    if (!isFile(target)) {
        state.noteAdded(file);
        return {};
    }
    folder.makeFolder(name.substr(0, name.rfind('\\')));
    return kept;
}

void keepFile(const fs::path& file, const fs::path& kept)
{
    std::error_code fault;
    fs::create_hard_link(file, kept, fault);
    if (fault)
        copyFile(file, kept); // another disk, or one without links
}

void keepReplaced(const AppFolder& folder, const fs::path& target, const WaitingFile& file)
{
    if (const std::optional<fs::path> kept = placeToKeep(folder, target, file))
        keepFile(target, *kept);
}

std::vector<std::string> installWaiting(const UpdateTargets& targets, const StepHook& beforeStep)
{
    return Installation(targets, beforeStep).run();
}

std::vector<std::string> restoreReplaced(const UpdateTargets& targets)
{
    const AppFolder& folder = targets.folder();
    const UpdateState state(folder);
    std::vector<std::string> problems;
    try {
        dropAllWaiting(folder, state); // it would come to lie beside files that it does not belong to
    } catch (const std::exception& error) {
        problems.push_back(std::string(updatesFolder) + ": " + error.what());
    }
    const auto each = [&](const std::vector<WaitingFile>& files, const auto& act) {
        for (const WaitingFile& file : files) {
            try {
                if (const auto target = targets.pathOf(file.name, file.folder, ListKind::Client))
                    act(file, *target);
            } catch (const RuntimeError& error) {
                problems.push_back(file.folder + file.name + ": " + error.description());
            }
        }
    };
    each(keptFiles(folder),
         [&](const WaitingFile& file, const fs::path& target) { moveFile(folder.path(keptName(file)), target); });
    each(state.added(), [](const WaitingFile&, const fs::path& target) {
        std::error_code fault;
        fs::remove(target, fault);
        if (fault)
            throwFileError(fault, target);
    });
    if (problems.empty())
        forgetReplaced(folder);
    state.noteTrial(false);
    return problems;
}

bool isReplacedKept(const AppFolder& folder)
{
    return !keptFiles(folder).empty();
}

void writeProblems(const AppFolder& folder, const std::vector<std::string>& problems)
{
    std::string text;
    for (const std::string& problem : problems)
        text.append(problem).append("\r\n");
    writeBytes(folder.path(problemsFile), text);
}

void forgetReplaced(const AppFolder& folder) noexcept
{
    try {
        fs::remove_all(folder.path(replacedFolder));
        UpdateState(folder).forgetAdded();
    } catch (const std::exception&) {
        return; // a name that is taken by something else is nobody's replaced file
    }
}

void beginUpdate(const AppFolder& folder) noexcept
{
    try {
        if (!folder.folderExists(updatesFolder) && !UpdateState(folder).isOnTrial())
            forgetReplaced(folder);
    } catch (const std::exception&) {
        return; // then more is kept than is needed
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
