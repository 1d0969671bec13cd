#include "app/CommandLine.h"

#include <QCommandLineParser>

using namespace Qt::StringLiterals;

namespace {

using Wish = CommandLine::Wish;

CommandLine complain(const QString& what)
{
    return {.wish = Wish::Complain, .complaint = what + u" (see --help)"_s};
}

} // namespace

CommandLine parseCommandLine(const QStringList& arguments)
{
    const QCommandLineOption version(u"version"_s);
    const QCommandLineOption help(u"help"_s);
    const QCommandLineOption appFolder(u"app-folder"_s, {}, u"DIR"_s);
    const QCommandLineOption connectProfile(u"connect"_s, {}, u"PROFILE"_s);
    const QCommandLineOption makerHost(u"maker-host"_s, {}, u"URL"_s);
    const QCommandLineOption probe(u"probe-component"_s, {}, u"FILE"_s);
    const QCommandLineOption probedClass(u"component-class"_s, {}, u"NAME"_s);
    const QCommandLineOption registration(u"register-component"_s, {}, u"FILE"_s);
    QCommandLineParser parser;
    parser.setSingleDashWordOptionMode(QCommandLineParser::ParseAsLongOptions);
    parser.addOptions({version, help, appFolder, connectProfile, makerHost, probe, probedClass, registration});
    const bool isUnderstood = parser.parse(arguments);
    if (!isUnderstood)
        return complain(parser.errorText());
    if (parser.isSet(version) || parser.isSet(help))
        return {.wish = parser.isSet(version) ? Wish::ShowVersion : Wish::ShowHelp};
    if (!parser.positionalArguments().isEmpty())
        return complain(u"unknown argument '%1'"_s.arg(parser.positionalArguments().constFirst()));
    for (const QCommandLineOption& option : {appFolder, connectProfile, makerHost, probe, registration}) {
        if (parser.isSet(option) && parser.value(option).isEmpty())
            return complain(u"the option '--%1' needs a value"_s.arg(option.names().constFirst()));
    }
    const auto valueOf = [&parser](const QCommandLineOption& option) {
        return parser.isSet(option) ? std::optional(parser.value(option)) : std::nullopt;
    };
    return {.wish = parser.isSet(probe)          ? Wish::ProbeComponent
                    : parser.isSet(registration) ? Wish::RegisterComponent
                                                 : Wish::Run,
            .appFolder = valueOf(appFolder),
            .connectProfile = valueOf(connectProfile),
            .makerHost = valueOf(makerHost),
            .componentFile = parser.isSet(probe) ? parser.value(probe) : parser.value(registration),
            .componentClass = parser.value(probedClass)};
}

std::string_view commandLineHelp()
{
    return "Usage: qrvv3rc [options]\n"
           "The remote client of a game-server statistics tracker.\n"
           "\n"
           "  --app-folder DIR    keep all state in DIR instead of the usual folder\n"
           "  --connect PROFILE   choose a saved connection profile and connect\n"
           "  --register-component FILE\n"
           "                      register a plugin that lies in the folder's \"Plugins\", say what is wrong, and end\n"
           "  --maker-host URL    web host for updates, news and error reports\n"
           "  --version           print the version and end\n"
           "  --help              print this text and end\n";
}
