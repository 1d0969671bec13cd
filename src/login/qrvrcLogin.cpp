#include "login/qrvrcLogin.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "diagnostics/Reporter.h"
#include "link/Client.h"
#include "link/ReplyDispatcher.h"
#include "link/clsWinSock.h"
#include "platform/CodePage.h"
#include "platform/HostLookup.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"
#include "ui/EventWait.h"
#include "ui/ImageButton.h"

#include <QApplication>
#include <QComboBox>
#include <QGroupBox>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QScopedValueRollback>

#include <array>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QString newProfile = u"New Profile"_s;
constexpr std::string_view storeFile = "\\profiles.ini";
constexpr auto lookupLimit = 30s;

// Pixels.
constexpr int frameWidth = 430;
constexpr int emblemSide = 128;
constexpr int rowHeight = 32;
constexpr int firstRowTop = 32;
constexpr int fieldLeft = 140;
constexpr int fieldHeight = 25;
constexpr int connectFrameHeight = firstRowTop + 6 * rowHeight + 50;
constexpr int statusFrameHeight = 58;

} // namespace

qrvrcLogin::qrvrcLogin(Client& client, QWidget* parent)
    : WorkingWindow(parent),
      m_client(client),
      m_rawRequests(client.link, client.folder, client.store)
{
    setObjectName(u"qrvrcLogin"_s);
    buildControls();
    placeControls();
    wireSignals();
    // Behind the constructor: a store that cannot be read is told in a box, which needs the window to stand.
    QTimer::singleShot(0, this, m_client.reporter.trapped("Login_FormLoad", [this] { loadProfileNames(); }));
    Timer1->start();
}

void qrvrcLogin::buildControls()
{
    fmeConnect = new QGroupBox(u"Connect to Server Manager"_s, this);
    fmeConnect->setObjectName(u"fmeConnect"_s);

    auto* profilesLabel = new QLabel(u"Profiles:"_s, fmeConnect);
    profilesLabel->setGeometry(20, firstRowTop, fieldLeft - 30, fieldHeight);
    cboProfile = new QComboBox(fmeConnect);
    cboProfile->setObjectName(u"cboProfile"_s);
    cboProfile->setAccessibleName(u"Profiles"_s);
    cboProfile->setGeometry(fieldLeft, firstRowTop, frameWidth - fieldLeft - 20, fieldHeight);
    cboProfile->addItem(newProfile);
    profilesLabel->setBuddy(cboProfile);

    txtProfile = addField(u"txtProfile"_s, u"Profile Name:"_s, u"lblProfile"_s, 1);
    txtHost = addField(u"txtHost"_s, u"Host IP/Name:"_s, u"lblHost"_s, 2);
    txtPort = addField(u"txtPort"_s, u"Port:"_s, u"lblPort"_s, 3);
    txtUser = addField(u"txtUser"_s, u"Username:"_s, u"lblUser"_s, 4);
    txtPass = addField(u"txtPass"_s, u"Password:"_s, u"lblPass"_s, 5);
    txtPass->setEchoMode(QLineEdit::Password);

    cmdConnect = new ImageButton(u"cmdConnect"_s, u"Connect"_s, m_client.pictures, fmeConnect);
    cmdDisconnect = new ImageButton(u"cmdDisconnect"_s, u"Disconnect"_s, m_client.pictures, fmeConnect);
    cmdDelete = new ImageButton(u"cmdDelete"_s, u"Delete"_s, m_client.pictures, fmeConnect);

    fmeStatus = new QGroupBox(u"Connection Status"_s, this);
    fmeStatus->setObjectName(u"fmeStatus"_s);
    auto* caption = new QLabel(u"Status:"_s, fmeStatus);
    caption->setGeometry(20, 24, fieldLeft - 30, fieldHeight);
    lblStatus = new QLabel(statusText(SocketState::Closed), fmeStatus);
    lblStatus->setObjectName(u"lblStatus"_s);
    lblStatus->setTextFormat(Qt::PlainText);
    lblStatus->setGeometry(fieldLeft, 24, frameWidth - fieldLeft - 20, fieldHeight);

    lblEmblem = new QLabel(this);
    lblEmblem->setPixmap(QApplication::windowIcon().pixmap(QSize(emblemSide, emblemSide), devicePixelRatioF()));
    lblEmblem->setAlignment(Qt::AlignCenter);

    Timer1 = new QTimer(this);
    Timer1->setObjectName(u"Timer1"_s);
    Timer1->setInterval(100ms);
}

