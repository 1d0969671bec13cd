#include "live/recovery/qrvrcRecovery.h"

#include "client/Client.h"
#include "diagnostics/report/MessageBoxes.h"
#include "diagnostics/report/Reporter.h"
#include "login/ConnectionFields.h"
#include "platform/system/CodePage.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"
#include "ui/ImageButton.h"
#include "ui/QuietComboBox.h"
#include "ui/WindowRegistry.h"

#include <QComboBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QRadioButton>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr std::string_view storeFile = "\\profiles.ini";
constexpr int refused = 10061;

const QString connectionError = u"Connection Error"_s;

// Pixels.
constexpr QSize windowSize(430, 300);
constexpr int margin = 14;
constexpr int spacing = 7;
constexpr QMargins commandMargins(11, 5, 11, 4);
constexpr int optionIndent = 8;
constexpr int labelWidth = 156;
constexpr int fieldHeight = 25;
constexpr int noteHeight = 36;
constexpr int buttonWidth = 130;

} // namespace

qrvrcRecovery::qrvrcRecovery(Client& client, const Limits& limits, QWidget* parent)
    : QDialog(parent),
      m_client(client),
      m_limits(limits)
{
    setObjectName(u"qrvrcRecovery"_s);
    setWindowTitle(u"Recovery Console"_s);
    setWindowModality(Qt::ApplicationModal);
    setWindowFlag(Qt::WindowMinMaxButtonsHint, false);
    setFixedSize(windowSize);
    m_limit.setSingleShot(true);
    m_silence.setSingleShot(true);
    m_silence.setInterval(m_limits.silence);
    buildControls();
    layOut();
    wireSignals();
    cboProfile->setFocus();
    // Behind the constructor: a store that cannot be read is told in a box, which needs the window to stand.
    QTimer::singleShot(0, this, m_client.reporter.trapped("Recovery_FormLoad", [this] { loadProfileNames(); }));
}

void qrvrcRecovery::buildControls()
{
    fmeRecov = new QGroupBox(this);
    fmeRecov->setObjectName(u"fmeRecov"_s);
    fmeRecov->setAccessibleName(u"Commands"_s);
    const std::array captions{u"&Start Quorvane Ravelin"_s, u"&Restart Quorvane Ravelin"_s,
                              u"Sh&utdown Quorvane Ravelin"_s};
    for (std::size_t index = 0; index < Option1.size(); ++index) {
        Option1[index] = new QRadioButton(captions[index], fmeRecov);
        Option1[index]->setObjectName(u"Option1_%1"_s.arg(index));
    }
    cboProfile = new QuietComboBox(this);
    cboProfile->setObjectName(u"cboProfile"_s);
    cboProfile->setAccessibleName(u"Profiles"_s);
    txtPort = new QLineEdit(this);
    txtPort->setObjectName(u"txtPort"_s);
    txtPort->setAccessibleName(u"Recovery Tool Port"_s);
    txtPort->setTextMargins(2, 0, 2, 0);
    lblNote = new QLabel(this);
    lblNote->setObjectName(u"lblNote"_s);
    lblNote->setTextFormat(Qt::PlainText);
    lblNote->setWordWrap(true);
    cmdSendCmd = new ImageButton(u"cmdSendCmd"_s, u"Send Command"_s, m_client.pictures, this);
    cmdClose = new ImageButton(u"cmdClose"_s, u"Close"_s, m_client.pictures, this);
    cmdCancel = new ImageButton(u"cmdCancel"_s, u"Cancel"_s, m_client.pictures, this);
    cmdCancel->hide();
}

