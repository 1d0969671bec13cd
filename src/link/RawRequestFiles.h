#pragma once

#include "base/RuntimeError.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <map>
#include <optional>
#include <string>

class AppFolder;
class clsMFD;

/// The files of the folder "\RCData" and what may be sent of them. A file may be sent when it is not empty and did not
/// change from one look to the next, so that nobody is still writing it. One that cannot be read or removed is set
/// aside until it has changed.
class RawRequestFiles
{
public:
    /// What is looked at at once; the others have their turn at the next looks.
    static constexpr std::size_t maxPerLook = 1000;

    /// Both outlive the files.
    RawRequestFiles(const AppFolder& folder, const clsMFD& store);

    /// Looks what is there. What the look before has found and nobody has taken is forgotten.
    void look();
    /// The text of the next file that may be sent, in the order of the names. The file is gone then.
    std::optional<std::string> takeNext();
    /// The fault of the files that were set aside for the first time since the last call: the first one's, with the
    /// number of the others.
    std::optional<RuntimeError> takeFault();

private:
    struct State
    {
        std::uintmax_t size = 0;
        std::filesystem::file_time_type written;
        std::filesystem::perms rights = std::filesystem::perms::none;

        bool operator==(const State&) const = default;
    };
    struct Known
    {
        State state;
        bool isSetAside = false; ///< in this state
        bool isTold = false;
    };

    void lookAt(const std::string& name);
    std::optional<std::string> take(const std::string& name);
    void setAside(Known& known, const RuntimeError& fault);
    std::filesystem::path pathOf(const std::string& name) const;
    State stateOf(const std::string& name) const;

    const AppFolder& m_folder;
    const clsMFD& m_store;
    std::map<std::string, Known> m_known; ///< by name; those that have been looked at and are still there
    std::string m_lookedUpTo;             ///< the last name that the look before came to
    std::deque<std::string> m_ready;
    std::optional<RuntimeError> m_fault;
    std::size_t m_furtherFaults = 0;
};
