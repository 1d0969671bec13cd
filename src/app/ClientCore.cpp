#include "app/ClientCore.h"

#include <chrono>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr auto reportLimit = 10s;

} // namespace

ClientCore::ClientCore(const Setup& setup, MessageBoxes& boxes, LockableInterface& interface, HelpOpener showHelp)
    : folder(setup.folder),
      store(folder, services(setup.makerHost, std::move(showHelp))),
      reporter(store, boxes, codePage, setup.version),
      pictures(folder,
               [this](const std::string& name) {
                   reporter.ReportMsg(MessageKind::Error,
                                      u"The picture '%1' is missing or damaged."_s.arg(codePage.toText(name)));
               }),
      replies(reporter, interface),
      link(wsMain, wSupport, session, replies),
      components(folder),
      client{link, replies, session, store, folder, inet, reporter, boxes, codePage, pictures, windows, helpSection},
      pluginHost(client, plugins, components, problems, pluginAccess(), setup.version)
{}

PluginAccess ClientCore::pluginAccess()
{
    return {
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

HelperServices ClientCore::services(const QUrl& makerHost, HelpOpener showHelp)
{
    return {
        .updateWarning =
            [this](const std::string& text) { reporter.reportHostText(MessageKind::ActionRequired, text); },
        .showHelp =
            [this, showHelp = std::move(showHelp)](const std::filesystem::path& file, const std::string& topic) {
                showHelp(file, codePage.toText(topic));
            },
        .postErrorReport =
            [this, makerHost](const std::string& report, std::function<void(bool)> done) {
                QUrl page = makerHost;
                page.setPath(u"/quorbeta/ErrorReports.php"_s);
                inet.post(page, QByteArray("Report=").append(QByteArray::fromStdString(report)), reportLimit,
                          [done = std::move(done)](const PageAnswer& answer) {
                              done(answer.isGood() && answer.body == "1");
                          });
            },
    };
}
