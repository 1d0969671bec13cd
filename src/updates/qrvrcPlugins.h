#pragma once

#include "ui/WorkingWindow.h"

#include <string>
#include <vector>

class QGroupBox;
class QLabel;
class QListWidget;
class UpdateAgent;
struct Client;
struct PluginTable;
struct UpdateServices;

/// The loaded plugins with what they say of themselves, and what keeps their files current.
class qrvrcPlugins : public WorkingWindow
{
    Q_OBJECT

public:
    /// All outlive the window.
    qrvrcPlugins(Client& client, const PluginTable& plugins, const UpdateServices& services, UpdateAgent& agent,
                 QWidget* parent);

    /// Whether there is something to download. Events run meanwhile, for a few seconds at most.
    bool PluginsUpdateAvailable();
    /// The plugin half of the check by the clock.
    void CheckForPlugins();
    /// Shows the details of the selected plugin.
    void lstPlugins_Click();
    /// Follows a plugin table that has been built anew.
    void followPlugins();

    QString helpSection() const override { return QStringLiteral("Plugins"); }
    void Form_Activate() override;

Q_SIGNALS:
    /// The user wants to see the plugins.
    void activated();
    /// Files of these names have just been downloaded and put into their folders.
    void filesArrived(const std::vector<std::string>& names);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QGroupBox* buildList();
    void followLeftOut();
    QGroupBox* buildDetails();

    Client& m_client;
    const PluginTable& m_plugins;
    UpdateAgent& m_agent;
    QListWidget* lstPlugins = nullptr;
    QListWidget* lstLeftOut = nullptr; ///< files that are no plugins of this run; shown when there are any
    QLabel* lblName = nullptr;
    QLabel* lblVersion = nullptr;
    QLabel* lblAuthor = nullptr;
    QLabel* lblFile = nullptr;
    QLabel* lblInfo = nullptr;
    QLabel* lblStatus = nullptr;
};