QLineEdit* qrvrcLogin::addField(const QString& name, const QString& caption, const QString& labelName, int row)
{
    const int top = firstRowTop + row * rowHeight;
    auto* label = new QLabel(caption, fmeConnect);
    label->setObjectName(labelName);
    label->setGeometry(20, top, fieldLeft - 30, fieldHeight);
    auto* field = new QLineEdit(fmeConnect);
    field->setObjectName(name);
    field->setAccessibleName(caption.chopped(1));
    field->setGeometry(fieldLeft, top, frameWidth - fieldLeft - 20, fieldHeight);
    field->setTextMargins(2, 0, 2, 0);
    label->setBuddy(field);
    connect(field, &QLineEdit::returnPressed, this, &qrvrcLogin::connectToHost);
    return field;
}

void qrvrcLogin::placeControls()
{
    const QSize page = parentWidget() ? parentWidget()->size() : QSize(757, 440);
    const int left = 36;
    const int top = std::max(8, (page.height() - connectFrameHeight - statusFrameHeight - 10) / 2);
    const int emblemLeft = left + frameWidth;
    lblEmblem->setGeometry(emblemLeft, top, page.width() - emblemLeft, connectFrameHeight);
    fmeConnect->setGeometry(left, top, frameWidth, connectFrameHeight);
    fmeStatus->setGeometry(left, top + connectFrameHeight + 10, frameWidth, statusFrameHeight);

    constexpr int width = 120;
    constexpr int gap = 15;
    const int buttonTop = firstRowTop + 6 * rowHeight + 8;
    int x = (frameWidth - 3 * width - 2 * gap) / 2;
    for (ImageButton* button : {cmdConnect, cmdDisconnect, cmdDelete}) {
        button->place(QRect(x, buttonTop, width, 30));
        x += width + gap;
    }
}

void qrvrcLogin::wireSignals()
{
    connect(cboProfile, &QComboBox::currentTextChanged, this, &qrvrcLogin::profileTextChanged);
    connect(cboProfile, &QComboBox::activated, this, // also when the same item is chosen again
            m_client.reporter.trapped("cboProfile_Click", [this] { profileClicked(); }));
    connect(cmdConnect, &ImageButton::activated, this, &qrvrcLogin::connectToHost);
    connect(cmdDisconnect, &ImageButton::activated, this, &qrvrcLogin::disconnectFromHost);
    connect(cmdDelete, &ImageButton::activated, this,
            m_client.reporter.trapped("cmdDelete_Click", [this] { deleteProfile(); }));
    connect(Timer1, &QTimer::timeout, this, m_client.reporter.trapped("Login_Timer", [this] { poll(); }));
    connect(&m_client.link, &clsWinSock::linkLost, this, &qrvrcLogin::showNotConnected);
}

void qrvrcLogin::loadProfileNames()
{
    try {
        for (const std::string& name : m_client.store.GetAllIniSections(m_client.folder.path(storeFile))) {
            const QString text = m_client.codePage.toText(name);
            if (!text.isEmpty() && cboProfile->findText(text, Qt::MatchFixedString) < 0)
                cboProfile->addItem(text);
        }
    } catch (const RuntimeError&) {
        m_storeFailed = true;
        throw;
    }
}

void qrvrcLogin::profileClicked()
{
    const QString name = cboProfile->currentText();
    txtProfile->setEnabled(name == newProfile);
    if (name == newProfile) {
        for (QLineEdit* field : {txtProfile, txtHost, txtPort, txtUser, txtPass})
            field->clear();
        return;
    }
    const std::string section = m_client.codePage.toBytes(name);
    const auto stored =
        storedConnection(section, m_client.store.GetIniSection(section, m_client.folder.path(storeFile)));
    if (!stored)
        return;
    txtProfile->setText(name);
    txtHost->setText(m_client.codePage.toText(stored->host));
    txtPort->setText(m_client.codePage.toText(stored->port));
    txtUser->setText(m_client.codePage.toText(stored->user));
    txtPass->setText(m_client.codePage.toText(stored->password));
}

void qrvrcLogin::profileTextChanged()
{
    setFieldsEnabled(cboProfile->currentText() == newProfile);
}

void qrvrcLogin::setFieldsEnabled(bool enabled)
{
    for (QLineEdit* field : {txtHost, txtPort, txtUser, txtPass})
        field->setEnabled(enabled);
}

bool qrvrcLogin::chooseProfile(const QString& name)
{
    if (cboProfile->count() == 1)
        m_client.reporter.trap("Login_FormLoad", [this] { loadProfileNames(); });
    const int index = cboProfile->findText(name);
    if (index < 1)
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
    return {bytesOf(txtProfile), bytesOf(txtHost), bytesOf(txtPort), bytesOf(txtUser), bytesOf(txtPass)};
}

Credentials qrvrcLogin::credentials() const
{
    return {bytesOf(txtUser), bytesOf(txtPass)};
}

QString qrvrcLogin::host() const
{
    return m_client.codePage.toText(hostToConnect(bytesOf(txtHost)));
}

