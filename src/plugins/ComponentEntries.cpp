#include "plugins/ComponentEntries.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "store/AppFolder.h"

#include <algorithm>
#include <array>
#include <set>

namespace {

constexpr std::string_view ending = ".dll";
constexpr std::string_view pluginFolder = "\\Plugins\\";
constexpr std::string_view entryMark = ": "; // what follows its first occurrence in a problem line is the entry

struct ProgramComponent
{
    std::string_view file;
    std::string_view type;
    std::string_view progId;
};

// All other files of the program folder are libraries that only their users can judge.
constexpr std::array programComponents{
    ProgramComponent{"qrvrcGMF.dll", "function", "qrvrcGMF.clsMemory"},
    ProgramComponent{"qrvrcMFM.dll", "Function", "qrvrcMFM.clsMFD"},
};

bool isComponentFile(std::string_view name)
{
    return name.size() >= ending.size() && equalsIgnoringCase(name.substr(name.size() - ending.size()), ending);
}

} // namespace

bool ProblemFiles::contains(std::string_view name) const
{
    return std::any_of(names.begin(), names.end(),
                       [name](const std::string& known) { return equalsIgnoringCase(known, name); });
}

std::string ProblemFiles::reasonFor(std::string_view name) const
{
    const auto found = reasons.find(lowerAscii(name));
    return found == reasons.end() ? std::string() : found->second;
}

std::vector<std::string> componentFiles(const std::vector<std::string>& files)
{
    std::vector<std::string> components;
    std::set<std::string> known;
    for (const std::string& file : files) {
        if (isComponentFile(file) && known.insert(lowerAscii(file)).second)
            components.push_back(file);
    }
    return components;
}

std::string componentBase(std::string_view fileName)
{
    std::string base;
    for (std::size_t at = 0; at < fileName.size();) {
        if (equalsIgnoringCase(fileName.substr(at, ending.size()), ending))
            at += ending.size();
        else
            base += fileName[at++];
    }
    return base;
}

std::string pluginClass(std::string_view base)
{
    return std::string(trimmed(base)) + ".clsPlugin";
}

std::vector<std::string> componentEntries(const std::vector<std::string>& programFiles,
                                          const std::vector<std::string>& pluginFiles)
{
    std::vector<std::string> entries = componentFiles(programFiles);
    for (const std::string& file : componentFiles(pluginFiles))
        entries.push_back(std::string(pluginFolder) + file);
    return entries;
}

ComponentClass componentClass(std::string_view entry)
{
    const std::string_view file = componentFile(entry);
    if (file.size() < entry.size())
        return {.type = "Plugin", .progId = pluginClass(componentBase(file))};
    for (const ProgramComponent& component : programComponents) {
        if (equalsIgnoringCase(file, component.file))
            return {.type = std::string(component.type), .progId = std::string(component.progId)};
    }
    return {};
}

std::string_view componentFile(std::string_view entry)
{
    return entry.starts_with(pluginFolder) ? entry.substr(pluginFolder.size()) : entry;
}

std::string componentLayoutName(std::string_view entry)
{
    if (!isPlainFileName(componentFile(entry)))
        throw RuntimeError(ErrorNumber::PermissionDenied, entry);
    return entry.starts_with('\\') ? std::string(entry) : '\\' + std::string(entry);
}

std::string problemLine(std::string_view entry)
{
    const std::string type = componentClass(entry).type;
    const std::string kind = type.empty() ? "Unknown File [CAUTION!]" : "Unregistered " + type + " File";
    return kind + std::string(entryMark) + std::string(entry);
}

std::string_view entryOfProblem(std::string_view line)
{
    const std::size_t mark = line.find(entryMark);
    return mark == std::string_view::npos ? std::string_view() : line.substr(mark + entryMark.size());
}

std::string problemReport(std::string_view date, std::string_view time, const SystemName& system,
                          const std::vector<ProblemLine>& problemLines)
{
    std::vector<std::string_view> version = split(system.version, '.');
    version.resize(std::max<std::size_t>(version.size(), 3));
    std::string release(version[0]);
    if (!version[1].empty())
        release.append(".").append(version[1]);

    std::vector<std::string> lines{
        "File: Problematic ActiveX Files",
        "Date: " + std::string(date),
        "Time: " + std::string(time),
        "Operating System: " + std::string(shortSystemName(system.name)) + ", " + release + ", " +
            std::string(version[2]) + ", " + std::to_string(system.servicePackMajor) + '.' +
            std::to_string(system.servicePackMinor),
        "",
    };
    for (const ProblemLine& problem : problemLines) {
        lines.push_back(problem.line);
        if (!problem.why.empty())
            lines.push_back("    " + problem.why);
    }
    return join(lines, "\r\n");
}
