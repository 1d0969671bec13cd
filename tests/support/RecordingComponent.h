#pragma once

#include "plugins/PluginTable.h"
#include "support/Desk.h"

#include <QStringList>

/// A plugin's component that writes down what it is called for.
class RecordingComponent : public ComponentObject
{
public:
    QStringList calls;

    ComponentValue call(std::string_view member, std::vector<ComponentValue> arguments) override
    {
        QString call = QString::fromLatin1(member.data(), static_cast<qsizetype>(member.size()));
        if (member == "LoadInterface")
            call += QStringLiteral(" for profile %1").arg(arguments.at(0).toInt32());
        calls += call;
        return {};
    }
};

/// Gives the client a plugin with two sections and an entry of the profile menu of its own.
inline std::shared_ptr<RecordingComponent> addPlugin(Desk& desk)
{
    auto component = std::make_shared<RecordingComponent>();
    Plugin plugin;
    plugin.name = "Stats";
    plugin.component = component;
    plugin.enabled = true;
    plugin.file = "qrvrcStats.dll";
    plugin.helpFile = "stats.html";
    plugin.serverMenu = true;
    plugin.serverMenuItems = {"Ranks", "Weapons"};
    plugin.profileMenu = true;
    plugin.profileMenuItems = {"Show Ranks"};
    desk.core().plugins.plugins.push_back(plugin);
    Q_EMIT desk.core().pluginHost.tableChanged();
    return component;
}
