#include "profiles/editor/ServerForm.h"

#include "base/Text.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "profiles/editor/FormRows.h"
#include "ui/CopyActions.h"
#include "ui/ImageButton.h"

#include <QAction>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>

#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int listGap = 8; // below the list
constexpr int rowGap = 6;
constexpr int idWidth = 150;
constexpr int buttonWidth = 100;
constexpr int noteHeight = 32;
constexpr int noteGap = 2;
constexpr int progressHeight = 8;

const QString emptyUrl = u"http://"_s;

/// Its room stays while it is hidden.
void keepRoom(QWidget* widget)
{
    QSizePolicy policy = widget->sizePolicy();
    policy.setRetainSizeWhenHidden(true);
    widget->setSizePolicy(policy);
}

/// At the right of the last row.
void addButton(QGridLayout* grid, const ImageButton* button)
{
    button->face()->setFixedWidth(buttonWidth);
    grid->addWidget(button->face(), grid->rowCount() - 1, 2);
}

} // namespace

ServerForm::ServerForm(const CodePage& codePage, PictureStore& pictures, QWidget* parent)
    : QGroupBox(u"Server Details"_s, parent),
      m_codePage(codePage)
{
    setObjectName(u"fmeServer"_s);
    buildList();
    buildEntry(pictures);
    layOut();
    wireSignals();
    clear();
    showWaiting(Waiting::Nothing);
}

void ServerForm::buildList()
{
    lstUrls = new QListWidget(this);
    lstUrls->setObjectName(u"lstUrls"_s);
    lstUrls->setAccessibleName(u"Url(s) to PHP Scripts"_s);
    lstUrls->setStyleSheet(u"QListView::item { padding: 2px; }"_s);
    addCopyActions(lstUrls);
    mnuRemove = new QAction(u"&Remove"_s, lstUrls);
    mnuRemove->setObjectName(u"mnuRemove"_s);
    mnuRemove->setShortcut(QKeySequence::Delete);
    mnuRemove->setShortcutContext(Qt::WidgetShortcut);
    lstUrls->addAction(mnuRemove);
}

void ServerForm::buildEntry(PictureStore& pictures)
{
    txtUrl = rows::field(u"txtUrl"_s, u"Url to add"_s, this);
    txtServerid = rows::field(u"txtServerid"_s, u"Server ID"_s, this);
    cmdAddurl = new ImageButton(u"cmdAddurl"_s, u"Add Url"_s, pictures, this);
    lblCheck = new QLabel(this);
    lblCheck->setObjectName(u"lblCheck"_s);
    lblCheck->setTextFormat(Qt::PlainText);
    lblCheck->setWordWrap(true);
    pbCheck = new QProgressBar(this);
    pbCheck->setObjectName(u"pbCheck"_s);
    pbCheck->setAccessibleName(u"Check under way"_s);
    pbCheck->setRange(0, 0);
    pbCheck->setTextVisible(false);
    cmdStopCheck = new ImageButton(u"cmdStopCheck"_s, u"Stop"_s, pictures, this);
    cmdStopCheck->setAccessibleName(u"Stop the check"_s);
    txtSrHost = rows::field(u"txtSrHost"_s, u"Host Name"_s, this);
    txtSrHost->setToolTip(u"The name from which messages are sent in the game"_s);
}

/// The list takes what is left by the rows below it.
void ServerForm::layOut()
{
    auto* entry = new QGridLayout;
    entry->setVerticalSpacing(rowGap);
    entry->setHorizontalSpacing(rows::cellGap);
    entry->setColumnMinimumWidth(0, rows::captionWidth);
    entry->setColumnStretch(1, 1);
    rows::add(entry, u"Url:"_s, txtUrl, 2);
    rows::add(entry, u"Server ID:"_s, txtServerid, 1, idWidth);
    addButton(entry, cmdAddurl);
    layOutCheck(entry);
    rows::add(entry, u"Host Name:"_s, txtSrHost, 2);

    auto* server = new QVBoxLayout(this);
    server->setContentsMargins(rows::frameInsets);
    server->setSpacing(0);
    server->addWidget(rows::captionOf(lstUrls, u"Url(s) to PHP Scripts:"_s));
    server->addWidget(lstUrls, 1);
    server->addSpacing(listGap);
    server->addLayout(entry);
}

/// What comes and goes with a check leaves its room.
void ServerForm::layOutCheck(QGridLayout* entry)
{
    lblCheck->setFixedHeight(noteHeight);
    lblCheck->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed); // whatever address it shows
    pbCheck->setFixedHeight(progressHeight);
    keepRoom(pbCheck);
    keepRoom(cmdStopCheck->face());
    auto* check = new QVBoxLayout;
    check->setSpacing(noteGap);
    check->addWidget(lblCheck);
    check->addWidget(pbCheck);
    entry->addLayout(check, entry->rowCount(), 0, 1, 2);
    addButton(entry, cmdStopCheck);
}

