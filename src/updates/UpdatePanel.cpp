#include "updates/UpdatePanel.h"

#include "client/Client.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "store/AppFolder.h"
#include "ui/ImageButton.h"
#include "updates/DiskFacts.h"
#include "updates/InstallUpdates.h"
#include "updates/ListCheck.h"
#include "updates/UpdateAgent.h"
#include "updates/UpdateChoice.h"
#include "updates/UpdateQueue.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <QLabel>
#include <QPointer>
#include <QProgressBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int panelWidth = 400;
constexpr QMargins frameMargins(7, 4, 7, 7);
constexpr QMargins progressMargins(7, 7, 7, 4);
constexpr int gap = 6;
constexpr int noteGap = 2;
constexpr int buttonWidth = 130;
constexpr QSize cancelSize(80, 24);
constexpr int percentWidth = 42;
constexpr int barHeight = 18;

constexpr int barSteps = 10'000;
constexpr int mostBeforeTheEnd = 99; // per cent
constexpr qsizetype maxTold = 12;    // lines of a message

/// Lines for a message box, which has no scroll bar.
QString joined(QStringList lines)
{
    if (lines.size() > maxTold) {
        const qsizetype more = lines.size() - maxTold + 1;
        lines = lines.mid(0, maxTold - 1) + QStringList(u"... and %1 more"_s.arg(more));
    }
    return lines.join(u"\r\n"_s);
}

const QString restartNeeded = u"A restart of the Quorvane Ravelin RC is \r\nrequired to install the updates."_s;

} // namespace

UpdatePanel::UpdatePanel(Client& client, const UpdateServices& services, UpdateAgent& agent, UpdatePanelSetup setup,
                         QWidget* parent)
    : QGroupBox(setup.title, parent),
      m_client(client),
      m_services(services),
      m_agent(agent),
      m_setup(std::move(setup))
{
    setObjectName(m_setup.frameName);
    buildControls();
    layOut();
    wireSignals();
    showButton(false);
    setBusy(false);
}

UpdatePanel::~UpdatePanel() = default;

void UpdatePanel::buildControls()
{
    lstQRV = new UpdateChoice(u"lstQRV"_s, m_client.codePage, this);
    lstQRV->setAccessibleName(m_setup.title);
    const bool isPackaged = m_services.isPackaged && m_setup.order.kind == ListKind::Client;
    lstQRV->setEmptyText(isPackaged ? packagedNote.toString()
                                    : u"Press \"%1\" to look for updates."_s.arg(m_setup.checkCaption));
    cmdCheck = new ImageButton(m_setup.checkName, m_setup.checkCaption, m_client.pictures, this);
    cmdCheck->setEnabled(!isPackaged);
    cmdGetUpdates = new ImageButton(u"cmdGetUpdates"_s, u"Get Updates"_s, m_client.pictures, this);
    cmdUndo = new ImageButton(u"cmdUndo"_s, u"Undo last update"_s, m_client.pictures, this);
    const auto addNote = [this](const QString& name) {
        auto* label = new QLabel(this);
        label->setObjectName(name);
        label->setTextFormat(Qt::PlainText);
        label->setWordWrap(true);
        return label;
    };
    lblReason = addNote(u"lblReason"_s);
    lblProof = addNote(u"lblProof"_s);
    lblProof->hide();
    fmeProgress = new QGroupBox(u"Download Progress"_s, this);
    fmeProgress->setObjectName(u"fmeProgress"_s);
    pbDwnld = new QProgressBar(fmeProgress);
    pbDwnld->setObjectName(u"pbDwnld"_s);
    pbDwnld->setAccessibleName(u"Download Progress"_s);
    pbDwnld->setTextVisible(false);
    pbDwnld->setRange(0, 1);
    pbDwnld->setValue(0);
    lblFetched = new QLabel(fmeProgress);
    lblFetched->setObjectName(u"lblFetched"_s);
    lblFetched->setTextFormat(Qt::PlainText);
    lblFetched->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred); // a long name leaves the bar its place
    lblPer = new QLabel(u"0%"_s, fmeProgress);
    lblPer->setObjectName(u"lblPer"_s);
    lblPer->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    cmdCancel = new ImageButton(u"cmdCancel"_s, u"Cancel"_s, m_client.pictures, fmeProgress);
}

