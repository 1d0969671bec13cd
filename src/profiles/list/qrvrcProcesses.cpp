#include "profiles/list/qrvrcProcesses.h"

#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "link/clsWinSock.h"
#include "platform/system/CodePage.h"
#include "ui/CopyActions.h"
#include "ui/ElidedLabel.h"
#include "ui/ImageButton.h"

#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QListWidget>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr QSize windowSize(420, 320);
constexpr int margin = 12;
constexpr int spacing = 6;
constexpr int idWidth = 90;
constexpr int buttonWidth = 120;
constexpr int buttonSpacing = 12;

/// -1 for none: a list that has the keyboard has a current row without one being chosen.
int selectedRow(const QListWidget& list)
{
    const QList<QListWidgetItem*> selected = list.selectedItems();
    return selected.isEmpty() ? -1 : list.row(selected.constFirst());
}

} // namespace

qrvrcProcesses::qrvrcProcesses(Client& client, const ProfileRecord& profile,
                               const std::vector<ProcessRecord>& processes, QWidget* parent)
    : QDialog(parent),
      m_client(client),
      m_processes(processes)
{
    setObjectName(u"qrvrcProcesses"_s);
    setWindowTitle(u"Attach to Process"_s);
    setFixedSize(windowSize);
    setWindowFlag(Qt::WindowMinMaxButtonsHint, false);
    buildControls();
    layOut();
    wireSignals();
    lblProfile->setText(u"Attach '%1' to:"_s.arg(m_client.codePage.toText(profile.name)));
    for (const ProcessRecord& process : m_processes) {
        lstID->addItem(m_client.codePage.toText(process.id));
        lstProcess->addItem(m_client.codePage.toText(process.name));
    }
    lstProcess->setFocus();
}

void qrvrcProcesses::buildControls()
{
    const auto list = [this](const QString& name, const QString& caption) {
        auto* made = new QListWidget(this);
        made->setObjectName(name);
        made->setStyleSheet(u"QListView::item { padding: 2px; }"_s);
        made->setAccessibleName(caption);
        addCopyActions(made);
        return made;
    };
    lblProfile = new ElidedLabel(u"lblProfile"_s, this);
    lstID = list(u"lstID"_s, u"Process ID"_s);
    lstProcess = list(u"lstProcess"_s, u"Process"_s);
    cmdAttach = new ImageButton(u"cmdAttach"_s, u"Attach"_s, m_client.pictures, this);
    cmdCancel = new ImageButton(u"cmdCancel"_s, u"Cancel"_s, m_client.pictures, this);
}

void qrvrcProcesses::layOut()
{
    auto* lists = new QGridLayout;
    lists->setSpacing(spacing);
    int column = 0;
    for (QListWidget* list : {lstID, lstProcess}) {
        lists->addWidget(new QLabel(list->accessibleName()), 0, column);
        lists->addWidget(list, 1, column++);
    }
    lstID->setFixedWidth(idWidth);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(buttonSpacing);
    buttons->addStretch();
    for (const ImageButton* button : {cmdAttach, cmdCancel}) {
        button->face()->setFixedWidth(buttonWidth);
        buttons->addWidget(button->face());
    }
    buttons->addStretch();

    auto* window = new QVBoxLayout(this);
    window->setContentsMargins(margin, margin, margin, margin);
    window->setSpacing(margin);
    window->addWidget(lblProfile);
    window->addLayout(lists);
    window->addLayout(buttons);
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
        connect(list, &QListWidget::itemDoubleClicked, this, &qrvrcProcesses::attach);
    connect(cmdAttach, &ImageButton::clicked, this, &qrvrcProcesses::attach);
    connect(cmdCancel, &ImageButton::clicked, this, &QDialog::reject);
    connect(&m_client.link, &clsWinSock::linkLost, this, &QDialog::reject);
}

/// The lists and buttons leave to the window what they do not take themselves. Not every desktop means a choice by an
/// "activated" item: on some it is a single click.
void qrvrcProcesses::keyPressEvent(QKeyEvent* event)
{
    if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        attach();
    else
        QDialog::keyPressEvent(event);
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
