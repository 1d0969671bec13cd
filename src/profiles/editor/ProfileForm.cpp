#include "profiles/editor/ProfileForm.h"

#include "base/Text.h"
#include "diagnostics/report/Reporter.h"
#include "platform/system/CodePage.h"
#include "profiles/editor/FormRows.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLineEdit>

#include <array>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int columnGap = 8;
constexpr int frameGap = 6;
constexpr int numberWidth = 64;
constexpr int choiceWidth = 110;

// How the two columns share the width.
constexpr int leftShare = 446;
constexpr int rightShare = 287;

const QString noSystem = u"Please select a Stats System"_s;

QGroupBox* frame(const QString& name, const QString& caption, QWidget* parent)
{
    auto* box = new QGroupBox(caption, parent);
    box->setObjectName(name);
    return box;
}

QVBoxLayout* column(QHBoxLayout* columns, int share)
{
    auto* layout = new QVBoxLayout;
    layout->setSpacing(frameGap);
    columns->addLayout(layout, share);
    return layout;
}

std::int32_t valueOf(const QCheckBox* box)
{
    return box->isChecked() ? 1 : 0;
}

} // namespace

/// Tab goes through the controls in the order in which they are built.
ProfileForm::ProfileForm(const CodePage& codePage, PictureStore& pictures, QWidget* parent)
    : QWidget(parent),
      m_codePage(codePage)
{
    buildProfile();
    fmeServer = new ServerForm(codePage, pictures, this);
    buildPadding();
    buildMisc();
    layOut();
    clear();
    showSettings({});
}

void ProfileForm::buildProfile()
{
    fmeProfile = frame(u"fmeProfile"_s, u"Profile Details"_s, this);
    txtName = rows::field(u"txtName"_s, u"Profile Name"_s, fmeProfile);
    txtName->setReadOnly(true); // the tracker takes no new name
    QPalette still = txtName->palette();
    still.setColor(QPalette::Base, still.color(QPalette::Window));
    txtName->setPalette(still);
    cboStats = rows::choice(u"cboStats"_s, u"Stats System"_s, fmeProfile);
}

void ProfileForm::buildPadding()
{
    fmePadding = frame(u"fmePadding"_s, u"Anti Stats Padding Options"_s, this);
    chkAntiStatsPad = rows::checkBox(u"chkAntiStatsPad"_s, u"Enable Anti Stats Padding:"_s, fmePadding);
    txtPadnum = rows::field(u"txtPadnum"_s, u"Minimum number of players"_s, fmePadding);
    txtPadtime = rows::field(u"txtPadtime"_s, u"Minimum number of minutes"_s, fmePadding);
}

void ProfileForm::buildMisc()
{
    fmeMisc = frame(u"fmeMisc"_s, u"Misc Options"_s, this);
    cboLL = rows::choice(u"cboLL"_s, u"Left Leaning Players"_s, fmeMisc);
    cboLL->addItems({u"Ignore"_s, u"Disarm"_s, u"Kill!"_s});
    chkAra = rows::checkBox(u"chkAra"_s, u"Announce Ranks/Awards"_s, fmeMisc);
    chkRbm = rows::checkBox(u"chkRbm"_s, u"Report to Quorvane Master Server List"_s, fmeMisc);
    chkAcs = rows::checkBox(u"chkAcs"_s, u"Auto connect on startup"_s, fmeMisc);
    chkAcs->setToolTip(u"Connects to the game when the tracker starts, if the game runs"_s);
}

void ProfileForm::layOut()
{
    QGridLayout* profile = rows::gridIn(fmeProfile);
    profile->setColumnMinimumWidth(0, rows::captionWidth);
    profile->setColumnStretch(1, 1);
    rows::add(profile, u"Profile Name:"_s, txtName);
    rows::add(profile, u"Stats System:"_s, cboStats);

    QGridLayout* padding = rows::gridIn(fmePadding);
    padding->setColumnStretch(0, 1);
    rows::add(padding, chkAntiStatsPad);
    rows::add(padding, u"Minimum number of players:"_s, txtPadnum, 1, numberWidth);
    rows::add(padding, u"Minimum number of minutes:"_s, txtPadtime, 1, numberWidth);

    QGridLayout* misc = rows::gridIn(fmeMisc);
    misc->setColumnStretch(0, 1);
    rows::add(misc, u"Left Leaning Players"_s, cboLL, 1, choiceWidth);
    for (QCheckBox* box : {chkAra, chkRbm, chkAcs})
        rows::add(misc, box);

    auto* columns = new QHBoxLayout(this);
    columns->setContentsMargins({});
    columns->setSpacing(columnGap);
    QVBoxLayout* left = column(columns, leftShare);
    left->addWidget(fmeProfile);
    left->addWidget(fmeServer, 1);
    QVBoxLayout* right = column(columns, rightShare);
    right->addWidget(fmePadding);
    right->addWidget(fmeMisc);
    right->addStretch();
}

