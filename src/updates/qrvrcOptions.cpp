#include "updates/qrvrcOptions.h"

#include "client/Client.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/Reporter.h"
#include "login/KeptPasswords.h"
#include "platform/net/Inet.h"
#include "platform/system/CodePageTables.h"
#include "ui/ImageButton.h"
#include "ui/QuietComboBox.h"
#include "updates/OptionRow.h"
#include "updates/PreferencesPage.h"
#include "updates/UpdateKey.h"
#include "updates/UpdateOptions.h"
#include "updates/UpdateServices.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QSpinBox>
#include <QStackedLayout>
#include <QTabBar>
#include <QUrl>
#include <QVBoxLayout>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

const QString otherLocation = u"Other Location"_s;

// Pixels.
constexpr QMargins pageMargins(8, 2, 8, 8);
constexpr int gap = 8;
constexpr int saveWidth = 130;

QString titleOf(std::string_view title, std::string_view name)
{
    return u"%1 (%2)"_s.arg(QLatin1String(title.data(), static_cast<qsizetype>(title.size())),
                            QLatin1String(name.data(), static_cast<qsizetype>(name.size())));
}

} // namespace

qrvrcOptions::qrvrcOptions(Client& client, UpdateOptions& options, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_options(options)
{
    setObjectName(u"qrvrcOptions"_s);
    auto* frame = new QGroupBox(u"Options"_s, this);
    frame->setObjectName(u"Frame1"_s);
    auto* programPage = new QWidget;
    auto* groups = new QVBoxLayout(programPage);
    groups->setContentsMargins({});
    groups->addWidget(buildUpdates());
    groups->addWidget(buildProgram());
    groups->addStretch();
    m_use = new PreferencesPage;
    auto* pages = new QStackedLayout;
    pages->addWidget(programPage);
    pages->addWidget(m_use);
    auto* inFrame = new QVBoxLayout(frame);
    inFrame->addLayout(pages);
    // Below the pages, so that the first one is where it was.
    tsOptions = new QTabBar;
    tsOptions->setObjectName(u"tsOptions"_s);
    tsOptions->setAccessibleName(u"Pages of options"_s);
    tsOptions->setShape(QTabBar::RoundedSouth);
    tsOptions->setDrawBase(false);
    tsOptions->addTab(u"Program"_s);
    tsOptions->addTab(u"Use"_s);
    connect(tsOptions, &QTabBar::currentChanged, pages, &QStackedLayout::setCurrentIndex);
    cmdSave = new ImageButton(u"cmdSave"_s, u"&Save"_s, client.pictures, this);
    cmdSave->face()->setFixedWidth(saveWidth);
    auto* all = new QVBoxLayout(this);
    all->setContentsMargins(pageMargins);
    all->setSpacing(gap);
    all->addWidget(frame, 1);
    auto* foot = new QHBoxLayout;
    foot->addWidget(tsOptions, 0, Qt::AlignTop);
    foot->addStretch();
    foot->addWidget(cmdSave->face());
    all->addLayout(foot);
    wireSignals();
    show(m_options.values());
}

QGroupBox* qrvrcOptions::buildUpdates()
{
    auto* frame = new QGroupBox(u"Updates"_s);
    frame->setObjectName(u"Frame2"_s);
    auto* form = new QFormLayout(frame);
    cboUpdateUrl = new QuietComboBox;
    cboUpdateUrl->addItems({m_options.builtIn(1), m_options.builtIn(2), otherLocation});
    cboUpdateUrl->setPlaceholderText(u"None is stored yet"_s);
    addOptionRow(form, u"&Update Location:"_s, cboUpdateUrl, u"cboUpdateUrl"_s);
    txtUpdatePath = new QLineEdit;
    txtUpdatePath->setPlaceholderText(u"An address that ends with \"/\""_s);
    Label31 = addOptionRow(form, u"&Other Location:"_s, txtUpdatePath, u"txtUpdatePath"_s);
    Label31->setObjectName(u"Label31"_s);
    chkCheckForUpdates = new QCheckBox(u"&Automatically check for updates"_s);
    chkCheckForUpdates->setObjectName(u"chkCheckForUpdates"_s);
    form->addRow(new QLabel, chkCheckForUpdates);
    if (m_options.isPackaged()) {
        auto* note = new QLabel(packagedNote.toString());
        note->setObjectName(u"lblPackaged"_s);
        note->setWordWrap(true);
        form->addRow(new QLabel, note);
    }
    return frame;
}

QGroupBox* qrvrcOptions::buildProgram()
{
    auto* frame = new QGroupBox(u"Program"_s);
    frame->setObjectName(u"fmeProgram"_s);
    auto* form = new QFormLayout(frame);
    txtReplyTimeout = new QSpinBox;
    txtReplyTimeout->setRange(static_cast<int>(minReplyLimit.count()), static_cast<int>(maxReplyLimit.count()));
    txtReplyTimeout->setSuffix(u" seconds"_s);
    txtReplyTimeout->setToolTip(u"How long the host may be silent before the connection is given up"_s);
    addOptionRow(form, u"&Reply Time-out:"_s, txtReplyTimeout, u"txtReplyTimeout"_s);
    cboCodePage = new QuietComboBox;
    const auto offer = [this](const auto& codePage) {
        const QByteArray name(codePage.name.data(), static_cast<qsizetype>(codePage.name.size()));
        cboCodePage->addItem(titleOf(codePage.title, codePage.name), name);
    };
    std::for_each(codePageTables.begin(), codePageTables.end(), offer);
    std::for_each(doubleByteCodePages.begin(), doubleByteCodePages.end(), offer);
    addOptionRow(form, u"&Code Page of the Host:"_s, cboCodePage, u"cboCodePage"_s);
    cboErrorReports = new QuietComboBox;
    for (const auto& [mode, text] :
         {std::pair(ReportMode::ByThemselves, u"Sent by themselves"_s), std::pair(ReportMode::AskedFor, u"Asked for"_s),
          std::pair(ReportMode::Never, u"Never"_s)})
        cboErrorReports->addItem(text, static_cast<int>(mode));
    cboErrorReports->setToolTip(u"Whether reports of errors go to the maker; neither paths nor names are in them"_s);
    addOptionRow(form, u"&Error Reports:"_s, cboErrorReports, u"cboErrorReports"_s);
    chkKeyring = new QCheckBox(u"Keep &passwords in the system's keyring"_s);
    chkKeyring->setObjectName(u"chkKeyring"_s);
    chkKeyring->setEnabled(m_options.passwords().isThereAKeyring());
    chkKeyring->setToolTip(chkKeyring->isEnabled() ? u"Otherwise those that are remembered stand in profiles.ini"_s
                                                   : u"This program was built without a keyring"_s);
    form->addRow(new QLabel, chkKeyring);
    txtMakerHost = new QLineEdit;
    txtMakerHost->setPlaceholderText(u"The one that is built in"_s);
    txtMakerHost->setToolTip(u"Web host for the built-in update locations, the news and error reports"_s);
    addOptionRow(form, u"&Maker Host:"_s, txtMakerHost, u"txtMakerHost"_s);
    txtUpdateKey = new QLineEdit;
    txtUpdateKey->setPlaceholderText(u"None of your own"_s);
    txtUpdateKey->setToolTip(u"Public key, as minisign writes it, with which the update location signs its manifest"_s);
    addOptionRow(form, u"Update &Key:"_s, txtUpdateKey, u"txtUpdateKey"_s);
    auto* note = new QLabel(u"A change of the maker host counts from the next start on."_s);
    note->setWordWrap(true);
    form->addRow(QString(), note);
    return frame;
}

void qrvrcOptions::wireSignals()
{
    connect(cboUpdateUrl, &QComboBox::currentTextChanged, this, &qrvrcOptions::locationChosen);
    connect(chkCheckForUpdates, &QCheckBox::toggled, this,
            [this](bool automatic) { m_options.setAutomatic(automatic); });
    connect(cmdSave, &ImageButton::clicked, this, &qrvrcOptions::save);
}

void qrvrcOptions::show(const OptionValues& values)
{
    const int builtIn = cboUpdateUrl->findText(values.location);
    const bool isOther = builtIn < 0 && !values.location.isEmpty();
    cboUpdateUrl->setCurrentIndex(isOther ? cboUpdateUrl->findText(otherLocation) : builtIn);
    if (isOther)
        txtUpdatePath->setText(values.location);
    locationChosen();
    chkCheckForUpdates->setChecked(values.automatic);
    txtReplyTimeout->setValue(static_cast<int>(values.replyLimit.count()));
    cboCodePage->setCurrentIndex(cboCodePage->findData(QByteArray::fromStdString(values.codePage)));
    cboErrorReports->setCurrentIndex(cboErrorReports->findData(static_cast<int>(values.reports)));
    chkKeyring->setChecked(values.usesKeyring);
    txtMakerHost->setText(values.makerHost);
    txtUpdateKey->setText(values.updateKey);
    m_use->show(values.preferences);
}

void qrvrcOptions::locationChosen()
{
    const bool isOther = cboUpdateUrl->currentText() == otherLocation;
    txtUpdatePath->setEnabled(isOther);
    Label31->setEnabled(isOther);
}

OptionValues qrvrcOptions::typed() const
{
    const bool isOther = cboUpdateUrl->currentText() == otherLocation;
    return {.location = isOther ? txtUpdatePath->text() : cboUpdateUrl->currentText(),
            .automatic = chkCheckForUpdates->isChecked(),
            .replyLimit = std::chrono::seconds(txtReplyTimeout->value()),
            .codePage = cboCodePage->currentData().toByteArray().toStdString(),
            .makerHost = txtMakerHost->text().trimmed(),
            .updateKey = txtUpdateKey->text().trimmed(),
            .reports = static_cast<ReportMode>(cboErrorReports->currentData().toInt()),
            .preferences = m_use->chosen(),
            .usesKeyring = chkKeyring->isChecked()};
}

void qrvrcOptions::complainOf(QLineEdit* field, const QString& fault)
{
    tsOptions->setCurrentIndex(0); // the page of all fields that can be wrong
    m_client.reporter.ReportMsg(MessageKind::Failed, fault);
    field->setFocus();
    field->selectAll();
}

void qrvrcOptions::save()
{
    const OptionValues values = typed();
    if (!values.makerHost.isEmpty() && !isWebAddress(QUrl(values.makerHost))) {
        complainOf(txtMakerHost, u"The maker host must be a web address such as http://www.example.com, or empty."_s);
        return;
    }
    if (!values.updateKey.isEmpty() && !UpdateKey::fromText(values.updateKey.toUtf8().toStdString())) {
        complainOf(txtUpdateKey, u"The update key must be a public key as minisign writes it, or empty."_s);
        return;
    }
    if (m_options.isDamaged()) {
        const QString question = u"The stored settings are damaged and cannot be read. Do you want to store what is "
                                 "shown here in their place? The old file is kept as 'config.ini.damaged'."_s;
        if (!m_client.boxes.confirm(u"Confirmation Required!"_s, question) ||
            !m_client.reporter.trap("cmdSave_Click", [&] { m_options.setDamagedAside(); }))
            return;
    }
    KeptPasswords& passwords = m_options.passwords();
    const bool wasInKeyring = passwords.areInKeyring();
    if (!m_client.reporter.trap("cmdSave_Click", [&] { m_options.save(values); }))
        return;
    m_client.reporter.ReportMsg(MessageKind::Success, u"Settings Saved Successfully."_s);
    if (wasInKeyring && !passwords.areInKeyring() &&
        m_client.boxes.confirm(u"Confirmation Required!"_s,
                               u"Do you want to take the passwords in the keyring back into profiles.ini?"_s))
        m_client.reporter.trap("cmdSave_Click", [&] { passwords.takeBack(); });
}