void UpdatePanel::layOut()
{
    setMinimumWidth(panelWidth);
    auto* notes = new QVBoxLayout;
    notes->setSpacing(noteGap);
    for (const QString& text :
         {u"All items that are checked will be downloaded and installed."_s,
          u"Some items may require you to stop all active profiles or to stop the Quorvane Ravelin."_s}) {
        auto* label = new QLabel(text);
        label->setWordWrap(true);
        notes->addWidget(label);
    }
    auto* buttons = new QGridLayout; // one of the two is shown
    for (const ImageButton* button : {cmdCheck, cmdGetUpdates}) {
        button->face()->setFixedWidth(buttonWidth);
        buttons->addWidget(button->face(), 0, 0, Qt::AlignLeft);
    }
    cmdUndo->face()->setFixedWidth(buttonWidth);
    buttons->addWidget(cmdUndo->face(), 0, 1, Qt::AlignRight);
    lblReason->setMinimumHeight(lblReason->fontMetrics().height());
    auto* transfer = new QVBoxLayout(fmeProgress);
    transfer->setContentsMargins(progressMargins);
    transfer->setSpacing(noteGap);
    auto* progress = new QHBoxLayout;
    progress->setSpacing(gap);
    pbDwnld->setFixedHeight(barHeight);
    lblPer->setMinimumWidth(percentWidth);
    cmdCancel->face()->setFixedSize(cancelSize);
    progress->addWidget(pbDwnld, 1);
    progress->addWidget(lblPer);
    progress->addWidget(cmdCancel->face());
    transfer->addLayout(progress);
    transfer->addWidget(lblFetched);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(frameMargins);
    all->setSpacing(gap);
    all->addWidget(lstQRV, 1);
    all->addWidget(lblReason);
    all->addWidget(lblProof);
    all->addLayout(notes);
    all->addLayout(buttons);
    all->addWidget(fmeProgress);
}

void UpdatePanel::wireSignals()
{
    connect(cmdCheck, &ImageButton::clicked, this, &UpdatePanel::check);
    connect(cmdGetUpdates, &ImageButton::clicked, this,
            m_client.reporter.trapped("GetFilesObtain", [this] { getUpdates(); }));
    connect(cmdUndo, &ImageButton::clicked, this, m_client.reporter.trapped("cmdUndo_Click", [this] { undo(); }));
    connect(lstQRV, &UpdateChoice::reasonChanged, this, &UpdatePanel::showReason);
    connect(cmdCancel, &ImageButton::clicked, this, [this] {
        if (m_queue)
            m_queue->cancel();
        else if (m_check)
            m_check->cancel();
    });
}

void UpdatePanel::setBusy(bool busy)
{
    cmdCancel->setEnabled(busy);
    if (busy && window()->isActiveWindow() && (!window()->focusWidget() || isAncestorOf(window()->focusWidget())))
        cmdCancel->setFocus(); // the button that was pressed cannot keep the keyboard
    lstQRV->setEnabled(!busy);
    if (busy)
        m_pointer.emplace(*parentWidget());
    else
        m_pointer.reset();
}

/// One of the two buttons is shown; the keyboard goes with it.
void UpdatePanel::showButton(bool offersDownload)
{
    const bool hadFocus = cmdCheck->hasFocus() || cmdGetUpdates->hasFocus() || cmdCancel->hasFocus();
    cmdGetUpdates->setVisible(offersDownload);
    cmdCheck->setVisible(!offersDownload);
    if (hadFocus)
        (offersDownload ? cmdGetUpdates : cmdCheck)->setFocus();
}

void UpdatePanel::check()
{
    lstQRV->clear();
    pbDwnld->setValue(0); // what it shows is of an earlier download
    lblPer->setText(u"0%"_s);
    lstQRV->setEmptyText(u"Looking for updates..."_s);
    showReason({});
    setBusy(true);
    cmdCheck->setEnabled(false);
    tellProof();
    m_check = std::make_unique<ListCheck>(m_services, m_setup.order, m_services.listLimit);
    // Behind the check's own doings: what follows opens boxes.
    connect(m_check.get(), &ListCheck::finished, this, &UpdatePanel::showCandidates, Qt::QueuedConnection);
}

