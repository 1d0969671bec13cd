#include "profiles/qrvrcFileManager.h"

#include "diagnostics/Reporter.h"
#include "link/Ask.h"
#include "link/Client.h"
#include "link/PackedReply.h"
#include "link/ReplyDispatcher.h"
#include "link/Session.h"
#include "link/clsWinSock.h"
#include "platform/CodePage.h"
#include "profiles/qrvrcNotePad.h"
#include "store/clsMFD.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"
#include "ui/WindowRegistry.h"

#include <QComboBox>
#include <QDateEdit>
#include <QLabel>
#include <QPointer>
#include <QScopeGuard>
#include <QShortcut>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace {

constexpr std::array<GridColumn, 6> backupColumns{{
    {"Num", 600_twips, Qt::AlignRight},
    {"File Name", 3900_twips},
    {"Gametype", 1200_twips, Qt::AlignHCenter},
    {"File Date", 1200_twips, Qt::AlignHCenter},
    {"File Type", 2000_twips},
    {"File Size", 1200_twips, Qt::AlignRight},
}};
constexpr std::array<GridColumn, 5> logColumns{{
    {"Num", 600_twips, Qt::AlignRight},
    {"File Name", 4300_twips},
    {"File Date", 1400_twips, Qt::AlignHCenter},
    {"File Type", 2300_twips},
    {"File Size", 1500_twips, Qt::AlignRight},
}};

QString stateAfter(WaitEnd end)
{
    return end == WaitEnd::Replied ? u"The tracker's answer was lost. Please try again."_s
                                   : u"The tracker did not answer."_s;
}

} // namespace