void ServerForm::wireSignals()
{
    connect(cmdAddurl, &ImageButton::clicked, this, &ServerForm::addWanted);
    for (QLineEdit* entry : {txtUrl, txtServerid})
        connect(entry, &QLineEdit::returnPressed, this, &ServerForm::addWanted);
    connect(cmdStopCheck, &ImageButton::clicked, this, &ServerForm::stopWanted);
    connect(mnuRemove, &QAction::triggered, this, &ServerForm::removeScript);
    connect(lstUrls, &QListWidget::itemSelectionChanged, this, &ServerForm::followSelection);
}

void ServerForm::clear()
{
    showSettings({});
    clearEntry();
}

void ServerForm::showSettings(const ProfileSettings& settings)
{
    lstUrls->clear();
    for (const std::string& script : settings.scripts)
        lstUrls->addItem(m_codePage.toText(script));
    followSelection(); // a list that is cleared does not tell that nothing is selected any more
    txtSrHost->setText(m_codePage.toText(settings.hostName));
}

std::vector<std::string> ServerForm::scripts() const
{
    std::vector<std::string> entries;
    entries.reserve(static_cast<std::size_t>(lstUrls->count()));
    for (int row = 0; row < lstUrls->count(); ++row)
        entries.push_back(m_codePage.toBytes(lstUrls->item(row)->text()));
    return entries;
}

std::string ServerForm::hostName() const
{
    return bytesOf(txtSrHost);
}

std::optional<FieldFault> ServerForm::fault() const
{
    return foreignIn(txtSrHost);
}

bool ServerForm::hasEntry() const
{
    return txtUrl->text() != emptyUrl || !txtServerid->text().isEmpty();
}

Script ServerForm::entry(std::string system) const
{
    return {std::move(system), bytesOf(txtUrl), std::string(trimmed(bytesOf(txtServerid)))};
}

std::optional<FieldFault> ServerForm::fault(const Script& script) const
{
    if (script.serverId.empty())
        return FieldFault{MessageKind::ActionRequired, u"You have not entered a Server ID Code!"_s, txtServerid};
    if (script.url.empty() || script.url.find(entrySeparator) != std::string::npos)
        return FieldFault{MessageKind::Error, u"The URL you entered is invalid!"_s, txtUrl};
    if (script.serverId.find(entrySeparator) != std::string::npos)
        return FieldFault{MessageKind::ActionRequired, u"The Server ID Code must not contain '|'!"_s, txtServerid};
    if (const auto foreign = foreignIn(txtUrl))
        return foreign;
    return foreignIn(txtServerid);
}

std::optional<FieldFault> ServerForm::fault(ScriptFinding finding) const
{
    if (finding == ScriptFinding::Missing)
        return FieldFault{MessageKind::Failed,
                          u"The URL you entered is valid, but the Quorvane Serverside Scripts were not found!"_s,
                          txtUrl};
    if (finding == ScriptFinding::UnknownId)
        return FieldFault{MessageKind::Failed, u"Server ID Validation Failed!"_s, txtServerid};
    return {};
}

/// What the host's code page does not have.
std::optional<FieldFault> ServerForm::foreignIn(QLineEdit* field) const
{
    const QString unsendable = m_codePage.sendFault(field->text());
    return unsendable.isEmpty() ? std::nullopt : std::optional(FieldFault{MessageKind::Failed, unsendable, field});
}

void ServerForm::add(const Script& script)
{
    lstUrls->addItem(m_codePage.toText(scriptEntry(script.url, script.serverId)));
    lstUrls->scrollToBottom();
    clearEntry();
    txtUrl->setFocus();
}

void ServerForm::clearEntry()
{
    txtUrl->setText(emptyUrl);
    txtServerid->clear();
}

void ServerForm::removeScript()
{
    for (QListWidgetItem* item : lstUrls->selectedItems())
        delete item;
}

void ServerForm::followSelection()
{
    mnuRemove->setEnabled(!lstUrls->selectedItems().isEmpty());
}

std::string ServerForm::bytesOf(const QLineEdit* field) const
{
    return m_codePage.toBytes(field->text());
}

void ServerForm::note(const QString& text, const QString& address)
{
    const QString cut = lblCheck->fontMetrics().elidedText(address, Qt::ElideMiddle, lblCheck->width());
    lblCheck->setText(cut.isEmpty() ? text : text + u'\n' + cut);
    // Escaped text without a tag would be shown as it is, "&amp;" and all.
    lblCheck->setToolTip(cut == address ? QString() : u"<span>%1</span>"_s.arg(address.toHtmlEscaped()));
}

void ServerForm::showWaiting(Waiting waiting)
{
    const bool isChecking = waiting == Waiting::Scripts;
    const bool wasStopping = cmdStopCheck->hasFocus();
    for (QWidget* control : std::initializer_list<QWidget*>{txtUrl, txtServerid, cmdAddurl})
        control->setEnabled(waiting == Waiting::Nothing);
    pbCheck->setVisible(isChecking);
    cmdStopCheck->setVisible(isChecking);
    if (isChecking)
        cmdStopCheck->setFocus();
    else if (wasStopping)
        cmdAddurl->setFocus();
}
