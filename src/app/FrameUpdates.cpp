#include "app/FrameUpdates.h"

#include "app/ClientCore.h"
#include "app/UpdaterHandOver.h"
#include "link/LoginExchange.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdateOptions.h"
#include "updates/UpdateState.h"
#include "updates/qrvrcOptions.h"
#include "updates/qrvrcPlugins.h"
#include "updates/qrvrcUpdate.h"

#include <QWidget>

using namespace Qt::StringLiterals;

FrameUpdates::FrameUpdates(ClientCore& core, RestartOrder restart, QWidget* frame, const std::function<void()>& quit)
    : m_core(core),
      m_restart(std::move(restart)),
      m_agent(std::make_unique<UpdateAgent>(core.updates, core.client, core.updatesAvailable, frame)),
      m_options(std::make_unique<UpdateOptions>(UpdateOptions::Subjects{core.folder, core.updates, *m_agent, core.link,
                                                                        core.codePage, core.components, core.reporter,
                                                                        core.keeper, core.preferences, core.passwords}))
{
    core.updates.undoUpdate = [this, quit] {
        if (!startUpdater(m_core.updateTargets, m_restart, {u"--restore"_s}))
            return false;
        quit();
        return true;
    };
}

FrameUpdates::~FrameUpdates() = default;

void FrameUpdates::registerWindows(LoginExchange& exchange, QWidget* pages)
{
    WindowRegistry& windows = m_core.windows;
    windows.add<qrvrcOptions>([this, pages] { return new qrvrcOptions(m_core.client, *m_options, pages); });
    windows.add<qrvrcUpdate>([this, pages] { return new qrvrcUpdate(m_core.client, m_core.updates, *m_agent, pages); });
    windows.add<qrvrcPlugins>([this, pages, &exchange] {
        auto* window = new qrvrcPlugins(m_core.client, m_core.plugins, m_core.updates, *m_agent, pages);
        QObject::connect(&m_core.pluginHost, &PluginHost::tableChanged, window, &qrvrcPlugins::followPlugins);
        QObject::connect(window, &qrvrcPlugins::filesArrived, &m_core.pluginHost, &PluginHost::takeArrived);
        QObject::connect(window, &qrvrcPlugins::activated, &exchange, &LoginExchange::askMissedStatus,
                         Qt::QueuedConnection); // it waits
        return window;
    });
}

void FrameUpdates::load()
{
    m_options->load();
}

void FrameUpdates::askAtStart()
{
    m_core.reporter.trap("MDIFormLoad", [this] { UpdateState(m_core.folder).noteTrial(false); });
    m_agent->askAtStart([this](bool core, bool plugins) {
        if (!core && !plugins)
            return;
        const QString what =
            core && plugins ? u"There is updates available for the QRVRC Core Components and QRVRC Plugins Available."_s
            : core          ? u"There is updates available for the QRVRC Core Components."_s
                            : u"There is updates available for the QRVRC Plugins Available."_s;
        m_core.reporter.ReportMsg(
            MessageKind::ActionRequired,
            what + u"\r\n\r\nPlease update the application before connecting to the host computer."_s);
    });
}

bool FrameUpdates::updaterTakesOver()
{
    // What could not be installed is told before anything is tried again, so that two programs never start each other
    // in turns.
    if (const std::string problems = takeUpdateProblems(m_core.folder); !problems.empty()) {
        m_core.reporter.ReportMsg(MessageKind::Failed, u"Not all updates could be installed:\r\n\r\n"_s +
                                                           QString::fromLocal8Bit(problems.data()));
        return false;
    }
    switch (handOverUpdates(m_core.updateTargets, m_restart)) {
    case HandOver::Nothing:
        return false;
    case HandOver::UpdaterStarted:
        return true;
    case HandOver::SetAside:
        return false;
    case HandOver::UpdaterSilent:
        m_core.reporter.ReportMsg(
            MessageKind::Failed,
            u"Updates wait to be installed, but the program 'QRVV3Updater.exe', which was started for it, has not "
            "done so. They stay in the folder 'Updates' and are tried again when another update has been downloaded."_s);
        return false;
    case HandOver::UpdaterMissing:
        m_core.reporter.ReportMsg(
            MessageKind::Failed,
            u"Updates are waiting to be installed, but the program 'QRVV3Updater.exe' could not be started."_s);
        return false;
    }
    return false;
}
