#include "login/qrvrcLogin.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "link/clsWinSock.h"
#include "login/KeptPasswords.h"
#include "platform/system/CodePage.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"
#include "ui/ImageButton.h"

#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QSignalBlocker>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString newProfile = QString::fromLatin1(newProfileName);

} // namespace

qrvrcLogin::qrvrcLogin(Client& client, KeptPasswords& passwords, QWidget* parent)
    : WorkingWindow(parent),
      LoginControls(*this, client.pictures),
      m_client(client),
      m_kept(passwords),
      m_rawRequests(client.link, client.folder, client.store),
      Timer1(new QTimer(this))
{
    setObjectName(u"qrvrcLogin"_s);
    lblStatus->setText(statusText(SocketState::Closed));
    Timer1->setObjectName(u"Timer1"_s);
    Timer1->setInterval(100ms);
    wireSignals();
    // Behind the constructor: a store that cannot be read is told in a box, which needs the window to stand.
    QTimer::singleShot(0, this, m_client.reporter.trapped("Login_FormLoad", [this] { listProfiles(); }));
    Timer1->start();
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
    for (const QLineEdit* field : {txtProfile, txtHost, txtPort, txtUser, txtPass}) {
        connect(field, &QLineEdit::returnPressed, this, &qrvrcLogin::connectToHost);
        connect(field, &QLineEdit::textEdited, this, &qrvrcLogin::otherConnectionWanted);
    }
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
    std::filesystem::permissions(m_client.folder.path(connectionFile), perms::group_all | perms::others_all,
                                 std::filesystem::perm_options::remove, ignored);
    QStringList names{newProfile};
    for (const std::string& name : m_client.store.GetAllIniSections(m_client.folder.path(connectionFile))) {
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
        storedConnection(section, m_client.store.GetIniSection(section, m_client.folder.path(connectionFile)));
    txtHost->setText(m_client.codePage.toText(stored.host));
    txtPort->setText(m_client.codePage.toText(stored.port));
    txtUser->setText(m_client.codePage.toText(stored.user));
    const bool isForgotten = !stored.host.empty() && stored.password.empty();
    const auto kept = m_passwords.find(section);
    txtPass->setText(
        m_client.codePage.toText(isForgotten && kept != m_passwords.end() ? kept->second : stored.password));
    txtPass->setEnabled(isForgotten);
    chkRemember->setChecked(!isForgotten || m_kept.areInKeyring());
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
        ProfileKind kind = chosenProfile() ? ProfileKind::Stored : ProfileKind::New;
        if (kind == ProfileKind::Stored && typed.password.empty() && m_kept.areInKeyring())
            kind = ProfileKind::StoredWithoutPassword;
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
        cmdConnect->setEnabled(false);
        if (kind == ProfileKind::StoredWithoutPassword) {
            fetchPassword(typed);
            return;
        }
        saveProfile(typed);
        openLink(typed);
    });
}

/// What was meant with the click stands, whatever the window shows when the keyring answers.
void qrvrcLogin::fetchPassword(const ConnectionFields& typed)
{
    m_fetching = ++m_fetches;
    lblStatus->setText(u"Asking the keyring..."_s);
    m_kept.fetch(typed.profile,
                 [window = QPointer(this), turn = m_fetches, typed](const std::optional<std::string>& password) {
                     if (!window || window->m_fetching != turn)
                         return; // the user has thought better of it
                     window->m_fetching = 0;
                     if (password) {
                         ConnectionFields whole = typed;
                         whole.password = *password;
                         window->openLink(whole);
                     } else {
                         window->showNotConnected();
                         window->txtPass->setFocus();
                     }
                 });
}

void qrvrcLogin::openLink(const ConnectionFields& typed)
{
    const std::string host = hostToConnect(typed.host);
    m_client.link.open({.profile = m_client.codePage.toText(typed.profile),
                        .host = m_client.codePage.toText(host),
                        .isAddress = isDottedAddress(host),
                        .port = portNumber(typed.port).value_or(0),
                        .user = typed.user,
                        .password = typed.password});
}

/// A store that cannot be used is told and keeps nobody from connecting; the profile is not listed then.
void qrvrcLogin::saveProfile(const ConnectionFields& typed)
{
    m_client.reporter.trap("cmdConnect_Click", [&] {
        ConnectionFields stored = typed;
        const bool goesToKeyring = m_kept.areInKeyring() && chkRemember->isChecked();
        if (!chkRemember->isChecked() || (goesToKeyring && !isPasswordStored(typed.profile)))
            stored.password.clear();
        m_client.store.WriteIniKeys(typed.profile, entriesOf(stored), m_client.folder.path(connectionFile));
        if (indexOf(typed.profile) == 0)
            listProfiles();
        cboProfile->setCurrentIndex(indexOf(typed.profile));
        txtProfile->setEnabled(!chosenProfile());
        m_passwords[m_client.codePage.toBytes(cboProfile->currentText())] = typed.password;
        if (goesToKeyring)
            m_kept.keep(typed.profile, typed.password);
        else if (m_kept.areInKeyring())
            m_kept.forget(typed.profile);
    });
}

/// One that stands in the store stays there until the keyring has it.
bool qrvrcLogin::isPasswordStored(const std::string& profile) const
{
    const auto lines = m_client.store.GetIniSection(profile, m_client.folder.path(connectionFile));
    return !storedConnection(profile, lines).password.empty();
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
    m_fetching = 0;
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
    m_client.store.ClearIniSection(m_client.codePage.toBytes(*chosen), m_client.folder.path(connectionFile));
    m_passwords.erase(m_client.codePage.toBytes(*chosen));
    if (m_kept.areInKeyring())
        m_kept.forget(m_client.codePage.toBytes(*chosen));
    const int index = cboProfile->currentIndex();
    cboProfile->setCurrentIndex(0);
    cboProfile->removeItem(index);
    profileClicked();
}

void qrvrcLogin::poll()
{
    if (m_fetching != 0)
        return;
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
