#include "app/CommandLine.h"

namespace {

struct Option
{
    std::string_view name;
    std::optional<std::string> CommandLine::*value;
};

constexpr Option options[] = {
    {"--app-folder", &CommandLine::appFolder},
    {"--connect", &CommandLine::connectProfile},
    {"--maker-host", &CommandLine::makerHost},
};

CommandLine complain(std::string text)
{
    CommandLine line;
    line.wish = CommandLine::Wish::Complain;
    line.complaint = std::move(text);
    return line;
}

const Option* optionNamed(std::string_view name)
{
    for (const Option& option : options) {
        if (option.name == name)
            return &option;
    }
    return nullptr;
}

} // namespace

CommandLine parseCommandLine(const std::vector<std::string>& arguments)
{
    CommandLine line;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& argument = arguments[index];
        const std::size_t equals = argument.find('=');
        const std::string name = argument.substr(0, equals);
        if (argument == "--version" || argument == "--help") {
            line.wish = argument == "--version" ? CommandLine::Wish::ShowVersion : CommandLine::Wish::ShowHelp;
            return line;
        }
        if (argument == "--probe-component" && index + 2 < arguments.size()) {
            line.wish = CommandLine::Wish::ProbeComponent;
            line.componentFile = arguments[++index];
            line.componentClass = arguments[++index];
            continue;
        }
        if (argument == "--register-component" && index + 1 < arguments.size()) {
            line.wish = CommandLine::Wish::RegisterComponent;
            line.componentFile = arguments[++index];
            continue;
        }
        const Option* option = optionNamed(name);
        if (!option)
            return complain("unknown argument '" + argument + "' (see --help)");
        if (equals == std::string::npos && index + 1 == arguments.size())
            return complain("the option '" + name + "' needs a value (see --help)");
        const std::string value = equals == std::string::npos ? arguments[++index] : argument.substr(equals + 1);
        if (value.empty())
            return complain("the option '" + name + "' needs a value (see --help)");
        line.*option->value = value;
    }
    return line;
}

std::string_view commandLineHelp()
{
    return "Usage: qrvv3rc [options]\n"
           "The remote client of a game-server statistics tracker.\n"
           "\n"
           "  --app-folder DIR    keep all state in DIR instead of the usual folder\n"
           "  --connect PROFILE   choose a saved connection profile and connect\n"
           "  --maker-host URL    web host for updates, news and error reports\n"
           "  --version           print the version and end\n"
           "  --help              print this text and end\n";
}
