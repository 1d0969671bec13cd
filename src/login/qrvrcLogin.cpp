#include "login/qrvrcLogin.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "link/clsWinSock.h"
#include "login/FieldRows.h"
#include "platform/system/CodePage.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"
#include "ui/FirstPaint.h"
#include "ui/ImageButton.h"
#include "ui/ProgramIcon.h"
#include "ui/QuietComboBox.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QSignalBlocker>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString newProfile = QString::fromLatin1(newProfileName);
constexpr std::string_view storeFile = "\\profiles.ini";

// Pixels.
constexpr int pageLeft = 36;
constexpr int frameWidth = 430;
constexpr int frameSpacing = 10;
constexpr QMargins connectMargins(17, 12, 17, 9);
constexpr QMargins statusMargins(17, 4, 17, 6);
constexpr int rowSpacing = 7;
constexpr int buttonWidth = 120;
constexpr int buttonSpacing = 15;
constexpr int emblemSide = 128;

} // namespace

qrvrcLogin::qrvrcLogin(Client& client, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_rawRequests(client.link, client.folder, client.store)
{
    setObjectName(u"qrvrcLogin"_s);
    buildControls();
    layOut();
    wireSignals();
    // Behind the constructor: a store that cannot be read is told in a box, which needs the window to stand.
    QTimer::singleShot(0, this, m_client.reporter.trapped("Login_FormLoad", [this] { listProfiles(); }));
    Timer1->start();
}

void qrvrcLogin::buildControls()
{
    fmeConnect = new QGroupBox(u"Connect to Server Manager"_s, this);
    fmeConnect->setObjectName(u"fmeConnect"_s);

    cboProfile = new QuietComboBox(fmeConnect);
    cboProfile->setObjectName(u"cboProfile"_s);
    cboProfile->setAccessibleName(u"Profiles"_s);
    cboProfile->addItem(newProfile);
    txtProfile = newField(u"txtProfile"_s, u"Profile Name"_s);
    txtHost = newField(u"txtHost"_s, u"Host IP/Name"_s);
    txtPort = newField(u"txtPort"_s, u"Port"_s);
    txtUser = newField(u"txtUser"_s, u"Username"_s);
    txtPass = newField(u"txtPass"_s, u"Password"_s);
    txtPass->setEchoMode(QLineEdit::Password);
    chkRemember = new QCheckBox(u"&Remember password"_s, fmeConnect);
    chkRemember->setObjectName(u"chkRemember"_s);
    chkRemember->setToolTip(u"Otherwise it is kept until the program ends, and asked for after that"_s);
    chkRemember->setChecked(true);

    cmdConnect = new ImageButton(u"cmdConnect"_s, u"Connect"_s, m_client.pictures, fmeConnect);
    cmdDisconnect = new ImageButton(u"cmdDisconnect"_s, u"Disconnect"_s, m_client.pictures, fmeConnect);
    cmdDelete = new ImageButton(u"cmdDelete"_s, u"Delete"_s, m_client.pictures, fmeConnect);

    fmeStatus = new QGroupBox(u"Connection Status"_s, this);
    fmeStatus->setObjectName(u"fmeStatus"_s);
    lblStatus = new QLabel(statusText(SocketState::Closed), fmeStatus);
    lblStatus->setObjectName(u"lblStatus"_s);
    lblStatus->setTextFormat(Qt::PlainText);

    lblEmblem = new QLabel(this);
    afterFirstPaint(*this, [this] {
        lblEmblem->setPixmap(programIcon().pixmap(QSize(emblemSide, emblemSide), devicePixelRatioF()));
    });
    lblEmblem->setAlignment(Qt::AlignCenter);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(u"Timer1"_s);
    Timer1->setInterval(100ms);
}

QLineEdit* qrvrcLogin::newField(const QString& name, const QString& meaning)
{
    auto* field = new QLineEdit(fmeConnect);
    field->setObjectName(name);
    field->setAccessibleName(meaning);
    field->setTextMargins(2, 0, 2, 0);
    connect(field, &QLineEdit::returnPressed, this, &qrvrcLogin::connectToHost);
    connect(field, &QLineEdit::textEdited, this, &qrvrcLogin::otherConnectionWanted);
    return field;
}

void qrvrcLogin::layOut()
{
    layOutConnect();
    QFormLayout* status = fieldsIn(statusMargins, rowSpacing);
    addFieldRow(status, {}, u"Status:"_s, lblStatus);
    fmeStatus->setLayout(status);

    auto* page = new QGridLayout(this);
    page->setContentsMargins(pageLeft, 0, 0, 0);
    page->setHorizontalSpacing(0);
    page->setVerticalSpacing(frameSpacing);
    page->addWidget(fmeConnect, 1, 0);
    page->addWidget(fmeStatus, 2, 0);
    page->addWidget(lblEmblem, 1, 1);
    page->setColumnMinimumWidth(0, frameWidth);
    page->setColumnStretch(1, 1);
    for (const int outside : {0, 3})
        page->setRowStretch(outside, 1);
}

void qrvrcLogin::layOutConnect()
{
    QFormLayout* form = fieldsIn({}, rowSpacing);
    addFieldRow(form, {}, u"Profiles:"_s, cboProfile);
    addFieldRow(form, u"lblProfile"_s, u"Profile Name:"_s, txtProfile);
    addFieldRow(form, u"lblHost"_s, u"Host IP/Name:"_s, txtHost);
    addFieldRow(form, u"lblPort"_s, u"Port:"_s, txtPort);
    addFieldRow(form, u"lblUser"_s, u"Username:"_s, txtUser);
    addFieldRow(form, u"lblPass"_s, u"Password:"_s, txtPass);
    form->addFieldRow(QString(), chkRemember);

    auto* buttons = new QHBoxLayout;
    buttons->setSpacing(buttonSpacing);
    buttons->addStretch();
    for (const ImageButton* button : {cmdConnect, cmdDisconnect, cmdDelete}) {
        button->face()->setFixedWidth(buttonWidth);
        buttons->addWidget(button->face());
    }
    buttons->addStretch();

    auto* rows = new QVBoxLayout(fmeConnect);
    rows->setContentsMargins(connectMargins);
    rows->setSpacing(2 * rowSpacing);
    rows->addLayout(form);
    rows->addLayout(buttons);
}

void qrvrcLogin::wireSignals()
{
    connect(cboProfile, &QComboBox::currentTextChanged, this, &qrvrcLogin::profileTextChanged);
    connect(cboProfile, &QComboBox::activated, this, // also when the same item is chosen again
            m_client.reporter.trapped("cboProfile_Click", [this] {
                if (cboProfile->currentText() != m_client.link.connection().profile)
                    Q_EMIT otherConnectionWanted();
                profileClicked();
            }));
    connect(cmdConnect, &ImageButton::activated, this, &qrvrcLogin::connectToHost);
    connect(cmdDisconnect, &ImageButton::activated, this, &qrvrcLogin::disconnectFromHost);
    connect(cmdDelete, &ImageButton::activated, this,
            m_client.reporter.trapped("cmdDelete_Click", [this] { deleteProfile(); }));
    connect(Timer1, &QTimer::timeout, this, m_client.reporter.trapped("Login_Timer", [this] { poll(); }));
    connect(&m_client.link, &clsWinSock::linkLost, this, &qrvrcLogin::showNotConnected);
    connect(&m_client.link, &clsWinSock::phaseChanged, this, [this](LinkPhase phase) {
        if (phase != LinkPhase::Down) // also when nobody has pressed it
            cmdConnect->setEnabled(false);
    });
    connect(&m_client.link, &clsWinSock::connectFailed, this, &qrvrcLogin::tellFault, Qt::QueuedConnection);
}

void qrvrcLogin::listProfiles()
{
    using std::filesystem::perms;
    std::error_code ignored; // there may be no such file yet
    std::filesystem::permissions(m_client.folder.path(storeFile), perms::group_all | perms::others_all,
                                 std::filesystem::perm_options::remove, ignored);
    QStringList names{newProfile};
    for (const std::string& name : m_client.store.GetAllIniSections(m_client.folder.path(storeFile))) {
        if (!name.empty() && !isSameSection(name, newProfileName))
            names += m_client.codePage.toText(name);
    }
    const QSignalBlocker quiet(cboProfile); // the user has chosen nothing
    cboProfile->clear();
    cboProfile->addItems(names);
}

int qrvrcLogin::indexOf(std::string_view profile) const
{
    int index = cboProfile->count() - 1;
    while (index > 0 && !isSameSection(m_client.codePage.toBytes(cboProfile->itemText(index)), profile))
        --index;
    return index;
}

std::optional<QString> qrvrcLogin::chosenProfile() const
{
    return cboProfile->currentIndex() > 0 ? std::optional(cboProfile->currentText()) : std::nullopt;
}

void qrvrcLogin::profileClicked()
{
    const std::optional<QString> chosen = chosenProfile();
    txtProfile->setEnabled(!chosen);
    // First of all, so that nothing of another profile stands under this name when the store cannot be read.
    for (QLineEdit* field : {txtProfile, txtHost, txtPort, txtUser, txtPass})
        field->clear();
    chkRemember->setChecked(true);
    if (!chosen)
        return;
    txtProfile->setText(*chosen);
    const std::string section = m_client.codePage.toBytes(*chosen);
    const ConnectionFields stored =
        storedConnection(section, m_client.store.GetIniSection(section, m_client.folder.path(storeFile)));
    txtHost->setText(m_client.codePage.toText(stored.host));
    txtPort->setText(m_client.codePage.toText(stored.port));
    txtUser->setText(m_client.codePage.toText(stored.user));
    const bool isForgotten = !stored.host.empty() && stored.password.empty();
    const auto kept = m_passwords.find(section);
    txtPass->setText(
        m_client.codePage.toText(isForgotten && kept != m_passwords.end() ? kept->second : stored.password));
    txtPass->setEnabled(isForgotten);
    chkRemember->setChecked(!isForgotten);
}

void qrvrcLogin::profileTextChanged()
{
    setFieldsEnabled(!chosenProfile());
}

void qrvrcLogin::setFieldsEnabled(bool enabled)
{
    for (QLineEdit* field : {txtHost, txtPort, txtUser, txtPass})
        field->setEnabled(enabled);
}

bool qrvrcLogin::chooseProfile(const QString& name)
{
    const int index = m_client.codePage.firstForeign(name).isEmpty() ? indexOf(m_client.codePage.toBytes(name)) : 0;
    if (index == 0)
        return false;
    cboProfile->setCurrentIndex(index);
    return m_client.reporter.trap("cboProfile_Click", [this] { profileClicked(); });
}

std::string qrvrcLogin::bytesOf(const QLineEdit* field) const
{
    return m_client.codePage.toBytes(field->text());
}

ConnectionFields qrvrcLogin::fields() const
{
    const std::optional<QString> chosen = chosenProfile();
    const std::string profile = chosen ? m_client.codePage.toBytes(*chosen) : bytesOf(txtProfile);
    return {std::string(trimmed(profile)), bytesOf(txtHost), bytesOf(txtPort), bytesOf(txtUser), bytesOf(txtPass)};
}

QString qrvrcLogin::sendFault() const
{
    QString typed;
    for (const QLineEdit* field : {txtProfile, txtHost, txtPort, txtUser, txtPass})
        typed += field->text();
    return m_client.codePage.sendFault(typed);
}

void qrvrcLogin::connectToHost()
{
    if (!cmdConnect->isEnabled())
        return;
    m_client.reporter.trap("cmdConnect_Click", [this] {
        const ConnectionFields typed = fields();
        const ProfileKind kind = chosenProfile() ? ProfileKind::Stored : ProfileKind::New;
        if (const auto fault = firstFault(typed, kind)) {
            m_client.reporter.ReportMsg(MessageKind::Failed,
                                        QString::fromLatin1(fault->data(), static_cast<qsizetype>(fault->size())));
            askForPassword();
            return;
        }
        if (const QString unsendable = sendFault(); !unsendable.isEmpty()) {
            m_client.reporter.ReportMsg(MessageKind::Failed, unsendable);
            return;
        }
        // Before fields and Connect are disabled: they would hand the keyboard on to Disconnect, for the next Return.
        cboProfile->setFocus();
        saveProfile(typed);
        cmdConnect->setEnabled(false);
        const std::string host = hostToConnect(typed.host);
        m_client.link.open({.profile = m_client.codePage.toText(typed.profile),
                            .host = m_client.codePage.toText(host),
                            .isAddress = isDottedAddress(host),
                            .port = portNumber(typed.port).value_or(0),
                            .user = typed.user,
                            .password = typed.password});
    });
}

/// A store that cannot be used is told and keeps nobody from connecting; the profile is not listed then.
void qrvrcLogin::saveProfile(const ConnectionFields& typed)
{
    m_client.reporter.trap("cmdConnect_Click", [&] {
        ConnectionFields stored = typed;
        if (!chkRemember->isChecked())
            stored.password.clear();
        m_client.store.WriteIniKeys(typed.profile, entriesOf(stored), m_client.folder.path(storeFile));
        if (indexOf(typed.profile) == 0)
            listProfiles();
        cboProfile->setCurrentIndex(indexOf(typed.profile));
        txtProfile->setEnabled(!chosenProfile());
        m_passwords[m_client.codePage.toBytes(cboProfile->currentText())] = typed.password;
    });
}

void qrvrcLogin::askForPassword()
{
    const ConnectionFields typed = fields();
    if (trimmed(typed.password).empty() && !trimmed(typed.user).empty() && txtPass->isEnabled())
        txtPass->setFocus();
}

void qrvrcLogin::tellFault(ConnectFault fault)
{
    if (m_client.link.openedBy() == PendingRequest::Asked::ByClock)
        return; // it is tried again
    m_client.reporter.ReportMsg(MessageKind::Failed, fault == ConnectFault::UnknownHost ? u"Invalid IP format!"_s
                                                                                        : u"Invalid Port format!"_s);
}

void qrvrcLogin::disconnectFromHost()
{
    Q_EMIT disconnecting();
    m_client.link.closeSupportLink();
    m_client.link.close();
    cmdConnect->setEnabled(true);
    if (isEnabled())
        Form_Activate();
}

void qrvrcLogin::deleteProfile()
{
    const std::optional<QString> chosen = chosenProfile();
    if (!chosen) {
        m_client.reporter.ReportMsg(MessageKind::Failed, u"No Profiles Selected!"_s);
        return;
    }
    m_client.store.ClearIniSection(m_client.codePage.toBytes(*chosen), m_client.folder.path(storeFile));
    m_passwords.erase(m_client.codePage.toBytes(*chosen));
    const int index = cboProfile->currentIndex();
    cboProfile->setCurrentIndex(0);
    cboProfile->removeItem(index);
    profileClicked();
}

void qrvrcLogin::poll()
{
    if (m_client.link.state() == SocketState::PeerClosing) {
        m_client.link.close();
        return; // the loss of the link has been shown
    }
    if (m_client.link.StatusText() == statusText(SocketState::Closed)) {
        if (!cmdConnect->isEnabled() || lblStatus->text() != m_client.link.StatusText())
            showNotConnected();
        m_client.link.closeSupportLink();
    }
    lblStatus->setText(m_client.link.StatusText());
    if (m_client.link.isLoggedIn()) // before that the tracker would refuse the connection for what is queued
        m_rawRequests.serve();
}

void qrvrcLogin::showNotConnected()
{
    const bool hadFallenBack = lblStatus->text() == statusText(SocketState::Closed);
    cboProfile->setEnabled(true);
    cmdConnect->setEnabled(true);
    setFieldsEnabled(true);
    lblStatus->setText(statusText(SocketState::Closed));
    if (!hadFallenBack)
        Q_EMIT notConnected();
}

void qrvrcLogin::Form_Activate()
{
    if (focusWidget())
        focusWidget()->setFocus(); // where the user was
    else
        cboProfile->setFocus();
}
