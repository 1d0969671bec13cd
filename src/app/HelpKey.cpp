#include "app/HelpKey.h"

#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "platform/system/PathText.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"

#include <QCoreApplication>
#include <QDesktopServices>
#include <QKeyEvent>
#include <QUrl>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <array>

#if defined(Q_OS_WIN)
#include <windows.h>
#endif

using namespace Qt::StringLiterals;

namespace {

struct Topic
{
    const char16_t* section;
    const char* page;
};

constexpr std::array topics{
    Topic{u"Profile List", "ProfileList.html"},
    Topic{u"About", "About.html"},
    Topic{u"Options", "Options.html"},
    Topic{u"ExpMods", "ExpsMods.html"},
    Topic{u"Plugins", "Plugins.html"},
    Topic{u"Update", "Updates.html"},
    Topic{u"Admin", "Admin.html"},
    Topic{u"Help", "Help.html"},
    Topic{u"Profile Admins", "ManagingRemoteAccess.html"},
    Topic{u"Modify Profile", "ModifyProfile.html"},
    Topic{u"View Player Stats", "PlayerStats.html"},
    Topic{u"Remote File Viewer", "RemoteFiles.html"},
};

/// Windows beside the frame, by their names. They are no sections: the frame's own stays what it is.
constexpr std::array windowTopics{
    Topic{u"qrvrcSupport", "SupportConsole.html"}, Topic{u"qrvrcRecovery", "RecoveryConsole.html"},
    Topic{u"qrvrcNotePad", "RemoteFiles.html"},    Topic{u"qrvrcReportPreview", "ErrorLog.html"},
    Topic{u"qrvrcProcesses", "ProfileList.html"},  Topic{u"qrvrcDllProgress", "Plugins.html"},
};

template <std::size_t Count>
const char* pageOf(const std::array<Topic, Count>& known, const QString& name)
{
    const auto topic = std::find_if(known.begin(), known.end(),
                                    [&name](const Topic& candidate) { return name == QStringView(candidate.section); });
    return topic == known.end() ? nullptr : topic->page;
}

} // namespace

HelpKey::HelpKey(Client& client, std::function<QString()> section) : m_client(client), m_section(std::move(section))
{
    QCoreApplication::instance()->installEventFilter(this);
#if defined(Q_OS_WIN)
    QCoreApplication::instance()->installNativeEventFilter(this);
#endif
}

bool HelpKey::eventFilter(QObject* watched, QEvent* event)
{
    // A key comes by once for the native window and then for each widget on its way: the first is enough.
    if (event->type() == QEvent::KeyPress && watched->isWindowType()) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_F1 && !key->isAutoRepeat()) {
            const QWidget* window = QWidget::find(static_cast<QWindow*>(watched)->winId());
            m_client.reporter.trap("MDIFormLoad",
                                   [this, window] { showHelp(window ? window->objectName() : QString()); });
        }
    }
    return false;
}

bool HelpKey::nativeEventFilter(const QByteArray& /*kind*/, void* message, qintptr* /*result*/)
{
#if defined(Q_OS_WIN)
    constexpr LPARAM wasDownBefore = 1 << 30;
    const MSG& native = *static_cast<const MSG*>(message);
    if (native.message == WM_KEYDOWN && native.wParam == VK_F1 && (native.lParam & wasDownBefore) == 0 &&
        !QWidget::find(reinterpret_cast<WId>(native.hwnd))) {
        QMetaObject::invokeMethod(
            this, [this] { m_client.reporter.trap("MDIFormLoad", [this] { showHelpFor(m_section()); }); },
            Qt::QueuedConnection);
    }
#else
    static_cast<void>(message);
#endif
    return false;
}

void HelpKey::showHelp(const QString& window)
{
    if (const char* page = pageOf(windowTopics, window))
        m_client.store.ShowHelp(m_client.folder.path("\\help.chm"), page);
    else
        showHelpFor(m_section());
}

void HelpKey::showHelpFor(const QString& section)
{
    if (section == u"IGNORE"_s)
        return;
    if (section.isEmpty()) {
        m_client.reporter.ReportMsg(MessageKind::Failed,
                                    u"This section does not appear to have a help file associated with it!"_s);
        return;
    }
    if (const char* page = pageOf(topics, section)) {
        m_client.store.ShowHelp(m_client.folder.path("\\help.chm"), page);
        return;
    }
    // A plugin names its help file; names are data, so one that is no plain file name is simply not there.
    const std::string file = m_client.codePage.toBytes(section);
    if (!isPlainFileName(file) || !m_client.folder.fileExists("\\Plugins\\" + file)) {
        m_client.reporter.ReportMsg(MessageKind::Error, u"This help file for this section appears to be missing!"_s);
        return;
    }
    const std::filesystem::path path = m_client.folder.path("\\Plugins\\" + file);
    QDesktopServices::openUrl(QUrl::fromLocalFile(textOf(path)));
}