void ProfileForm::clear()
{
    txtName->clear();
    fmeServer->clear();
    cboLL->setCurrentIndex(0);
}

void ProfileForm::showSettings(const ProfileSettings& settings)
{
    txtName->setText(m_codePage.toText(settings.name));
    fmeServer->showSettings(settings);
    chkAcs->setChecked(settings.connectOnStart != 0);
    chkAra->setChecked(settings.announceRanks != 0);
    const bool isLeaning = settings.leftLeaning >= 0 && settings.leftLeaning < cboLL->count();
    cboLL->setCurrentIndex(isLeaning ? settings.leftLeaning : -1);
    chkRbm->setChecked(settings.reportToMaster != 0);
    chkAntiStatsPad->setChecked(settings.antiPadding != 0);
    txtPadtime->setText(m_codePage.toText(settings.padMinutes));
    txtPadnum->setText(m_codePage.toText(settings.padPlayers));
    showSystems(settings);
    takeAsRead(settings);
}

void ProfileForm::showSystems(const ProfileSettings& settings)
{
    cboStats->clear();
    cboStats->addItem(noSystem);
    for (const std::string& system : settings.statsSystems) {
        if (const QString text = m_codePage.toText(system); text != noSystem)
            cboStats->addItem(text);
    }
    // One that the tracker did not list joins the list, so that saving loses nothing.
    if (const QString chosen = m_codePage.toText(settings.statsSystem); !chosen.isEmpty()) {
        if (cboStats->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive) < 0)
            cboStats->addItem(chosen);
        cboStats->setCurrentIndex(cboStats->findText(chosen, Qt::MatchExactly | Qt::MatchCaseSensitive));
    }
}

void ProfileForm::takeAsRead(const ProfileSettings& settings)
{
    m_read = settings;
    m_shown = typed();
}

ProfileSettings ProfileForm::changed() const
{
    return withChanges(m_read, m_shown, typed());
}

ProfileSettings ProfileForm::typed() const
{
    return {
        .name = bytesOf(txtName),
        .scripts = fmeServer->scripts(),
        .hostName = fmeServer->hostName(),
        .connectOnStart = valueOf(chkAcs),
        .announceRanks = valueOf(chkAra),
        .leftLeaning = cboLL->currentIndex(),
        .reportToMaster = valueOf(chkRbm),
        .antiPadding = valueOf(chkAntiStatsPad),
        .padMinutes = bytesOf(txtPadtime),
        .padPlayers = bytesOf(txtPadnum),
        .statsSystem = m_codePage.toBytes(cboStats->currentText()),
        .statsSystems = {},
    };
}

bool ProfileForm::isChanged() const
{
    return typed() != m_shown || fmeServer->hasEntry();
}

QString ProfileForm::profileName() const
{
    return txtName->text();
}

std::optional<FieldFault> ProfileForm::fault() const
{
    if (cboStats->currentIndex() == 0)
        return FieldFault{MessageKind::ActionRequired, u"You have not selected a Stats System!"_s, cboStats};
    const ProfileSettings now = typed();
    const std::array numbers{std::pair{txtPadnum, &ProfileSettings::padPlayers},
                             std::pair{txtPadtime, &ProfileSettings::padMinutes}};
    for (const auto& [field, setting] : numbers) {
        const std::string& text = now.*setting;
        if (text != m_shown.*setting && !(isNumeric(text) && parseInt32(text)))
            return FieldFault{MessageKind::ActionRequired, u"'%1' must be a number!"_s.arg(field->accessibleName()),
                              field};
    }
    return fmeServer->fault();
}

Script ProfileForm::script() const
{
    return fmeServer->entry(m_codePage.toBytes(cboStats->currentText()));
}

std::string ProfileForm::bytesOf(const QLineEdit* field) const
{
    return m_codePage.toBytes(field->text());
}

void ProfileForm::takeKeyboard()
{
    cboStats->setFocus();
}
