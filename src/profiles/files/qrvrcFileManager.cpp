#include "profiles/files/qrvrcFileManager.h"

#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "link/Ask.h"
#include "link/PackedReply.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "platform/system/CodePage.h"
#include "profiles/viewer/qrvrcNotePad.h"
#include "ui/CutNote.h"
#include "ui/ElidedLabel.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"
#include "ui/QuietComboBox.h"
#include "ui/WindowRegistry.h"

#include <QComboBox>
#include <QDateEdit>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QShortcut>
#include <QTimer>
#include <QVBoxLayout>

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

// Pixels.
constexpr QMargins pageMargins(8, 6, 8, 8);
constexpr int captionGap = 2;
constexpr int choiceGap = 16;
constexpr int choiceHeight = 26;
constexpr int typeWidth = 168;
constexpr int dateWidth = 106;
constexpr int buttonWidth = 110;
constexpr int lineHeight = 20;
constexpr int lineGap = 2;

/// Bytes of a list up to which it is read at once.
constexpr std::int32_t maxDirectBytes = 64 * 1024;

const QString readingList = u"Reading the list of files..."_s;
const QString changedMeanwhile = u"The type or the dates were changed meanwhile. Get Files asks again."_s;

std::string travelDateOf(const QDateEdit* picker)
{
    const QDate date = picker->date();
    return travelDate(date.day(), date.month(), date.year());
}

} // namespace

