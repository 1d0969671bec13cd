#include "practice/Options.h"

#include <QCommandLineParser>
#include <QRegularExpression>

namespace practice {

using namespace Qt::StringLiterals;

namespace {

constexpr int maxProfiles = 100000;
constexpr quint32 maxLogMebibytes = 256;

/// Thrown inside readOptions() only.
struct BadUsage
{
    QString text;
};

quint32 numberOf(const QCommandLineParser& parser, const QString& option, quint32 limit)
{
    bool isNumber = false;
    const quint32 number = parser.value(option).toUInt(&isNumber);
    if (!isNumber || number > limit)
        throw BadUsage{
            u"--%1 takes a number from 0 to %2, not \"%3\""_s.arg(option).arg(limit).arg(parser.value(option))};
    return number;
}

QByteArray worldOf(const QString& text)
{
    bool isNumber = false;
    const int profiles = text.toInt(&isNumber);
    if (text != "lively"_L1 && text != "small"_L1 && (!isNumber || profiles < 0 || profiles > maxProfiles))
        throw BadUsage{
            u"--world takes lively, small or a number of profiles up to %1, not \"%2\""_s.arg(maxProfiles).arg(text)};
    return text.toLatin1();
}

RecoveryTool::Manner mannerOf(const QString& text)
{
    const std::optional<RecoveryTool::Manner> manner = RecoveryTool::parse(text.toLatin1());
    if (!manner)
        throw BadUsage{u"--recovery takes %1, not \"%2\""_s.arg(QString::fromLatin1(RecoveryTool::names()), text)};
    return *manner;
}

Misbehaviour misbehaviourOf(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const qsizetype equals = bytes.indexOf('=');
    const std::optional<Fault> fault = equals > 0 ? Fault::parse(bytes.mid(equals + 1)) : std::nullopt;
    if (!fault)
        throw BadUsage{u"--misbehave takes REQUEST=FAULT, not \"%1\"; faults are %2"_s.arg(
            text, QString::fromLatin1(Fault::names()))};
    return {bytes.left(equals), *fault};
}

OutageChoice outageOf(const QString& text)
{
    static const QRegularExpression form(QRegularExpression::anchoredPattern(u"([0-9]{1,5}),([0-9]{1,5})"_s));
    const QRegularExpressionMatch match = form.match(text);
    const OutageChoice choice{.every = std::chrono::seconds(match.captured(1).toInt()),
                              .lasting = std::chrono::seconds(match.captured(2).toInt())};
    if (choice.every.count() == 0 || choice.lasting.count() == 0)
        throw BadUsage{u"--outage takes EVERY,FOR in seconds from 1 to 99999, not \"%1\""_s.arg(text)};
    return choice;
}

/// Names and versions travel between separators that they must not hold.
PluginChoice pluginOf(const QString& text)
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(u"([A-Za-z][A-Za-z0-9 ]*)=([A-Za-z0-9.]*)"_s));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw BadUsage{u"--plugin takes NAME=VERSION in letters, digits, blanks and dots, not \"%1\""_s.arg(text)};
    PluginChoice choice{.name = match.captured(1).toLatin1(), .version = match.captured(2).toLatin1()};
    if (choice.version == "none")
        choice.version.reset();
    return choice;
}

/// NAME=VERSION=FILE, the name perhaps with a folder before it ("\\Data\\x.bin").
UpdateChoice updateOf(const QString& text, bool isPlugin)
{
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(uR"((\\(?:[^=|\\]+\\)*)?([^=|\\]+)=([0-9.]*)=(.+))"_s));
    const QRegularExpressionMatch match = form.match(text);
    if (!match.hasMatch())
        throw BadUsage{
            u"--%1 takes NAME=VERSION=FILE, not \"%2\""_s.arg(isPlugin ? u"offer-plugin"_s : u"offer"_s, text)};
    return {.file = match.captured(4),
            .folder = match.captured(1).isEmpty() && !isPlugin ? "\\"_ba : match.captured(1).toLatin1(),
            .name = match.captured(2).toLatin1(),
            .version = match.captured(3).toLatin1(),
            .isPlugin = isPlugin};
}

PageMisbehaviour pageMisbehaviourOf(const QString& text)
{
    const QByteArray bytes = text.toUtf8();
    const qsizetype equals = bytes.lastIndexOf('=');
    const std::optional<PageFault> fault = equals > 0 ? PageFault::parse(bytes.mid(equals + 1)) : std::nullopt;
    if (!fault)
        throw BadUsage{u"--misbehave-page takes PAGE=FAULT, not \"%1\"; faults are %2"_s.arg(
            text, QString::fromLatin1(PageFault::names()))};
    return {bytes.left(equals), *fault};
}

} // namespace

