#include "app/HelpWindows.h"

#include "diagnostics/help/qrvrcHelpViewer.h"
#include "platform/system/PathText.h"

#include <QApplication>
#include <QDesktopServices>
#include <QUrl>

HelpWindows::HelpWindows() = default;

HelpWindows::~HelpWindows() = default;

void HelpWindows::showTopic(const std::filesystem::path& file, const QString& topic)
{
    if (QWidget* modal = QApplication::activeModalWidget()) { // nothing but what belongs to it can be used meanwhile
        auto* viewer = modal->findChild<qrvrcHelpViewer*>();
        (viewer ? viewer : new qrvrcHelpViewer(modal))->showTopic(file, topic);
        return;
    }
    if (!m_viewer)
        m_viewer = std::make_unique<qrvrcHelpViewer>();
    m_viewer->showTopic(file, topic);
}

void HelpWindows::openManual(const std::filesystem::path& file)
{
#ifdef Q_OS_WIN
    QDesktopServices::openUrl(QUrl::fromLocalFile(textOf(file)));
#else
    showTopic(file, {}); // no other system brings a viewer for such files
#endif
}

void HelpWindows::close()
{
    m_viewer.reset();
}