qrvrcFileManager::qrvrcFileManager(Client& client, ChosenProfile profile, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_profile(std::move(profile)),
      m_listedType(&remoteFileTypes.front()),
      m_files(std::make_shared<const std::vector<RemoteFile>>())
{
    setObjectName(u"qrvrcFileManager"_s);
    buildControls();
    layOut();
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
    cboFileType = new QuietComboBox(this);
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
    lblCut = new CutNote(u"lblCut"_s, this);
    lblHint =
        label(u"lblHint"_s, u"Double Left-Click an item in the list to download and view the contents of the file."_s);
    lblState = label(u"lblState"_s, {});
    lblTitle = new ElidedLabel(u"lblTitle"_s, this);
    lblTitle->setText(u"Files of %1"_s.arg(m_client.codePage.toText(m_profile.name)));
}

void qrvrcFileManager::layOut()
{
    auto* choices = new QHBoxLayout;
    choices->setSpacing(captionGap);
    const auto add = [choices](QLabel* caption, QWidget* field, int width) {
        field->setFixedSize(width, choiceHeight);
        choices->addWidget(caption);
        choices->addWidget(field);
        choices->addSpacing(choiceGap);
    };
    add(lblFileType, cboFileType, typeWidth);
    add(lblFrom, dtpFrom, dateWidth);
    add(lblTo, dtpTo, dateWidth);
    choices->addStretch();
    cmdGetFiles->face()->setFixedWidth(buttonWidth);
    choices->addWidget(cmdGetFiles->face());

    auto* page = new QVBoxLayout(this);
    page->setContentsMargins(pageMargins);
    page->setSpacing(lineGap);
    page->addLayout(choices);
    page->addWidget(lblTitle);
    page->addWidget(mfgFM, 1);
    page->addWidget(lblCut);
    page->addWidget(lblHint);
    page->addWidget(lblState);
    for (QLabel* line : std::initializer_list<QLabel*>{lblTitle, lblHint, lblState})
        line->setMinimumHeight(lineHeight);
    QWidget* previous = cboFileType;
    for (QWidget* next : std::initializer_list<QWidget*>{dtpFrom, dtpTo, cmdGetFiles, mfgFM}) {
        setTabOrder(previous, next);
        previous = next;
    }
}

void qrvrcFileManager::wireSignals()
{
    connect(cboFileType, &QComboBox::currentIndexChanged, this, &qrvrcFileManager::followFileType);
    for (const QDateEdit* picker : {dtpFrom, dtpTo})
        connect(picker, &QDateEdit::dateChanged, this, [this] { forgetWish(); });
    connect(cmdGetFiles, &ImageButton::clicked, this, &qrvrcFileManager::chooseFiles);
    connect(mfgFM, &GridView::rowOpened, this, &qrvrcFileManager::openRow);
    m_client.replies.on("GetFileList", this,
                        [this](std::string_view body, const ReplyOwner& owner) { takeList(body, owner); });
    m_client.replies.on("GetRemFile", this,
                        [this](std::string_view body, const ReplyOwner& owner) { takeFile(body, owner); });
}

void qrvrcFileManager::Form_Activate()
{
    cboFileType->setFocus();
}

const RemoteFileType& qrvrcFileManager::chosenType() const
{
    return remoteFileTypes.at(static_cast<std::size_t>(std::max(0, cboFileType->currentIndex())));
}

void qrvrcFileManager::followFileType()
{
    forgetWish();
    mfgFM->setEmptyText(u"Choose a file type and dates, then press Get Files."_s);
    showFiles({}, chosenType());
    lblCut->tell(false, 0);
    if (m_listedType->isBackup)
        mfgFM->setColumns(backupColumns);
    else
        mfgFM->setColumns(logColumns);
    lblState->clear();
}

void qrvrcFileManager::chooseFiles()
{
    if (dtpFrom->date() > dtpTo->date()) {
        m_client.reporter.ReportMsg(MessageKind::Error,
                                    u"The 'Date From' field cannot be greater than the 'Date To' field!"_s);
        return;
    }
    m_wanted = {.type = &chosenType(), .from = travelDateOf(dtpFrom), .to = travelDateOf(dtpTo)};
    // Behind the click, which is not to wait for the tracker.
    QTimer::singleShot(0, this, &qrvrcFileManager::getFiles);
}

/// Asks for the list that is wanted. One that the user wants while another request is under way comes behind that.
void qrvrcFileManager::getFiles()
{
    const QPointer<QWidget> self(this);
    while (m_wanted && !m_isAsking) {
        m_asked = *m_wanted;
        const bool isAnswered = exchange(getFileListRequest(m_client.link.user(), m_profile.id, m_asked),
                                         u"Asking the tracker for the files..."_s);
        if (!self)
            return; // closed while its events ran
        const bool wasWanted = m_wanted == m_asked;
        if (wasWanted || !isAnswered)
            m_wanted.reset();
        if (isAnswered)
            lblState->setText(m_reading.isUnderWay()  ? readingList
                              : wasWanted || m_wanted ? QString()
                                                      : changedMeanwhile);
    }
}

/// Sends a request and says what is going on.
/// @return whether it was answered; otherwise the window may be gone
bool qrvrcFileManager::exchange(const Request& request, const QString& doing)
{
    if (!m_client.link.isLoggedIn()) {
        lblState->setText(u"Not connected."_s);
        return false;
    }
    const QPointer<QWidget> self(this);
    m_isAsking = true;
    lblState->setText(doing);
    const WaitEnd end = ask(m_client.link, request);
    if (!self)
        return false;
    m_isAsking = false;
    if (end != WaitEnd::Done)
        lblState->setText(u"The tracker did not answer."_s);
    return end == WaitEnd::Done;
}

/// What was asked for is not what is chosen any more.
void qrvrcFileManager::forgetWish()
{
    m_wanted.reset();
    if (m_reading.isUnderWay())
        lblState->setText(changedMeanwhile);
    m_reading.drop();
}

void qrvrcFileManager::takeList(std::string_view body, const ReplyOwner& owner)
{
    if (body.empty() || m_wanted != m_asked)
        return; // nothing to show, or nothing that is still wanted
    m_reading.drop();
    const RemoteFileType& type = *m_asked.type;
    PackedReply packed;
    try {
        packed = splitPackedReply(body);
    } catch (const RuntimeError& error) {
        showList({.damage = error}, type);
        return;
    }
    if (packed.length <= maxDirectBytes) {
        showList(readFileList(packed, type, m_client.bounds), type);
        return;
    }
    m_reading.start([packed, owner, &type, bounds = m_client.bounds] { return readFileList(packed, type, bounds); },
                    [this, &type](RemoteFileList list) {
                        lblState->clear();
                        m_client.reporter.trap("HandleData", [&] { showList(std::move(list), type); });
                    });
}

/// What cannot be read ends the list; what came before it is shown all the same.
/// @throws RuntimeError for what ended it
void qrvrcFileManager::showList(RemoteFileList list, const RemoteFileType& type)
{
    mfgFM->setEmptyText(list.damage ? u"The list could not be read."_s
                                    : u"There are no files of this type between these dates."_s);
    showFiles(std::move(list.files), type);
    lblCut->tell(list.isCut, std::ssize(*m_files));
    if (list.damage)
        throw *list.damage;
}

/// @param type  of all of them
void qrvrcFileManager::showFiles(std::vector<RemoteFile> files, const RemoteFileType& type)
{
    m_listedType = &type;
    m_files = std::make_shared<const std::vector<RemoteFile>>(std::move(files));
    mfgFM->rows().setRows(static_cast<int>(m_files->size()), [this, shown = m_files, &type](int row) {
        const RemoteFile& file = shown->at(static_cast<std::size_t>(row));
        const CodePage& codePage = m_client.codePage;
        GridRow cells{.cells = {QString::number(row + 1), codePage.toText(file.name)}, .pictures = {}};
        if (type.isBackup)
            cells.cells.push_back(codePage.toText(file.gameType));
        for (const std::string_view text :
             {std::string_view(file.date), fileTypeText(file.name), std::string_view(file.size)})
            cells.cells.push_back(codePage.toText(text));
        return cells;
    });
    if (!m_files->empty())
        mfgFM->selectRow(0);
}

void qrvrcFileManager::openRow(int row)
{
    const RemoteFile& file = m_files->at(static_cast<std::size_t>(row));
    // Behind the key or click, which are not to wait for the tracker; the rows may be others by then.
    QTimer::singleShot(0, this,
                       [this, name = m_client.codePage.toText(file.name), path = remotePath(*m_listedType, file)] {
                           viewFile(name, path);
                       });
}

/// @param path  on the host
void qrvrcFileManager::viewFile(const QString& name, const std::string& path)
{
    if (m_isAsking)
        return;
    m_fetchedName = name;
    if (exchange(getRemFileRequest(m_client.link.user(), m_profile.id, path), u"Fetching %1..."_s.arg(name)))
        getFiles();
}

void qrvrcFileManager::takeFile(std::string_view body, const ReplyOwner& owner)
{
    if (body.empty()) {
        lblState->setText(u"The tracker has no content for %1."_s.arg(m_fetchedName));
        return;
    }
    lblState->setText(u"%1 could not be read."_s.arg(m_fetchedName)); // unless it can
    if (auto* pad = m_client.windows.window<qrvrcNotePad>())
        pad->showFile(m_fetchedName, splitPackedReply(body), owner);
    lblState->clear();
}