void qrvrcRecovery::layOut()
{
    auto* fields = new QFormLayout;
    fields->setHorizontalSpacing(0);
    fields->setVerticalSpacing(spacing);
    const auto addRow = [fields](const QString& name, const QString& caption, QWidget* field) {
        auto* label = new QLabel(caption);
        label->setObjectName(name);
        label->setMinimumWidth(labelWidth);
        label->setBuddy(field);
        field->setMinimumHeight(fieldHeight);
        fields->addRow(label, field);
    };
    addRow(u"Label3"_s, u"Profiles:"_s, cboProfile);
    addRow(u"Label5"_s, u"Recovery Tool Port:"_s, txtPort);
    layOutCommands();

    auto* buttons = new QGridLayout;
    for (const ImageButton* button : {cmdSendCmd, cmdClose, cmdCancel})
        button->face()->setFixedWidth(buttonWidth);
    buttons->addWidget(cmdSendCmd->face(), 0, 0, Qt::AlignLeft);
    buttons->addWidget(cmdClose->face(), 0, 1); // of these two one is shown
    buttons->addWidget(cmdCancel->face(), 0, 1);

    auto* window = new QVBoxLayout(this);
    window->setContentsMargins(margin, margin, margin, margin);
    window->setSpacing(spacing);
    window->addLayout(fields);
    window->addWidget(fmeRecov, 1);
    window->addWidget(lblNote);
    window->addLayout(buttons);
    lblNote->setFixedHeight(noteHeight);
    setTabOrder(txtPort, Option1.front());
    setTabOrder(Option1.back(), cmdSendCmd);
    setTabOrder(cmdSendCmd, cmdClose);
}

void qrvrcRecovery::layOutCommands()
{
    auto* commands = new QVBoxLayout(fmeRecov);
    commands->setContentsMargins(commandMargins);
    commands->setSpacing(0);
    auto* label = new QLabel(u"Commands"_s, fmeRecov);
    label->setObjectName(u"Label1"_s);
    commands->addWidget(label);
    auto* options = new QVBoxLayout;
    options->setContentsMargins(optionIndent, 0, 0, 0);
    commands->addLayout(options, 1);
    // No wider than its text, which is all of it that takes a click.
    for (QRadioButton* option : Option1)
        options->addWidget(option, 1, Qt::AlignLeft);
}

void qrvrcRecovery::wireSignals()
{
    connect(cmdSendCmd, &ImageButton::activated, this, &qrvrcRecovery::send);
    connect(cmdCancel, &ImageButton::activated, this, &qrvrcRecovery::cancel);
    connect(cmdClose, &ImageButton::activated, this, &QDialog::reject);
    connect(&wsRecov, &Winsock::connected, this, &qrvrcRecovery::sendCommand);
    connect(&wsRecov, &Winsock::dataArrival, this, &qrvrcRecovery::gather);
    connect(&wsRecov, &Winsock::closedByPeer, this, &qrvrcRecovery::handleClosing);
    connect(&wsRecov, &Winsock::failed, this, &qrvrcRecovery::handleFailure);
    connect(&m_limit, &QTimer::timeout, this, &qrvrcRecovery::handleLimit);
    connect(&m_silence, &QTimer::timeout, this, &qrvrcRecovery::showAnswer);
}

void qrvrcRecovery::loadProfileNames()
{
    QStringList names;
    for (const std::string& name : m_client.store.GetAllIniSections(m_client.folder.path(storeFile))) {
        if (!name.empty())
            names += m_client.codePage.toText(name);
    }
    cboProfile->addItems(names);
    if (cboProfile->count() == 0)
        lblNote->setText(u"There is no connection profile yet. The login window saves one with each connection."_s);
    cboProfile->setCurrentIndex(cboProfile->count() == 0 ? -1 : 0);
}

void qrvrcRecovery::send()
{
    if (isBusy())
        return;
    lblNote->clear();
    std::optional<Target> found;
    m_client.reporter.trap("cmdSendCmd", [&] { found = target(); });
    if (!found)
        return;
    m_command = found->command;
    m_answer = RecoveryAnswer();
    setBusy(true);
    lblNote->setText(u"Connecting to %1, port %2..."_s.arg(found->host, QString::number(found->port)));
    m_limit.start(m_limits.connecting);
    wsRecov.connectTo(found->host, found->port);
}

std::optional<qrvrcRecovery::Target> qrvrcRecovery::target()
{
    const std::optional<quint16> port = portNumber(m_client.codePage.toBytes(txtPort->text()));
    if (!port) {
        m_client.reporter.ReportMsg(MessageKind::Failed, u"Invalid Port format!"_s);
        txtPort->setFocus();
        txtPort->selectAll();
        return {};
    }
    const std::string profile = m_client.codePage.toBytes(cboProfile->currentText());
    const ConnectionFields stored =
        storedConnection(profile, m_client.store.GetIniSection(profile, m_client.folder.path(storeFile)));
    if (stored.user.empty() || stored.password.empty()) {
        lblNote->setText(u"This profile has no user name or no password, so nothing was sent."_s);
        return {};
    }
    const std::optional<RecoveryOrder> order = chosenOrder();
    if (!order) {
        lblNote->setText(u"Choose a command first."_s);
        Option1.front()->setFocus();
        return {};
    }
    return Target{m_client.codePage.toText(hostToConnect(stored.host)), *port,
                  recoveryCommand(*order, stored.user, stored.password)};
}