qrvrcFileManager::qrvrcFileManager(Client& client, std::int32_t profileId, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_profileId(profileId),
      m_listedType(&remoteFileTypes.front()),
      m_files(std::make_shared<const std::vector<RemoteFile>>())
{
    setObjectName(u"qrvrcFileManager"_s);
    buildControls();
    placeControls();
    followFileType();
    wireSignals();
}

qrvrcFileManager::~qrvrcFileManager() = default;

void qrvrcFileManager::buildControls()
{
    const auto label = [this](const QString& name, const QString& text) {
        auto* made = new QLabel(text, this);
        made->setObjectName(name);
        made->setTextFormat(Qt::PlainText);
        return made;
    };
    const auto date = [&](const QString& name, QLabel* caption) {
        auto* picker = new QDateEdit(QDate::currentDate(), this);
        picker->setObjectName(name);
        picker->setAccessibleName(caption->text().chopped(2));
        picker->setDisplayFormat(u"dd/MM/yyyy"_s);
        picker->setCalendarPopup(true);
        caption->setBuddy(picker);
        return picker;
    };
    lblFileType = label(u"lblFileType"_s, u"File Type: "_s);
    cboFileType = new QComboBox(this);
    cboFileType->setObjectName(u"cboFileType"_s);
    cboFileType->setAccessibleName(u"File Type"_s);
    lblFileType->setBuddy(cboFileType);
    for (const RemoteFileType& type : remoteFileTypes)
        cboFileType->addItem(m_client.codePage.toText(type.name));
    lblFrom = label(u"lblFrom"_s, u"Date From: "_s);
    dtpFrom = date(u"dtpFrom"_s, lblFrom);
    lblTo = label(u"lblTo"_s, u"Date To: "_s);
    dtpTo = date(u"dtpTo"_s, lblTo);
    cmdGetFiles = new ImageButton(u"cmdGetFiles"_s, u"Get Files"_s, m_client.pictures, this);
    mfgFM = new GridView(u"mfgFM"_s, this);
    mfgFM->setAccessibleName(u"Files"_s);
    lblHint =
        label(u"lblHint"_s, u"Double Left-Click an item in the list to download and view the contents of the file."_s);
    lblState = label(u"lblState"_s, {});
}

void qrvrcFileManager::placeControls()
{
    constexpr int margin = 8;
    constexpr int rowHeight = 26;
    constexpr int buttonWidth = 110;
    const QSize page = parentWidget() ? parentWidget()->size() : QSize(757, 440);
    int left = margin;
    const auto place = [&](QWidget* widget, int width, int gap) {
        widget->setGeometry(left, margin, width, rowHeight);
        left += width + gap;
    };
    place(lblFileType, lblFileType->sizeHint().width(), 2);
    place(cboFileType, 168, 16);
    place(lblFrom, lblFrom->sizeHint().width(), 2);
    place(dtpFrom, 106, 16);
    place(lblTo, lblTo->sizeHint().width(), 2);
    place(dtpTo, 106, 0);
    cmdGetFiles->place({page.width() - margin - buttonWidth, margin - 2, buttonWidth, 30});
    const int gridTop = margin + rowHeight + margin + 2;
    const int below = page.height() - margin - 2 * 20;
    mfgFM->setGeometry(margin, gridTop, page.width() - 2 * margin, below - 4 - gridTop);
    lblHint->setGeometry(margin, below, page.width() - 2 * margin, 20);
    lblState->setGeometry(margin, below + 20, page.width() - 2 * margin, 20);
    QWidget* previous = cboFileType;
    for (QWidget* next : std::initializer_list<QWidget*>{dtpFrom, dtpTo, cmdGetFiles, mfgFM}) {
        setTabOrder(previous, next);
        previous = next;
    }
}

void qrvrcFileManager::wireSignals()
{
    connect(cboFileType, &QComboBox::currentIndexChanged, this, &qrvrcFileManager::followFileType);
    connect(cmdGetFiles, &ImageButton::clicked, this, &qrvrcFileManager::checkDates);
    // Behind the key or click, which are not to wait for the tracker; the window may be gone when it has answered.
    const auto view = [this] { QTimer::singleShot(0, this, &qrvrcFileManager::viewFile); };
    connect(mfgFM, &GridView::doubleClicked, this, view);
    for (const Qt::Key key : {Qt::Key_Return, Qt::Key_Enter})
        connect(new QShortcut(key, mfgFM, nullptr, nullptr, Qt::WidgetShortcut), &QShortcut::activated, this, view);
    m_client.replies.on("GetFileList", this, [this](std::string_view body) { showList(body); });
    m_client.replies.on("GetRemFile", this,
                        [this](std::string_view body, const ReplyOwner& owner) { takeFile(body, owner); });
}

void qrvrcFileManager::Form_Activate()
{
    m_client.helpSection = u"Remote File Viewer"_s;
    cboFileType->setFocus();
}

const RemoteFileType& qrvrcFileManager::chosenType() const
{
    return remoteFileTypes.at(static_cast<std::size_t>(std::max(0, cboFileType->currentIndex())));
}

void qrvrcFileManager::followFileType()
{
    m_listedType = &chosenType();
    mfgFM->setEmptyText(u"Choose a file type and dates, then press Get Files."_s);
    showFiles({});
    if (m_listedType->isBackup)
        mfgFM->setColumns(backupColumns);
    else
        mfgFM->setColumns(logColumns);
    lblState->clear();
}

void qrvrcFileManager::checkDates()
{
    if (dtpFrom->date() > dtpTo->date())
        m_client.reporter.ReportMsg(MessageKind::Error,
                                    u"The 'Date From' field cannot be greater than the 'Date To' field!"_s);
    else
        QTimer::singleShot(0, this, &qrvrcFileManager::getFiles);
}

void qrvrcFileManager::getFiles()
{
    const QDate from = dtpFrom->date();
    const QDate to = dtpTo->date();
    if (m_isAsking)
        return;
    if (!m_client.link.isLoggedIn()) {
        lblState->setText(u"Not connected."_s);
        return;
    }
    const QPointer<QWidget> self(this);
    m_isAsking = true;
    m_isAnswered = false;
    m_listedType = &chosenType();
    lblState->setText(u"Asking the tracker for the files..."_s);
    const WaitEnd end = ask(m_client.link, getFileListRequest(m_client.session.user, m_profileId, *m_listedType,
                                                              travelDate(from.day(), from.month(), from.year()),
                                                              travelDate(to.day(), to.month(), to.year())));
    if (!self)
        return; // closed while its events ran
    m_isAsking = false;
    lblState->setText(end == WaitEnd::Replied && m_isAnswered ? QString() : stateAfter(end));
}

void qrvrcFileManager::showList(std::string_view body)
{
    m_isAnswered = true;
    if (body.empty())
        return;
    if (m_listedType != &chosenType())
        return; // the list of a type that the user has left meanwhile
    mfgFM->setEmptyText(u"The list could not be read."_s);
    std::vector<RemoteFile> files;
    // An entry that cannot be read ends the list; those before it are shown all the same.
    const auto show = qScopeGuard([&] { showFiles(std::move(files)); });
    const PackedReply packed = splitPackedReply(body);
    const std::string text = clsMFD::DecompressString(packed.data, packed.length);
    for (const std::string_view entry : splitFileList(text))
        files.push_back(decodeRemoteFile(entry, *m_listedType));
    mfgFM->setEmptyText(u"There are no files of this type between these dates."_s);
}

void qrvrcFileManager::showFiles(std::vector<RemoteFile> files)
{
    m_files = std::make_shared<const std::vector<RemoteFile>>(std::move(files));
    mfgFM->rows().setRows(static_cast<int>(m_files->size()), [this, shown = m_files, type = m_listedType](int row) {
        const RemoteFile& file = shown->at(static_cast<std::size_t>(row));
        const CodePage& codePage = m_client.codePage;
        GridRow cells{.cells = {QString::number(row + 1), codePage.toText(file.name)}, .pictures = {}};
        if (type->isBackup)
            cells.cells.push_back(codePage.toText(file.gameType));
        for (const std::string_view text :
             {std::string_view(file.date), fileTypeText(file.name), std::string_view(file.size)})
            cells.cells.push_back(codePage.toText(text));
        return cells;
    });
    if (!m_files->empty())
        mfgFM->selectRow(0);
}

void qrvrcFileManager::viewFile()
{
    const int row = mfgFM->selectedRow();
    if (row < 0 || m_isAsking)
        return;
    if (!m_client.link.isLoggedIn()) {
        lblState->setText(u"Not connected."_s);
        return;
    }
    const RemoteFile file = m_files->at(static_cast<std::size_t>(row));
    const QPointer<QWidget> self(this);
    m_isAsking = true;
    m_isAnswered = false;
    m_fetchedName = m_client.codePage.toText(file.name);
    lblState->setText(u"Fetching %1..."_s.arg(m_fetchedName));
    const WaitEnd end =
        ask(m_client.link, getRemFileRequest(m_client.session.user, m_profileId, remotePath(*m_listedType, file)));
    if (!self)
        return; // closed while its events ran
    m_isAsking = false;
    if (end != WaitEnd::Replied || !m_isAnswered)
        lblState->setText(stateAfter(end));
}

void qrvrcFileManager::takeFile(std::string_view body, const ReplyOwner& owner)
{
    m_isAnswered = true;
    if (body.empty()) {
        lblState->setText(u"The tracker has no content for %1."_s.arg(m_fetchedName));
        return;
    }
    lblState->setText(u"%1 could not be read."_s.arg(m_fetchedName)); // unless it can
    if (auto* pad = static_cast<qrvrcNotePad*>(m_client.windows.window(u"qrvrcNotePad"_s)))
        pad->showFile(m_fetchedName, splitPackedReply(body), owner);
    lblState->clear();
}
