// What the profile editor's form shows and holds. What is done with it is in qrvrcModify.cpp.

#include "profiles/qrvrcModify.h"

#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "platform/CodePage.h"
#include "ui/ImageButton.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPointer>
#include <QProgressBar>

using namespace Qt::StringLiterals;

namespace {

const QString noSystem = u"Please select a Stats System"_s;
const QString emptyUrl = u"http://"_s;

std::int32_t valueOf(const QCheckBox* box)
{
    return box->isChecked() ? 1 : 0;
}

} // namespace

void qrvrcModify::clearForm()
{
    txtName->clear();
    lstUrls->clear();
    clearEntry();
    txtSrHost->setText(u"Host"_s);
    cboLL->setCurrentIndex(0);
}

/// Shows `settings` as those that were read.
void qrvrcModify::showSettings(const ProfileSettings& settings)
{
    const CodePage& codePage = m_client.codePage;
    txtName->setText(codePage.toText(settings.name));
    lstUrls->clear();
    for (const std::string& entry : settings.scripts)
        lstUrls->addItem(codePage.toText(entry));
    txtSrHost->setText(codePage.toText(settings.hostName));
    chkAcs->setChecked(settings.connectOnStart != 0);
    chkAra->setChecked(settings.announceRanks != 0);
    const bool isLeaning = settings.leftLeaning >= 0 && settings.leftLeaning < cboLL->count();
    cboLL->setCurrentIndex(isLeaning ? settings.leftLeaning : -1);
    chkRbm->setChecked(settings.reportToMaster != 0);
    chkAntiStatsPad->setChecked(settings.antiPadding != 0);
    txtPadtime->setText(codePage.toText(settings.padMinutes));
    txtPadnum->setText(codePage.toText(settings.padPlayers));

    cboStats->clear();
    cboStats->addItem(noSystem);
    for (const std::string& system : settings.statsSystems) {
        if (const QString text = codePage.toText(system); text != noSystem)
            cboStats->addItem(text);
    }
    // One that the tracker did not list joins the list, so that saving loses nothing.
    if (const QString chosen = codePage.toText(settings.statsSystem); !chosen.isEmpty()) {
        if (cboStats->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive) < 0)
            cboStats->addItem(chosen);
        cboStats->setCurrentIndex(cboStats->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive));
    }
    m_read = settings;
    m_shown = typed();
}

ProfileSettings qrvrcModify::typed() const
{
    ProfileSettings settings{
        .name = bytesOf(txtName),
        .scripts = {},
        .hostName = bytesOf(txtSrHost),
        .connectOnStart = valueOf(chkAcs),
        .announceRanks = valueOf(chkAra),
        .leftLeaning = cboLL->currentIndex(),
        .reportToMaster = valueOf(chkRbm),
        .antiPadding = valueOf(chkAntiStatsPad),
        .padMinutes = bytesOf(txtPadtime),
        .padPlayers = bytesOf(txtPadnum),
        .statsSystem = m_client.codePage.toBytes(cboStats->currentText()),
        .statsSystems = {},
    };
    for (int row = 0; row < lstUrls->count(); ++row)
        settings.scripts.push_back(m_client.codePage.toBytes(lstUrls->item(row)->text()));
    return settings;
}

/// Makes room for the next script entry.
void qrvrcModify::clearEntry()
{
    txtUrl->setText(emptyUrl);
    txtServerid->clear();
}

bool qrvrcModify::hasChanges() const
{
    return typed() != m_shown || txtUrl->text() != emptyUrl || !txtServerid->text().isEmpty();
}

std::string qrvrcModify::bytesOf(const QLineEdit* field) const
{
    return m_client.codePage.toBytes(field->text());
}

/// Whether the host's code page has what the field holds; says so when not.
bool qrvrcModify::isSendable(QLineEdit* field)
{
    const QString foreign = m_client.codePage.firstForeign(field->text());
    if (foreign.isEmpty())
        return true;
    complain(MessageKind::Failed, u"The character '%1' cannot be sent to the host!"_s.arg(foreign), field);
    return false;
}

/// Says what is wrong with a field and leads the user there.
void qrvrcModify::complain(MessageKind kind, const QString& text, QWidget* field)
{
    const QPointer<QWidget> wrong(field);
    m_client.reporter.ReportMsg(kind, text);
    if (!wrong || !wrong->isVisible())
        return;
    wrong->setFocus();
    if (auto* edit = qobject_cast<QLineEdit*>(wrong))
        edit->selectAll();
}

void qrvrcModify::setBusy(bool busy)
{
    m_isBusy = busy;
    if (busy)
        setCursor(Qt::BusyCursor);
    else
        unsetCursor();
    followState();
}

/// Says something in the window, with an address cut to the line below.
void qrvrcModify::note(const QString& text, const QString& address)
{
    const QString cut = lblCheck->fontMetrics().elidedText(address, Qt::ElideMiddle, lblCheck->width());
    lblCheck->setText(cut.isEmpty() ? text : text + u'\n' + cut);
    lblCheck->setToolTip(cut == address ? QString() : address.toHtmlEscaped());
}

void qrvrcModify::followState()
{
    for (QWidget* control : std::initializer_list<QWidget*>{txtUrl, txtServerid, cmdAddurl})
        control->setEnabled(!m_isBusy);
    pbCheck->setVisible(m_fetch != nullptr);
    cmdStopCheck->setVisible(m_fetch != nullptr);
    mnuRemove->setEnabled(!lstUrls->selectedItems().isEmpty());
    cmdModify->setVisible(EditMode == 1);
    cmdModify->setEnabled(m_isRead && !m_isBusy);
}
