// What the frame has to do with updates: their windows, the questions of a start, and the hand-over to the updater.

#include "app/UpdaterHandOver.h"
#include "app/qrvrcMain.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdateOptions.h"
#include "updates/qrvrcOptions.h"
#include "updates/qrvrcPlugins.h"
#include "updates/qrvrcUpdate.h"

using namespace Qt::StringLiterals;

void qrvrcMain::registerUpdateWindows()
{
    ClientCore& core = *m_core;
    m_updateAgent = new UpdateAgent(core.updates, core.client, core.updatesAvailable, this);
    m_options = std::make_unique<UpdateOptions>(
        UpdateOptions::Subjects{core.folder, core.updates, *m_updateAgent, core.link, core.codePage});
    core.windows.add(u"qrvrcOptions"_s, [this] { return new qrvrcOptions(m_core->client, *m_options, m_pages); });
    core.windows.add(u"qrvrcUpdate"_s,
                     [this] { return new qrvrcUpdate(m_core->client, m_core->updates, *m_updateAgent, m_pages); });
    core.windows.add(u"qrvrcPlugins"_s, [this] {
        auto* window = new qrvrcPlugins(m_core->client, m_core->plugins, m_core->updates, *m_updateAgent, m_pages);
        connect(&m_core->pluginHost, &PluginHost::tableChanged, window, &qrvrcPlugins::followPlugins);
        return window;
    });
}

void qrvrcMain::askForUpdates()
{
    forgetReplaced(m_core->folder);
    m_updateAgent->askAtStart([this](bool core, bool plugins) {
        if (!core && !plugins)
            return;
        const QString what =
            core && plugins ? u"There is updates available for the QRVRC Core Components and QRVRC Plugins Available."_s
            : core          ? u"There is updates available for the QRVRC Core Components."_s
                            : u"There is updates available for the QRVRC Plugins Available."_s;
        m_core->reporter.ReportMsg(
            MessageKind::ActionRequired,
            what + u"\r\n\r\nPlease update the application before connecting to the host computer."_s);
    });
}

bool qrvrcMain::updaterTakesOver()
{
    // What could not be installed is told before anything is tried again, so that two programs never start each other
    // in turns.
    if (const std::string problems = takeUpdateProblems(m_core->folder); !problems.empty()) {
        m_core->reporter.ReportMsg(MessageKind::Failed, u"Not all updates could be installed:\r\n\r\n"_s +
                                                            QString::fromLocal8Bit(problems.data()));
        return false;
    }
    switch (handOverUpdates(m_core->updateTargets, m_restart)) {
    case HandOver::Nothing:
        return false;
    case HandOver::UpdaterStarted:
        return true;
    case HandOver::UpdaterMissing:
        m_core->reporter.ReportMsg(
            MessageKind::Failed,
            u"Updates are waiting to be installed, but the program 'QRVV3Updater.exe' could not be started."_s);
        return false;
    }
    return false;
}