void UpdatePanel::showCandidates()
{
    setBusy(false);
    const bool isCancelled = m_check->isCancelled() && m_check->candidates().isEmpty();
    if (isCancelled || !m_check->hasList()) {
        const QString what = isCancelled ? u"The check was cancelled."_s : u"Unable to obtain update info!"_s;
        lstQRV->setEmptyText(what);
        if (!isCancelled) {
            const QString& why = m_check->fault();
            m_client.reporter.ReportMsg(MessageKind::Failed, why.isEmpty() ? what : what + u"\r\n\r\n"_s + why + u'.');
        }
        cmdCheck->setEnabled(true);
        cmdCheck->setFocus();
        return;
    }
    const Candidates& found = m_check->candidates();
    lstQRV->showCandidates(found);
    if (found.isEmpty()) {
        cmdCheck->setEnabled(true);
        cmdCheck->setFocus();
    } else {
        showButton(true);
        cmdGetUpdates->setFocus();
    }
    tellRefused(found.refused);
}

/// A list that names files elsewhere is broken or means harm; either way the user is to know.
void UpdatePanel::tellRefused(const std::vector<RefusedFile>& refused)
{
    if (refused.empty())
        return;
    QStringList lines;
    for (const RefusedFile& file : refused)
        lines += m_client.codePage.toText(file.record.folder + file.record.name) + u": "_s + refusalText(file.why);
    m_client.reporter.ReportMsg(MessageKind::Error, u"Files of the update list are refused:\r\n\r\n"_s + joined(lines));
}

void UpdatePanel::showReason(const QString& why)
{
    lblReason->setText(why.isEmpty() ? QString() : why.left(1).toUpper() + why.mid(1) + u'.');
}

/// Whoever sits between here and the location can put anything into an update that nothing proves.
void UpdatePanel::tellProof()
{
    const bool isProven = m_services.key || m_services.location.startsWith(u"https:"_s, Qt::CaseInsensitive);
    lblProof->setText(u"No update key is set, and the location is plain http: nothing proves that these files are the "
                      "maker's."_s);
    lblProof->setVisible(!isProven && !m_services.location.isEmpty());
}

void UpdatePanel::getUpdates()
{
    lblPer->setText(u"0%"_s);
    pbDwnld->setRange(0, barSteps);
    pbDwnld->setValue(0);
    m_total = 0;
    m_done = 0;
    const std::vector<Candidate> files = lstQRV->checked();
    if (files.empty())
        return leaveList(u"Nothing was checked."_s, u"No Updates Available!"_s);
    if (!m_check->isOf(m_services))
        return leaveList(u"Press \"%1\" to look for updates."_s.arg(m_setup.checkCaption),
                         u"The update location or the update key has been changed since these files were looked for. "
                         "Please look for updates again."_s);
    if (m_services.downloads.use_count() == 1) // what another one has just kept is of the same update
        beginUpdate(m_services.targets.folder());
    std::vector<WantedFile> items;
    for (const Candidate& file : files) {
        const UpdateRecord& record = file.record;
        m_total += record.size;
        items.push_back({record.name, record.folder, record.size, file.digest});
        if (m_setup.order.kind == ListKind::Client && record.name == "help.chm")
            m_client.reporter.trap("GetFilesObtain", [&] { noteHelpVersion(m_services.targets, record.version); });
    }
    m_remains = items.size() < lstQRV->offeredCount();
    m_fileCount = static_cast<int>(items.size());
    setBusy(true);
    cmdGetUpdates->setEnabled(false);
    cmdUndo->setEnabled(false);
    m_queue = std::make_unique<UpdateQueue>(m_services, m_setup.order.kind, m_check->location(), std::move(items));
    connect(m_queue.get(), &UpdateQueue::fetching, this, [this](const std::string& name, int left) {
        lblFetched->setText(u"%1 (%2 of %3)"_s.arg(m_client.codePage.toText(name), QString::number(m_fileCount - left),
                                                   QString::number(m_fileCount)));
    });
    connect(m_queue.get(), &UpdateQueue::received, this, &UpdatePanel::advance);
    connect(m_queue.get(), &UpdateQueue::finished, this, &UpdatePanel::concludeDownload, Qt::QueuedConnection);
    m_queue->start();
}