std::variant<Options, Notice, UsageError> readOptions(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(u"A tracker to practise on: plays the host's side on 127.0.0.1.\n"
                                     "Accounts: admin, moderator, guest; the password is the name.\n"
                                     "The web pages hold statistics scripts with the server ids 7, 101, 102 and 103, "
                                     "in any folder; in the folders slow, silent, failing, empty and none they "
                                     "misbehave."_s);
    parser.addOptions({
        {u"port"_s, u"Port of the host link; 0 for any free one."_s, u"N"_s, u"0"_s},
        {u"web-port"_s, u"Port of the web pages; 0 for any free one."_s, u"N"_s, u"0"_s},
        {u"support-port"_s, u"Port of the support link; 0 for any free one."_s, u"N"_s, u"0"_s},
        {u"recovery-port"_s, u"Port of the recovery tool; 0 for any free one."_s, u"N"_s, u"0"_s},
        {u"recovery"_s, u"How the recovery tool answers: %1."_s.arg(QString::fromLatin1(RecoveryTool::names())),
         u"MANNER"_s, u"proper"_s},
        {u"world"_s, u"lively, small, or a number of profiles."_s, u"WORLD"_s, u"lively"_s},
        {u"seed"_s, u"Seed of everything that happens by chance."_s, u"N"_s, u"1"_s},
        {u"big-log"_s, u"Every profile has a chat log of N MiB, dated today."_s, u"N"_s, u"0"_s},
        {u"still"_s, u"The world does not move on."_s},
        {u"misbehave"_s,
         u"Answers every REQUEST (* for all; Announce and Message on the support link) with FAULT: %1. May be "
         "repeated."_s.arg(QString::fromLatin1(Fault::names())),
         u"REQUEST=FAULT"_s},
        {u"outage"_s,
         u"The host is there for about EVERY seconds, away for about FOR, and so on: its links end and its ports are "
         "closed meanwhile."_s,
         u"EVERY,FOR"_s},
        {u"plugin"_s,
         u"The tracker's plugin demands VERSION, a file version without dots; \"none\" takes the plugin away, nothing "
         "leaves the version empty. May be repeated."_s,
         u"NAME=VERSION"_s},
        {u"offer"_s,
         u"The web pages offer FILE as an update of the client's file NAME, such as qrvv3rc.exe. May be repeated."_s,
         u"NAME=VERSION=FILE"_s},
        {u"offer-plugin"_s, u"The same for a file of a plugin."_s, u"NAME=VERSION=FILE"_s},
        {u"sign"_s, u"Signs what is offered, as release N, and tells the key on standard output."_s, u"N"_s},
        {u"news"_s, u"The news are the text of FILE."_s, u"FILE"_s},
        {u"misbehave-page"_s,
         u"Answers every request of the web page PAGE (* for all) with FAULT: %1. May be repeated."_s.arg(
             QString::fromLatin1(PageFault::names())),
         u"PAGE=FAULT"_s},
        {u"verbose"_s, u"Names every request on standard error."_s},
    });
    const QCommandLineOption version({u"version"_s}, u"Shows the version and ends."_s);
    const QCommandLineOption help({u"help"_s}, u"Shows this and ends."_s);
    parser.addOption(version);
    parser.addOption(help);

    if (!parser.parse(arguments))
        return UsageError{parser.errorText()};
    if (parser.isSet(help))
        return Notice{parser.helpText()};
    if (parser.isSet(version))
        return Notice{u"qrvrc-practice "_s + QString::fromLatin1(QRVRC_PRACTICE_VERSION) + u'\n'};
    if (!parser.positionalArguments().isEmpty())
        return UsageError{u"unexpected argument \"%1\""_s.arg(parser.positionalArguments().constFirst())};
    try {
        Options options;
        options.port = static_cast<quint16>(numberOf(parser, u"port"_s, 65535));
        options.webPort = static_cast<quint16>(numberOf(parser, u"web-port"_s, 65535));
        options.supportPort = static_cast<quint16>(numberOf(parser, u"support-port"_s, 65535));
        options.recoveryPort = static_cast<quint16>(numberOf(parser, u"recovery-port"_s, 65535));
        options.recoveryManner = mannerOf(parser.value(u"recovery"_s));
        options.world = worldOf(parser.value(u"world"_s));
        options.seed = numberOf(parser, u"seed"_s, 0xFFFFFFFF);
        options.bigLog = static_cast<int>(numberOf(parser, u"big-log"_s, maxLogMebibytes));
        options.still = parser.isSet(u"still"_s);
        options.verbose = parser.isSet(u"verbose"_s);
        for (const QString& text : parser.values(u"misbehave"_s))
            options.misbehaviours += misbehaviourOf(text);
        for (const QString& text : parser.values(u"plugin"_s))
            options.plugins += pluginOf(text);
        for (const QString& text : parser.values(u"offer"_s))
            options.updates += updateOf(text, false);
        for (const QString& text : parser.values(u"offer-plugin"_s))
            options.updates += updateOf(text, true);
        for (const QString& text : parser.values(u"misbehave-page"_s))
            options.pageMisbehaviours += pageMisbehaviourOf(text);
        if (parser.isSet(u"outage"_s))
            options.outage = outageOf(parser.value(u"outage"_s));
        if (parser.isSet(u"sign"_s))
            options.serial = numberOf(parser, u"sign"_s, 0xFFFFFFFF);
        options.newsFile = parser.value(u"news"_s);
        return options;
    } catch (const BadUsage& bad) {
        return UsageError{bad.text};
    }
}

} // namespace practice