QString qrvrcLogin::foreignCharacter() const
{
    for (const QLineEdit* field : {txtProfile, txtHost, txtPort, txtUser, txtPass}) {
        const QString foreign = m_client.codePage.firstForeign(field->text());
        if (!foreign.isEmpty())
            return foreign;
    }
    return {};
}

void qrvrcLogin::connectToHost()
{
    if (!cmdConnect->isEnabled())
        return;
    m_client.reporter.trap("cmdConnect_Click", [this] {
        const ConnectionFields typed = fields();
        if (const auto fault = firstFault(typed)) {
            m_client.reporter.ReportMsg(MessageKind::Failed,
                                        QString::fromLatin1(fault->data(), static_cast<qsizetype>(fault->size())));
            return;
        }
        if (const QString foreign = foreignCharacter(); !foreign.isEmpty()) {
            m_client.reporter.ReportMsg(MessageKind::Failed,
                                        u"The character '%1' cannot be sent to the host!"_s.arg(foreign));
            return;
        }
        saveProfile(typed);
        cmdConnect->setEnabled(false);
        const std::string host = hostToConnect(typed.host);
        if (!isDottedAddress(host) && !isKnownHost(host))
            return;
        const auto port = portNumber(typed.port);
        if (!port) {
            m_client.reporter.ReportMsg(MessageKind::Failed, u"Invalid Port format!"_s);
            return;
        }
        m_client.link.connectTo(m_client.codePage.toText(host), *port);
    });
}

void qrvrcLogin::saveProfile(const ConnectionFields& typed)
{
    const QString name = txtProfile->text();
    const auto write = [&] {
        const std::filesystem::path file = m_client.folder.path(storeFile);
        const std::array<std::pair<const char*, const std::string*>, 4> keys{{
            {"Host", &typed.host},
            {"Port", &typed.port},
            {"User", &typed.user},
            {"Pass", &typed.password},
        }};
        for (const auto& [key, value] : keys)
            m_client.store.WriteIniKey(typed.profile, key, *value, file);
    };
    // A store that cannot be used keeps nobody from connecting; it is told once.
    if (m_storeFailed)
        return;
    if (!m_client.reporter.trap("cmdConnect_Click", write)) {
        m_storeFailed = true;
        return;
    }
    int index = cboProfile->findText(name, Qt::MatchFixedString);
    if (index < 0) {
        index = cboProfile->count();
        cboProfile->addItem(name);
    }
    cboProfile->setCurrentIndex(index);
    txtProfile->setEnabled(false);
}

bool qrvrcLogin::isKnownHost(const std::string& host)
{
    const QScopedValueRollback resolving(m_isResolving, true);
    HostLookup lookup;
    lookup.start(m_client.codePage.toText(host));
    const WaitEnd end = EventWait(lookupLimit)
                            .endsOn(&lookup, &HostLookup::finished, WaitEnd::Replied)
                            .endsOn(this, &qrvrcLogin::lookupCancelled, WaitEnd::LinkDropped)
                            .run();
    if (end == WaitEnd::LinkDropped)
        return false;
    if (lookup.address().isEmpty())
        m_client.reporter.ReportMsg(MessageKind::Failed, u"Invalid IP format!"_s);
    return !lookup.address().isEmpty();
}

void qrvrcLogin::disconnectFromHost()
{
    Q_EMIT lookupCancelled();
    m_client.replies.pendingRequest.clear();
    Q_EMIT disconnecting();
    m_client.link.closeSupportLink();
    m_client.link.close();
    cmdConnect->setEnabled(true);
    if (isEnabled())
        Form_Activate();
    m_client.session.superAdmin = false;
    m_client.session.user.clear();
}

void qrvrcLogin::deleteProfile()
{
    if (cboProfile->currentText() == newProfile) {
        m_client.reporter.ReportMsg(MessageKind::Failed, u"No Profiles Selected!"_s);
        return;
    }
    m_client.store.ClearIniSection(bytesOf(txtProfile), m_client.folder.path(storeFile));
    cboProfile->removeItem(cboProfile->currentIndex());
    cboProfile->setCurrentIndex(0);
    profileClicked();
}

void qrvrcLogin::poll()
{
    const SocketState state = m_client.link.state();
    m_client.link.StatusText =
        statusText(state == SocketState::Closed && m_isResolving ? SocketState::ResolvingHost : state);
    if (state == SocketState::PeerClosing) {
        m_client.link.close();
        return; // the loss of the link has been shown
    }
    if (state == SocketState::Closed && !m_isResolving) {
        if (!cmdConnect->isEnabled() || lblStatus->text() != m_client.link.StatusText)
            showNotConnected();
        m_client.link.closeSupportLink();
    }
    lblStatus->setText(m_client.link.StatusText);
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
    m_client.helpSection.clear();
    if (focusWidget())
        focusWidget()->setFocus(); // where the user was
    else
        cboProfile->setFocus();
}
