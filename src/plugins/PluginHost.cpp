#include "plugins/PluginHost.h"

#include "base/RuntimeError.h"
#include "link/Client.h"
#include "link/ReplyDispatcher.h"
#include "link/StatusReply.h"
#include "plugins/PluginTable.h"
#include "store/clsMFD.h"

PluginHost::PluginHost(Client& client, PluginTable& table) : m_client(client), m_table(table)
{
    m_client.replies.on("GetStatus", this, [this](std::string_view body) { showStatus(body); });
    m_client.replies.onPluginMessage(this, [](const std::string& component, const std::string&) {
        throw RuntimeError(ErrorNumber::CannotCreateObject, component + ".clsPlugin");
    });
}

void PluginHost::LoadPlugins()
{
    m_table.plugins.clear();
    m_table.updateNeeded.clear();
    m_table.disabled.clear();
}

void PluginHost::forgetTracker()
{
    m_table.trackerNames.clear();
    LoadPlugins();
}

void PluginHost::showStatus(std::string_view body)
{
    if (m_table.trackerNames.empty())
        m_table.trackerVersions.clear(); // versions of an earlier connection would stand at the wrong positions
    for (const std::string_view entry : splitStatusReply(body)) {
        const TrackerPlugin plugin = decodeStatusEntry(entry);
        m_table.trackerNames.push_back(plugin.name);
        if (plugin.version)
            m_table.trackerVersions.push_back(*plugin.version);
    }
    LoadPlugins();
    if (!m_table.disabled.empty()) {
        m_client.store.UpdateWarning(m_table.updateNeeded + "\r\n\r\nThe following files have been disabled: \r\n" +
                                     m_table.disabled);
    }
}