/// Nothing of the list is downloaded.
void UpdatePanel::leaveList(const QString& shown, const QString& told)
{
    lstQRV->clear();
    lstQRV->setEmptyText(shown);
    cmdCheck->setEnabled(true);
    showButton(false);
    m_client.reporter.ReportMsg(MessageKind::Failed, told);
}

void UpdatePanel::advance(qint64 bytes)
{
    m_done = std::min(m_done + bytes, m_total);
    const qint64 whole = std::max<qint64>(m_total, 1); // a list may tell no sizes
    pbDwnld->setValue(static_cast<int>(m_done * barSteps / whole));
    lblPer->setText(u"%1%"_s.arg(std::min<qint64>(m_done * 100 / whole, mostBeforeTheEnd)));
}

void UpdatePanel::concludeDownload()
{
    const std::unique_ptr<UpdateQueue> queue = std::exchange(m_queue, nullptr);
    QStringList failed;
    bool areAnyDone = false;
    std::vector<std::string> here;
    for (const ObtainedFile& file : queue->results()) {
        if (file.how == ObtainedFile::How::Placed)
            here.push_back(file.name);
        if (file.how == ObtainedFile::How::Failed)
            failed += m_client.codePage.toText(file.name) + u": "_s + file.why;
        else
            areAnyDone = true;
    }
    setBusy(false);
    lblFetched->clear();
    showReason({});
    followReplaced();
    lstQRV->clear();
    lstQRV->setEmptyText(u"Press \"%1\" to look for updates."_s.arg(m_setup.checkCaption));
    cmdGetUpdates->setEnabled(true);
    cmdCheck->setEnabled(true);
    showButton(false);
    const QPointer<UpdatePanel> self(this);
    tellDownloaded(failed, areAnyDone, queue->isCancelled());
    if (self && !here.empty())
        Q_EMIT placed(here);
}

void UpdatePanel::tellDownloaded(const QStringList& failed, bool areAnyDone, bool isCancelled)
{
    const bool needsRestart = m_client.folder.folderExists(updatesFolder);
    if (!failed.isEmpty() || isCancelled) {
        QString text = isCancelled ? u"The download was cancelled."_s
                                   : u"Failed to obtain update file!\r\n\r\n"_s + joined(failed);
        if (areAnyDone)
            text += u"\r\n\r\nThe other files were downloaded."_s;
        if (needsRestart)
            text += u"\r\n\r\n"_s + restartNeeded;
        m_client.reporter.ReportMsg(MessageKind::Failed, text);
        return;
    }
    lblPer->setText(u"100%"_s);
    pbDwnld->setValue(barSteps);
    if (!m_remains)
        m_agent.forgetAvailable(m_setup.order.kind);
    if (needsRestart)
        m_client.boxes.show(u"Success"_s, u"Updates downloaded successfully!\r\n\r\n"_s + restartNeeded);
    else
        m_client.reporter.ReportMsg(MessageKind::Success, m_setup.success);
}

void UpdatePanel::showEvent(QShowEvent* event)
{
    followReplaced();
    QGroupBox::showEvent(event);
}

/// The button is there as long as there is something to put back.
void UpdatePanel::followReplaced()
{
    cmdUndo->setVisible(m_setup.canUndo && m_services.undoUpdate && isReplacedKept(m_services.targets.folder()));
    cmdUndo->setEnabled(!m_queue);
}

void UpdatePanel::undo()
{
    if (!m_client.boxes.confirm(
            u"Undo last update"_s,
            u"The files that the last update replaced are put back, for which this program ends and "
            "starts again. Undo the last update?"_s))
        return;
    if (!m_services.undoUpdate())
        m_client.reporter.ReportMsg(MessageKind::Failed,
                                    u"The last update could not be undone: the program 'QRVV3Updater.exe' could not be "
                                    "started."_s);
}
