#pragma once

#include <QString>
#include <QStringList>

#include <optional>
#include <string_view>

/// What the program was asked for on its command line.
struct CommandLine
{
    enum class Wish { Run, ShowVersion, ShowHelp, Complain, ProbeComponent, RegisterComponent };

    Wish wish = Wish::Run;
    QString complaint = {}; ///< one line that says what is wrong, for `Complain`
    std::optional<QString> appFolder = {};
    std::optional<QString> connectProfile = {};
    std::optional<QString> makerHost = {};
    /// For `ProbeComponent`, which the program asks of another process of itself, and for `RegisterComponent`, which
    /// whoever installs a plugin asks.
    QString componentFile = {};
    QString componentClass = {}; ///< of `ProbeComponent`; may be empty

    bool operator==(const CommandLine&) const = default;
};

/// @param arguments  the program's name first
CommandLine parseCommandLine(const QStringList& arguments);

/// What `--help` prints.
std::string_view commandLineHelp();
