#include "login/LoginControls.h"

#include "login/ConnectionFields.h"
#include "ui/FirstPaint.h"
#include "ui/ImageButton.h"
#include "ui/ProgramIcon.h"
#include "ui/QuietComboBox.h"

#include <QCheckBox>
#include <QFormLayout>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QLineEdit>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int pageLeft = 36;
constexpr int frameWidth = 430;
constexpr int frameSpacing = 10;
constexpr QMargins connectMargins(17, 12, 17, 9);
constexpr QMargins statusMargins(17, 4, 17, 6);
constexpr int labelWidth = 120; // so that the fields of both frames stand in one line
constexpr int fieldHeight = 25;
constexpr int rowSpacing = 7;
constexpr int buttonWidth = 120;
constexpr int buttonSpacing = 15;
constexpr int emblemSide = 128;

/// Captions on the left, fields on the right.
QFormLayout* fieldsIn(const QMargins& margins)
{
    auto* form = new QFormLayout;
    form->setContentsMargins(margins);
    form->setHorizontalSpacing(0);
    form->setVerticalSpacing(rowSpacing);
    return form;
}

void addRow(QFormLayout* form, const QString& name, const QString& caption, QWidget* field)
{
    auto* label = new QLabel(caption);
    label->setObjectName(name);
    label->setMinimumWidth(labelWidth);
    label->setBuddy(field);
    field->setMinimumHeight(fieldHeight);
    form->addRow(label, field);
}

} // namespace

// In the order in which the Tab key goes through them.
LoginControls::LoginControls(QWidget& page, PictureStore& pictures)
    : fmeConnect(new QGroupBox(u"Connect to Server Manager"_s, &page)),
      cboProfile(new QuietComboBox(fmeConnect)),
      txtProfile(newField(u"txtProfile"_s, u"Profile Name"_s)),
      txtHost(newField(u"txtHost"_s, u"Host IP/Name"_s)),
      txtPort(newField(u"txtPort"_s, u"Port"_s)),
      txtUser(newField(u"txtUser"_s, u"Username"_s)),
      txtPass(newField(u"txtPass"_s, u"Password"_s)),
      chkRemember(new QCheckBox(u"&Remember password"_s, fmeConnect)),
      cmdConnect(new ImageButton(u"cmdConnect"_s, u"Connect"_s, pictures, fmeConnect)),
      cmdDisconnect(new ImageButton(u"cmdDisconnect"_s, u"Disconnect"_s, pictures, fmeConnect)),
      cmdDelete(new ImageButton(u"cmdDelete"_s, u"Delete"_s, pictures, fmeConnect)),
      fmeStatus(new QGroupBox(u"Connection Status"_s, &page)),
      lblStatus(new QLabel(fmeStatus)),
      lblEmblem(new QLabel(&page))
{
    fmeConnect->setObjectName(u"fmeConnect"_s);
    cboProfile->setObjectName(u"cboProfile"_s);
    cboProfile->setAccessibleName(u"Profiles"_s);
    cboProfile->addItem(QString::fromLatin1(newProfileName));
    txtPass->setEchoMode(QLineEdit::Password);
    chkRemember->setObjectName(u"chkRemember"_s);
    chkRemember->setToolTip(u"Otherwise it is kept until the program ends, and asked for after that"_s);
    chkRemember->setChecked(true);

    fmeStatus->setObjectName(u"fmeStatus"_s);
    lblStatus->setObjectName(u"lblStatus"_s);
    lblStatus->setTextFormat(Qt::PlainText);
    afterFirstPaint(page, [emblem = lblEmblem] {
        emblem->setPixmap(programIcon().pixmap(QSize(emblemSide, emblemSide), emblem->devicePixelRatioF()));
    });
    lblEmblem->setAlignment(Qt::AlignCenter);
    layOut(page);
}

QLineEdit* LoginControls::newField(const QString& name, const QString& meaning)
{
    auto* field = new QLineEdit(fmeConnect);
    field->setObjectName(name);
    field->setAccessibleName(meaning);
    field->setTextMargins(2, 0, 2, 0);
    return field;
}

void LoginControls::layOut(QWidget& page)
{
    layOutConnect();
    QFormLayout* status = fieldsIn(statusMargins);
    addRow(status, {}, u"Status:"_s, lblStatus);
    fmeStatus->setLayout(status);

    auto* whole = new QGridLayout(&page);
    whole->setContentsMargins(pageLeft, 0, 0, 0);
    whole->setHorizontalSpacing(0);
    whole->setVerticalSpacing(frameSpacing);
    whole->addWidget(fmeConnect, 1, 0);
    whole->addWidget(fmeStatus, 2, 0);
    whole->addWidget(lblEmblem, 1, 1);
    whole->setColumnMinimumWidth(0, frameWidth);
    whole->setColumnStretch(1, 1);
    for (const int outside : {0, 3})
        whole->setRowStretch(outside, 1);
}

void LoginControls::layOutConnect()
{
    QFormLayout* form = fieldsIn({});
    addRow(form, {}, u"Profiles:"_s, cboProfile);
    addRow(form, u"lblProfile"_s, u"Profile Name:"_s, txtProfile);
    addRow(form, u"lblHost"_s, u"Host IP/Name:"_s, txtHost);
    addRow(form, u"lblPort"_s, u"Port:"_s, txtPort);
    addRow(form, u"lblUser"_s, u"Username:"_s, txtUser);
    addRow(form, u"lblPass"_s, u"Password:"_s, txtPass);
    form->addRow(QString(), chkRemember);

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
