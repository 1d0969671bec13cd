#pragma once

#include "platform/components/Component.h"

#include <filesystem>
#include <optional>
#include <set>
#include <string>
#include <string_view>

class AppFolder;
class IniText;

/// Tries components in a process of their own before they come into this one, and remembers in the application folder
/// how that came out, for as long as their file does not change.
class ComponentTrials
{
public:
    /// @param folder  outlives this
    explicit ComponentTrials(const AppFolder& folder) : m_folder(folder) {}

    Components::Probe probe; ///< without one nothing is tried

    /// The notes: one section a class. Empty when there are none yet.
    IniText notes() const;
    void writeNotes(const IniText& notes) const;

    /// Tries a class that has not yet been created well in the present state of its file.
    /// @param shownName  what errors call the file
    /// @throws RuntimeError CannotCreateObject when it does not come to its end, now or at an earlier try
    void tryFirst(const std::string& progId, const std::string& shownName, const std::filesystem::path& file);
    /// Notes that the client itself has created the class.
    void createdWell(const std::string& progId, const std::filesystem::path& file);
    /// Forgets what was found out about the class in this run.
    void forget(const std::string& progId);

    /// @param progId  empty to try the file's registration
    /// @return what is wrong with the file; nothing when the try came to its end, or there is no probe
    /// @throws RuntimeError CannotCreateObject when it cannot be tried now
    std::optional<std::string> runProbe(const std::string& shownName, const std::filesystem::path& file,
                                        const std::string& progId);

private:
    void remember(const std::string& progId, const std::string& state, std::string_view outcome) const noexcept;

    const AppFolder& m_folder;
    std::set<std::string> m_createdWell; ///< classes, in this run
    std::set<std::string> m_underProbe;  ///< files, by their shown names
};
