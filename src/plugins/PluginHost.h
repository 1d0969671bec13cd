#pragma once

#include <QObject>

#include <string_view>

struct Client;
struct PluginTable;

/// Builds the plugin table, and tells it what the tracker says of its own plugins.
class PluginHost : public QObject
{
    Q_OBJECT

public:
    /// Registers for "GetStatus" and for messages to plugins. Both arguments outlive the host.
    PluginHost(Client& client, PluginTable& table);

    /// Builds the table anew.
    void LoadPlugins();
    /// Forgets the tracker's plugins and builds the table anew, after a disconnect.
    void forgetTracker();

private:
    void showStatus(std::string_view body);

    Client& m_client;
    PluginTable& m_table;
};
