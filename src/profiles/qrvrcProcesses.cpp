#include "profiles/qrvrcProcesses.h"

#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "link/clsWinSock.h"
#include "platform/CodePage.h"
#include "ui/CopyActions.h"
#include "ui/ImageButton.h"

#include <QLabel>
#include <QListWidget>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QSize windowSize(420, 320);
constexpr int margin = 12;
constexpr int listTop = 34;
constexpr int idWidth = 90;
constexpr QSize buttonSize(120, 30);

/// -1 for none: a list that has the keyboard has a current row without one being chosen.
int selectedRow(const QListWidget& list)
{
    const QList<QListWidgetItem*> selected = list.selectedItems();
    return selected.isEmpty() ? -1 : list.row(selected.constFirst());
}

} // namespace

qrvrcProcesses::qrvrcProcesses(Client& client, const std::vector<ProcessRecord>& processes, QWidget* parent)
    : QDialog(parent),
      m_client(client),
      m_processes(processes)
{
    setObjectName(u"qrvrcProcesses"_s);
    setWindowTitle(u"Attach to Process"_s);
    setFixedSize(windowSize);
    setWindowFlag(Qt::WindowMinMaxButtonsHint, false);
    buildControls();
    wireSignals();
    for (const ProcessRecord& process : m_processes) {
        lstID->addItem(m_client.codePage.toText(process.id));
        lstProcess->addItem(m_client.codePage.toText(process.name));
    }
    lstProcess->setFocus();
}

void qrvrcProcesses::buildControls()
{
    const int buttonTop = windowSize.height() - margin - buttonSize.height();
    const auto list = [&](const QString& name, const QString& caption, int left, int width) {
        auto* label = new QLabel(caption, this);
        label->setGeometry(left, margin, width, listTop - margin);
        auto* widget = new QListWidget(this);
        widget->setObjectName(name);
        widget->setStyleSheet(u"QListView::item { padding: 2px; }"_s);
        widget->setAccessibleName(caption);
        addCopyActions(widget);
        widget->setGeometry(left, listTop, width, buttonTop - margin - listTop);
        return widget;
    };
    lstID = list(u"lstID"_s, u"Process ID"_s, margin, idWidth);
    const int nameLeft = margin + idWidth + 6;
    lstProcess = list(u"lstProcess"_s, u"Process"_s, nameLeft, windowSize.width() - margin - nameLeft);
    cmdAttach = new ImageButton(u"cmdAttach"_s, u"Attach"_s, m_client.pictures, this);
    cmdCancel = new ImageButton(u"cmdCancel"_s, u"Cancel"_s, m_client.pictures, this);
    cmdAttach->place(QRect(QPoint(windowSize.width() / 2 - buttonSize.width() - 6, buttonTop), buttonSize));
    cmdCancel->place(QRect(QPoint(windowSize.width() / 2 + 6, buttonTop), buttonSize));
}

void qrvrcProcesses::wireSignals()
{
    const auto follow = [](QListWidget* follower, const QListWidget* leader) {
        if (const int row = selectedRow(*leader); row >= 0 && row != selectedRow(*follower))
            follower->setCurrentRow(row);
    };
    connect(lstID, &QListWidget::itemSelectionChanged, this, [this, follow] { follow(lstProcess, lstID); });
    connect(lstProcess, &QListWidget::itemSelectionChanged, this, [this, follow] { follow(lstID, lstProcess); });
    for (QListWidget* list : {lstID, lstProcess})
        connect(list, &QListWidget::itemActivated, this, &qrvrcProcesses::attach);
    connect(cmdAttach, &ImageButton::clicked, this, &qrvrcProcesses::attach);
    connect(cmdCancel, &ImageButton::clicked, this, &QDialog::reject);
    connect(&m_client.link, &clsWinSock::linkLost, this, &QDialog::reject);
}

void qrvrcProcesses::attach()
{
    const int row = selectedRow(*lstProcess);
    if (row < 0) {
        m_client.reporter.ReportMsg(MessageKind::ActionRequired, u"You must select a process from the list!"_s);
        return;
    }
    m_chosen = m_processes.at(static_cast<std::size_t>(row));
    accept();
}
