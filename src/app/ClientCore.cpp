#include "app/ClientCore.h"

#include "base/Text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

QUrl reportUrl(QUrl makerHost)
{
    makerHost.setPath(u"/quorbeta/ErrorReports.php"_s);
    return makerHost;
}

} // namespace

ClientCore::ClientCore(const Setup& setup, MessageBoxes& boxWindows, LockableInterface& interface, HelpOpener showHelp)
    : folder(setup.folder),
      updateTargets(folder, setup.program, platformSystemFolder()),
      reportPage{.url = reportUrl(setup.makerHost)},
      store(folder, services(std::move(showHelp)), setup.bounds),
      boxes(boxWindows, setup.bounds),
      reporter(store, boxes, codePage, setup.version, setup.bounds),
      pictures(folder,
               [this](const std::string& name) {
                   reporter.ReportMsg(MessageKind::Error,
                                      u"The picture '%1' is missing or damaged."_s.arg(codePage.toText(name)));
               }),
      replies(reporter, interface),
      link(wsMain, wSupport, replies, setup.bounds),
      components(folder),
      client{link,     replies,  store,   folder,   inet,   reporter,    boxes,
             codePage, pictures, windows, quitting, status, preferences, setup.bounds},
      passwords(client, setup.keyring, setup.keyringLimit),
      pluginHost(client, plugins, components, problems, pluginAccess(), setup.version),
      updates{.inet = inet,
              .targets = updateTargets,
              .clientVersion = setup.version,
              .makerHost = setup.makerHost,
              .builtInKey = setup.updateKey,
              .isPackaged = setup.isPackaged,
              .isInUse = [this](const std::filesystem::path& file) { return isLoadedPlugin(file); }}
{}

/// A loaded library may be mapped from its file, and is the old one until the next start in any case.
bool ClientCore::isLoadedPlugin(const std::filesystem::path& file) const
{
    if (file.parent_path() != folder.path("\\Plugins"))
        return false;
    const std::string base = componentBase(file.filename().string());
    return std::any_of(plugins.plugins.begin(), plugins.plugins.end(),
                       [&base](const Plugin& plugin) { return equalsIgnoringCase(plugin.base, base); });
}

PluginAccess ClientCore::pluginAccess()
{
    return {
        .isSuper = [this] { return permissions.isSuper; },
        .isRestricted = [this](const std::string& plugin) { return permissions.isPluginRestricted(plugin); },
        .privileges =
            [this](const std::string& plugin) {
                const auto listOf = [](const PermissionRecord::Privileges& privileges) {
                    std::vector<std::string> texts;
                    texts.reserve(privileges.size());
                    for (const auto& [name, value] : privileges)
                        texts.emplace_back(name).append("=").append(value);
                    return ComponentValue::listOf(texts);
                };
                const PermissionRecord* found = permissions.find(plugin);
                const PermissionRecord record = found ? *found : PermissionRecord();
                return std::array<ComponentValue, 2>{listOf(record.privileges), listOf(record.further)};
            },
    };
}

HelperServices ClientCore::services(HelpOpener showHelp)
{
    return {
        .updateWarning =
            [this](const std::string& text) { reporter.reportHostText(MessageKind::ActionRequired, text); },
        .showHelp =
            [this, showHelp = std::move(showHelp)](const std::filesystem::path& file, const std::string& topic) {
                showHelp(file, codePage.toText(topic));
            },
        .postErrorReport =
            [this](const std::string& report, std::function<void(bool)> done) {
                inet.post(reportPage.url, QByteArray("Report=").append(QByteArray::fromStdString(report)),
                          reportPage.limit, [done = std::move(done)](const PageAnswer& answer) {
                              done(answer.isGood() && answer.body == "1");
                          });
            },
        .toCodePage = [this](std::u16string_view text) -> CodePageText {
            return {codePage.toBytes(text), codePage.firstForeign(text).isEmpty()};
        },
    };
}