std::optional<RecoveryOrder> qrvrcRecovery::chosenOrder() const
{
    constexpr std::array orders{RecoveryOrder::Start, RecoveryOrder::Restart, RecoveryOrder::Stop};
    for (std::size_t index = 0; index < Option1.size(); ++index) {
        if (Option1[index]->isChecked())
            return orders[index];
    }
    return {};
}

void qrvrcRecovery::sendCommand()
{
    wsRecov.send(m_command);
    m_limit.start(m_limits.answer);
    lblNote->setText(u"The command was sent. Waiting for the recovery tool's answer..."_s);
}

void qrvrcRecovery::gather(std::string_view piece)
{
    if (!isBusy())
        return;
    if (m_answer.take(piece))
        showAnswer();
    else
        m_silence.start();
}

void qrvrcRecovery::showAnswer()
{
    QString text = m_client.codePage.toText(m_answer.text());
    if (text.trimmed().isEmpty())
        text = u"The recovery tool's answer is empty."_s;
    rest({});
    m_client.boxes.show(u"QRVRC"_s, text);
}

void qrvrcRecovery::handleClosing()
{
    if (!m_answer.isEmpty()) {
        showAnswer();
        return;
    }
    rest({});
    m_client.boxes.show(connectionError, u"The QRV Recovery tool closed the connection without an answer.\r\n\r\n"
                                         "It is not known whether it has carried out the command."_s);
}

void qrvrcRecovery::handleFailure(int number, const QString& description)
{
    rest({});
    if (number == refused)
        m_client.boxes.show(connectionError,
                            u"Failed to connect to the QRV Recovery tool!\r\n\r\n"
                            "This could either be because the specified server details (IP or Port)\r\n"
                            "are incorrect, or the Recovery Tool is not running on the server."_s);
    else
        m_client.boxes.show(u"Winsock Error"_s, u"%1: %2"_s.arg(number).arg(description));
}

void qrvrcRecovery::handleLimit()
{
    if (!m_answer.isEmpty()) {
        showAnswer();
        return;
    }
    const bool isSent = wsRecov.state() == SocketState::Connected;
    rest({});
    m_client.boxes.show(connectionError, isSent ? u"The QRV Recovery tool did not answer.\r\n\r\n"
                                                  "It is not known whether it has carried out the command."_s
                                                : u"The server could not be reached. Nothing was sent."_s);
}

void qrvrcRecovery::cancel()
{
    if (!isBusy())
        return;
    const bool isSent = wsRecov.state() == SocketState::Connected;
    rest(isSent ? u"Cancelled. The command had been sent already, and may be carried out."_s
                : u"Cancelled. Nothing was sent."_s);
}

void qrvrcRecovery::rest(const QString& note)
{
    m_limit.stop();
    m_silence.stop();
    wsRecov.close();
    lblNote->setText(note);
    if (isBusy()) {
        setBusy(false);
        cmdSendCmd->setFocus();
    }
}

void qrvrcRecovery::setBusy(bool busy)
{
    if (busy)
        m_pointer.emplace();
    else
        m_pointer.reset();
    cmdClose->setVisible(!busy);
    cmdCancel->setVisible(busy);
    if (busy)
        cmdCancel->setFocus(); // before what has the keyboard is disabled
    for (QWidget* control : std::initializer_list<QWidget*>{fmeRecov, cboProfile, txtPort, cmdSendCmd})
        control->setEnabled(!busy);
}

void qrvrcRecovery::keyPressEvent(QKeyEvent* event)
{
    if (isBusy() && event->matches(QKeySequence::Cancel))
        cancel();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        send(); // from wherever it is pressed
    else
        QDialog::keyPressEvent(event);
}

void qrvrcRecovery::done(int result)
{
    rest({});
    QDialog::done(result);
    m_client.windows.unload(objectName());
}
