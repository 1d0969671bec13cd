#include "updates/qrvrcPlugins.h"

#include "client/Client.h"
#include "platform/system/CodePage.h"
#include "plugins/PluginTable.h"
#include "ui/CopyActions.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdatePanel.h"

#include <QEvent>
#include <QFormLayout>
#include <QGroupBox>
#include <QLabel>
#include <QListWidget>
#include <QScrollArea>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QMargins pageMargins(8, 2, 8, 8);
constexpr int gap = 8;
constexpr int listHeight = 150;
constexpr int leftOutHeight = 46; // two lines

QString statusText(const Plugin& plugin)
{
    if (!plugin.enabled)
        return u"Status: Disabled"_s;
    return plugin.restricted ? u"Status: Restricted"_s : u"Status: Enabled"_s;
}

} // namespace

qrvrcPlugins::qrvrcPlugins(Client& client, const PluginTable& plugins, const UpdateServices& services,
                           UpdateAgent& agent, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_plugins(plugins),
      m_agent(agent)
{
    setObjectName(u"qrvrcPlugins"_s);
    auto* left = new QVBoxLayout;
    left->setSpacing(gap);
    left->addWidget(buildList());
    left->addWidget(buildDetails(), 1);
    auto* all = new QHBoxLayout(this);
    all->setContentsMargins(pageMargins);
    all->setSpacing(gap);
    all->addLayout(left, 1);
    auto* panel = new UpdatePanel(client, services, agent,
                                  {.frameName = u"Frame3"_s,
                                   .title = u"New Plugins && Updates"_s,
                                   .checkName = u"cmdCheckPlugins"_s,
                                   .checkCaption = u"Check Plugins"_s,
                                   .order = pluginCheck,
                                   .success = u"Updates downloaded and installed successfully!"_s},
                                  this);
    all->addWidget(panel);
    connect(panel, &UpdatePanel::placed, this, &qrvrcPlugins::filesArrived);
    connect(lstPlugins, &QListWidget::itemSelectionChanged, this, &qrvrcPlugins::lstPlugins_Click);
    followPlugins();
}

QGroupBox* qrvrcPlugins::buildList()
{
    auto* frame = new QGroupBox(u"Available Plugins"_s, this);
    frame->setObjectName(u"Frame1"_s);
    frame->setFixedHeight(listHeight);
    lstPlugins = new QListWidget;
    lstPlugins->setObjectName(u"lstPlugins"_s);
    lstPlugins->setAccessibleName(u"Available Plugins"_s);
    lstPlugins->installEventFilter(this);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(lstPlugins);
    lstLeftOut = new QListWidget;
    lstLeftOut->setObjectName(u"lstLeftOut"_s);
    lstLeftOut->setAccessibleName(u"Files that are not loaded, and why"_s);
    lstLeftOut->setFixedHeight(leftOutHeight);
    lstLeftOut->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstLeftOut->setWordWrap(true);
    addCopyActions(lstLeftOut);
    layout->addWidget(lstLeftOut);
    return frame;
}

QGroupBox* qrvrcPlugins::buildDetails()
{
    auto* frame = new QGroupBox(u"Plugin Information"_s, this);
    frame->setObjectName(u"Frame2"_s);
    // What a plugin says of itself may be longer than the frame is high.
    auto* page = new QWidget;
    auto* form = new QFormLayout(page);
    form->setContentsMargins(0, 0, 0, 0);
    const auto add = [form](const QString& name, const QString& caption) {
        auto* label = new QLabel;
        label->setObjectName(name);
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        label->setTextInteractionFlags(Qt::TextSelectableByMouse);
        form->addRow(caption, label);
        return label;
    };
    lblName = add(u"lblName"_s, u"Name:"_s);
    lblVersion = add(u"lblVersion"_s, u"Version:"_s);
    lblAuthor = add(u"lblAuthor"_s, u"Author:"_s);
    lblFile = add(u"lblFile"_s, u"File:"_s);
    lblInfo = add(u"lblInfo"_s, u"Info:"_s);
    lblStatus = new QLabel(u"Status:"_s);
    lblStatus->setObjectName(u"lblStatus"_s);
    auto* scrolled = new QScrollArea;
    scrolled->setFrameShape(QFrame::NoFrame);
    scrolled->setWidgetResizable(true);
    scrolled->setWidget(page);
    scrolled->viewport()->setAutoFillBackground(false);
    page->setAutoFillBackground(false);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(scrolled);
    layout->addWidget(lblStatus);
    return frame;
}

void qrvrcPlugins::followPlugins()
{
    const QListWidgetItem* current = lstPlugins->currentItem();
    const QString kept = current ? current->text() : QString();
    const QSignalBlocker quiet(lstPlugins);
    lstPlugins->clear();
    for (const Plugin& plugin : m_plugins.plugins) {
        auto* item = new QListWidgetItem(m_client.codePage.toText(plugin.name), lstPlugins);
        if (item->text() == kept && !kept.isEmpty() && !lstPlugins->currentItem())
            lstPlugins->setCurrentItem(item);
    }
    lstPlugins_Click();
    followLeftOut();
}

void qrvrcPlugins::followLeftOut()
{
    lstLeftOut->clear();
    for (const LeftOutPlugin& plugin : m_plugins.leftOut) {
        const QString why =
            plugin.why.empty() ? u"not registered"_s : m_client.codePage.toText(plugin.why).simplified();
        const QString file = m_client.codePage.toText(plugin.file);
        const QString text = why.contains(file) ? why : file + u": "_s + why;
        auto* item = new QListWidgetItem(text, lstLeftOut);
        item->setToolTip(Qt::convertFromPlainText(text, Qt::WhiteSpaceNormal));
    }
    lstLeftOut->setVisible(lstLeftOut->count() > 0);
}

void qrvrcPlugins::lstPlugins_Click()
{
    const QListWidgetItem* item = lstPlugins->currentItem();
    const Plugin* plugin = item ? m_plugins.find(m_client.codePage.toBytes(item->text())) : nullptr;
    const Plugin shown = plugin ? *plugin : Plugin();
    const CodePage& codePage = m_client.codePage;
    lblName->setText(codePage.toText(shown.name));
    lblVersion->setText(codePage.toText(shown.version));
    lblAuthor->setText(codePage.toText(shown.author));
    lblFile->setText(codePage.toText(shown.file));
    lblInfo->setText(codePage.toText(shown.description));
    lblStatus->setText(plugin ? statusText(*plugin) : u"Status:"_s);
}

bool qrvrcPlugins::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == lstPlugins && event->type() == QEvent::FocusIn && lstPlugins->count() > 0 &&
        !lstPlugins->currentItem())
        lstPlugins->setCurrentRow(0);
    return WorkingWindow::eventFilter(watched, event);
}

void qrvrcPlugins::Form_Activate()
{
    Q_EMIT activated();
}

bool qrvrcPlugins::PluginsUpdateAvailable()
{
    return m_agent.PluginsUpdateAvailable();
}

void qrvrcPlugins::CheckForPlugins()
{
    m_agent.CheckForPlugins();
}
