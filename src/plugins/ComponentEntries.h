#pragma once

#include "platform/system/SystemName.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

/// What the component check knows without looking at a file. An entry is the name of a component file: bare for one in
/// the program folder, with "\Plugins\" in front for a plugin.

/// Files of components that the user left unregistered. Written by the component check, read by the plugin host, which
/// does not load them.
struct ProblemFiles
{
    std::vector<std::string> names;                  ///< with their ".dll", without a folder
    std::map<std::string, std::string> reasons = {}; ///< why they were listed, by their names in small letters

    /// Whether `name` is among them, in whatever letter case.
    bool contains(std::string_view name) const;
    /// Why the file is among them; empty when that is not known.
    std::string reasonFor(std::string_view name) const;
};

/// The component files among the plain files of a folder, in the order given. Of names that differ in the case of
/// letters only, the first counts: they stand for one class.
std::vector<std::string> componentFiles(const std::vector<std::string>& files);

/// A component file's name with every ".dll" taken out, whatever its letter case.
std::string componentBase(std::string_view fileName);

/// The class of a plugin: its file's base, trimmed, and ".clsPlugin".
std::string pluginClass(std::string_view base);

/// The component files of both folders: those of the program folder first.
std::vector<std::string> componentEntries(const std::vector<std::string>& programFiles,
                                          const std::vector<std::string>& pluginFiles);

/// What an entry is tested by.
struct ComponentClass
{
    std::string type;   ///< as problem lines call it; empty when the file is of no known type
    std::string progId; ///< the class to create; empty when there is nothing to create

    bool operator==(const ComponentClass&) const = default;
};

ComponentClass componentClass(std::string_view entry);

/// The entry's file name without its folder. It comes from a disk and may be anything that a disk can hold.
std::string_view componentFile(std::string_view entry);

/// The file's name in the application folder, which begins with a backslash.
/// @throws RuntimeError PermissionDenied when its name is no plain file name and thus must not be turned into a path
std::string componentLayoutName(std::string_view entry);

/// A line of the list of what failed, and why it stands there.
struct ProblemLine
{
    std::string line;
    std::string why; ///< empty when that is not known

    bool operator==(const ProblemLine&) const = default;
};

/// The line by which an entry that failed is listed.
std::string problemLine(std::string_view entry);

/// The entry that a problem line is about.
std::string_view entryOfProblem(std::string_view line);

/// The text that is exported: a head and the problem lines, the reason indented below each; each line but the last ends
/// in CR LF.
/// @param date  "yyyy-mm-dd"
/// @param time  "hh:mm:ss"
std::string problemReport(std::string_view date, std::string_view time, const SystemName& system,
                          const std::vector<ProblemLine>& problemLines);
