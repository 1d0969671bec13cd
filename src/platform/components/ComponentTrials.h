#pragma once

#include "platform/components/Component.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;
class IniText;

/// Tries components in a process of their own before they come into this one, and remembers in the application folder
/// how that came out, for as long as their file does not change. Held by one owner: what is to follow a trial is called
/// only while that one lives.
class ComponentTrials : public std::enable_shared_from_this<ComponentTrials>
{
public:
    using Verdict = Components::Verdict;
    using Then = std::function<void(const Verdict&)>;

    /// @param folder  outlives this
    explicit ComponentTrials(const AppFolder& folder) : m_folder(folder) {}

    void setProbe(Components::Probe probe);

    /// The notes: one section a class. Empty when there are none yet.
    IniText notes() const;
    void writeNotes(const IniText& notes) const;

    /// What is known of a class in the present state of its file; nothing before it has been tried. Without a probe,
    /// and when the client has created it in this run, it has passed.
    std::optional<Verdict> verdict(const std::string& progId, const std::filesystem::path& file) const;
    /// @param shownName  what errors call the file
    /// @throws RuntimeError CannotCreateObject for a class that has not passed
    void demandPassed(const std::string& progId, const std::string& shownName, const std::filesystem::path& file) const;
    /// Tries a class when nothing is known of it, and remembers how that came out.
    void tryClass(const std::string& progId, const std::string& shownName, const std::filesystem::path& file,
                  const Components::Done& done);
    /// Runs a trial, unless the same one is under way; what comes of it is not remembered.
    /// @param progId  empty to try the file's registration
    void run(const std::filesystem::path& file, const std::string& progId, Then then);
    /// Notes that the client itself has created the class.
    void createdWell(const std::string& progId);
    /// Forgets what was found out about the class in this run.
    void forget(const std::string& progId);

private:
    struct Outcome
    {
        std::string state; ///< of the file
        Verdict verdict;
    };

    void conclude(const std::string& trial, const Verdict& verdict);
    void keep(const std::string& progId, const std::string& state, const Verdict& verdict);

    const AppFolder& m_folder;
    Components::Probe m_probe;
    std::set<std::string> m_createdWell;             ///< classes, in this run
    std::map<std::string, Outcome> m_outcomes;       ///< of this run, by class
    std::map<std::string, std::vector<Then>> m_runs; ///< who waits for the trials under way
};

/// What a verdict on a file says to people.
ComponentFault faultOf(const std::string& shownName, const Components::Verdict& verdict);
