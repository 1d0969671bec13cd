#pragma once

#include "updates/UpdateCheck.h"
#include "updates/UpdateKey.h"
#include "updates/UpdateList.h"

#include <QString>
#include <QStringView>
#include <QUrl>

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

class Inet;
class UpdateTargets;

/// What the windows and the background checks of updates share. Owned by the core, which outlives them.
struct UpdateServices
{
    Inet& inet;
    const UpdateTargets& targets;
    std::string clientVersion; ///< of the running program, four parts
    QUrl makerHost;            ///< behind the built-in locations and the news
    /// The update location, with which every address begins. Written by the options; empty until they have been stored
    /// once.
    QString location = {};
    /// Who may say what belongs at the update location; nothing to take what comes. Written by the options.
    std::optional<UpdateKey> key = {};
    /// The key that counts as long as none is set; as minisign writes it, empty for none.
    std::string builtInKey = {};
    /// Whether the system's package manager keeps the client's own files current; plugins are the user's in any case.
    bool isPackaged = false;
    /// Held by every download under way, so that who begins one can tell whether it is alone.
    std::shared_ptr<const int> downloads = std::make_shared<const int>();
    /// Puts back what the last update replaced, for which this program ends without asking. @return whether it does
    std::function<bool()> undoUpdate = {};
    /// Whether a file is in use, so that it cannot be replaced now.
    std::function<bool(const std::filesystem::path& file)> isInUse = {};

    std::chrono::milliseconds listLimit = std::chrono::seconds(30);
    std::chrono::milliseconds startLimit = std::chrono::seconds(3); ///< the same while the program starts
    std::chrono::milliseconds silenceLimit = std::chrono::seconds(30);
};

/// What a user is told of the client's own files where the program came as a package.
inline constexpr QStringView packagedNote =
    u"This program came as a package of the system, whose package manager keeps it current. It looks for updates of "
    "plugins only.";

/// One kind of check: which list it reads, and how it judges.
struct CheckOrder
{
    std::string_view list;
    ListKind kind;
    CheckRule rule;
    std::string_view helpVersionIn;
    bool stopsAtFirst; ///< for a check that only asks whether there is anything
};

extern const CheckOrder clientCheck;
extern const CheckOrder clientCheckByClock;
extern const CheckOrder pluginCheck;
extern const CheckOrder pluginCheckByClock;

/// The address of a list or file at an update location.
/// @return an empty one when the location makes no web address
QUrl addressAt(const QString& location, ListKind kind, std::string_view name);
