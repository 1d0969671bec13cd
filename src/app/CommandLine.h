#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What the program was asked for on its command line.
struct CommandLine
{
    enum class Wish { Run, ShowVersion, ShowHelp, Complain, ProbeComponent, RegisterComponent };

    Wish wish = Wish::Run;
    std::string complaint; ///< one line that says what is wrong, for `Complain`
    std::optional<std::string> appFolder;
    std::optional<std::string> connectProfile;
    std::optional<std::string> makerHost;
    /// For `ProbeComponent`, which the program asks of another process of itself, and for `RegisterComponent`, which
    /// whoever installs a plugin asks.
    std::string componentFile;
    std::string componentClass; ///< may be empty

    bool operator==(const CommandLine&) const = default;
};

/// @param arguments  without the program's name, in the encoding of the system
CommandLine parseCommandLine(const std::vector<std::string>& arguments);

/// What `--help` prints.
std::string_view commandLineHelp();
