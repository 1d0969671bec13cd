#include "updates/PreferencesPage.h"

#include "ui/QuietComboBox.h"
#include "updates/OptionRow.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

QGroupBox* box(const QString& name, const QString& title)
{
    auto* made = new QGroupBox(title);
    made->setObjectName(name);
    return made;
}

QCheckBox* tick(const QString& name, const QString& caption, const QString& tip)
{
    auto* made = new QCheckBox(caption);
    made->setObjectName(name);
    made->setToolTip(tip);
    return made;
}

QComboBox* pauseBox(const QString& tip)
{
    auto* made = new QuietComboBox;
    for (const std::chrono::seconds pause : refreshPauses)
        made->addItem(pause.count() == 0 ? u"Never"_s : u"Every %1 seconds"_s.arg(pause.count()),
                      static_cast<int>(pause.count()));
    made->setToolTip(tip);
    return made;
}

void choose(QComboBox& pauses, std::chrono::seconds pause)
{
    pauses.setCurrentIndex(pauses.findData(static_cast<int>(pause.count())));
}

std::chrono::seconds chosenIn(const QComboBox& pauses)
{
    return std::chrono::seconds(pauses.currentData().toInt());
}

} // namespace

PreferencesPage::PreferencesPage(QWidget* parent) : QWidget(parent)
{
    auto* groups = new QVBoxLayout(this);
    groups->setContentsMargins({});
    groups->addWidget(buildConnection());
    groups->addWidget(buildRefresh());
    groups->addWidget(buildAskBefore());
    groups->addStretch();
}

QGroupBox* PreferencesPage::buildConnection()
{
    QGroupBox* const frame = box(u"fmeConnection"_s, u"Connection"_s);
    auto* rows = new QVBoxLayout(frame);
    chkReconnect = tick(u"chkReconnect"_s, u"Reconnect by &itself"_s,
                        u"A connection that is lost without your doing is tried again after 5, 10, 20, 40 and then "
                        "every 60 seconds"_s);
    rows->addWidget(chkReconnect, 0, Qt::AlignLeft);
    return frame;
}

QGroupBox* PreferencesPage::buildRefresh()
{
    QGroupBox* const frame = box(u"fmeRefresh"_s, u"Refresh"_s);
    auto* form = new QFormLayout(frame);
    const QString tip = u"While the window is in front; at most once a minute while the program is minimised"_s;
    cboListRefresh = pauseBox(tip);
    addOptionRow(form, u"Profile &List:"_s, cboListRefresh, u"cboListRefresh"_s);
    cboPlayerRefresh = pauseBox(tip);
    addOptionRow(form, u"Pla&yer Statistics:"_s, cboPlayerRefresh, u"cboPlayerRefresh"_s);
    return frame;
}

QGroupBox* PreferencesPage::buildAskBefore()
{
    QGroupBox* const frame = box(u"fmeAskBefore"_s, u"Ask Before"_s);
    const QString tip = u"A question comes first that names what it is about"_s;
    chkAskDetach = tick(u"chkAskDetach"_s, u"&Detaching a profile"_s, tip);
    chkAskStop = tick(u"chkAskStop"_s, u"Stopping a &game"_s, tip);
    chkAskKick = tick(u"chkAskKick"_s, u"Kic&king an account"_s, tip);
    chkAskDeleteAccount = tick(u"chkAskDeleteAccount"_s, u"Deleting an acco&unt"_s, tip);
    auto* rows = new QGridLayout(frame);
    rows->addWidget(chkAskDetach, 0, 0, Qt::AlignLeft);
    rows->addWidget(chkAskStop, 1, 0, Qt::AlignLeft);
    rows->addWidget(chkAskKick, 0, 1, Qt::AlignLeft);
    rows->addWidget(chkAskDeleteAccount, 1, 1, Qt::AlignLeft);
    rows->setColumnStretch(0, 1);
    rows->setColumnStretch(1, 1);
    return frame;
}

void PreferencesPage::show(const Preferences& preferences)
{
    chkReconnect->setChecked(preferences.reconnects);
    choose(*cboListRefresh, preferences.listRefresh);
    choose(*cboPlayerRefresh, preferences.playerRefresh);
    chkAskDetach->setChecked(preferences.asksBefore.detach);
    chkAskStop->setChecked(preferences.asksBefore.stopGame);
    chkAskKick->setChecked(preferences.asksBefore.kick);
    chkAskDeleteAccount->setChecked(preferences.asksBefore.deleteAccount);
}

Preferences PreferencesPage::chosen() const
{
    return {.reconnects = chkReconnect->isChecked(),
            .listRefresh = chosenIn(*cboListRefresh),
            .playerRefresh = chosenIn(*cboPlayerRefresh),
            .asksBefore = {.detach = chkAskDetach->isChecked(),
                           .stopGame = chkAskStop->isChecked(),
                           .kick = chkAskKick->isChecked(),
                           .deleteAccount = chkAskDeleteAccount->isChecked()}};
}
