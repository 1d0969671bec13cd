#pragma once

#include "practice/links/Fault.h"
#include "practice/links/RecoveryTool.h"
#include "practice/web/PageFault.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>
#include <variant>

namespace practice {

/// A fault for every request of a name; "*" stands for all requests.
struct Misbehaviour
{
    QByteArray request;
    Fault fault;
};

/// A plugin of the tracker and the version that it demands of its counterpart.
struct PluginChoice
{
    QByteArray name;
    std::optional<QByteArray> version; ///< nothing takes the plugin away; empty for a plugin that tells no version
};

/// A file of this machine that the web side offers as an update.
struct UpdateChoice
{
    QString file;
    QByteArray folder;  ///< target folder on the client's side
    QByteArray name;    ///< in the list
    QByteArray version; ///< four parts
    bool isPlugin = false;
};

/// A fault for every request of a web page; "*" stands for all pages.
struct PageMisbehaviour
{
    QByteArray page;
    PageFault fault;
};

/// How the host goes away and comes back, in seconds; about.
struct OutageChoice
{
    std::chrono::seconds every;
    std::chrono::seconds lasting;
};

/// What the command line asks for.
struct Options
{
    quint16 port = 0;            ///< 0 for any free one
    quint16 webPort = 0;         ///< 0 for any free one
    quint16 supportPort = 0;     ///< 0 for any free one
    quint16 recoveryPort = 0;    ///< 0 for any free one
    QByteArray world = "lively"; ///< "lively", "small" or a number of profiles
    quint32 seed = 1;
    int bigLog = 0;     ///< MiB of a chat log that every profile has; 0 for none
    bool still = false; ///< the world does not move on
    bool verbose = false;
    QList<Misbehaviour> misbehaviours;
    QList<PluginChoice> plugins;
    RecoveryTool::Manner recoveryManner = RecoveryTool::Manner::Proper;
    QList<UpdateChoice> updates;
    QList<PageMisbehaviour> pageMisbehaviours;
    std::optional<OutageChoice> outage = {};
    QString newsFile;                   ///< empty for the usual news
    std::optional<quint32> serial = {}; ///< of the signed manifest; none for no manifest
};

/// A text for standard output after which the program ends well.
struct Notice
{
    QString text;
};

/// One line for standard error; the program ends with exit code 2.
struct UsageError
{
    QString text;
};

std::variant<Options, Notice, UsageError> readOptions(const QStringList& arguments);

} // namespace practice
