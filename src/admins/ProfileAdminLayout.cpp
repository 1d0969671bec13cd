// How the window of the accounts is built and laid out. What it does is in qrvrcProfileAdmin.cpp.

#include "admins/qrvrcProfileAdmin.h"

#include "admins/PrivilegeGrid.h"
#include "link/Client.h"
#include "ui/CopyActions.h"
#include "ui/ImageButton.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QVBoxLayout>

#include <array>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int margin = 8;
constexpr int inset = 10; // from a frame to what it holds
constexpr int captionTop = 22;
constexpr int fieldHeight = 26;
constexpr int labelHeight = 18;
constexpr int fieldWidth = 180;
constexpr int checklistWidth = 290;
constexpr int upperHeight = 244;
constexpr QSize buttonSize(130, 30);
constexpr int logBatch = 1000; // lines laid out at once

} // namespace

void qrvrcProfileAdmin::buildControls()
{
    const auto frame = [this](const QString& name, const QString& caption) {
        auto* box = new QGroupBox(caption, this);
        box->setObjectName(name);
        return box;
    };
    fmeAddUser = frame(u"fmeAddUser"_s, u"Add User"_s);
    fmeLog = frame(u"fmeLog"_s, u"Connectivity Log"_s);
    fmeUsers = frame(u"fmeUsers"_s, u"Users"_s);
    buildAddUser();
    buildUsersAndLog();
    const std::array<QWidget*, 9> order{cboUser,   txtUser,  txtPass,     lstSections,  cmdAddUser,
                                        cmdModify, mfgUsers, cmdKickUser, cmdDeleteUser};
    for (std::size_t at = 1; at < order.size(); ++at)
        setTabOrder(order[at - 1], order[at]);
    setTabOrder(cmdDeleteUser, lstLog);
}

void qrvrcProfileAdmin::buildAddUser()
{
    cboUser = new QComboBox(fmeAddUser);
    cboUser->setObjectName(u"cboUser"_s);
    cboUser->setAccessibleName(u"User to add or modify"_s);
    // As wide as it is laid out, whatever names come from the host.
    cboUser->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    const auto field = [this](const QString& name, const QString& caption) {
        auto* edit = new QLineEdit(fmeAddUser);
        edit->setObjectName(name);
        auto* label = new QLabel(caption, fmeAddUser);
        label->setObjectName(u"lbl"_s + name.mid(3));
        label->setBuddy(edit);
        return edit;
    };
    txtUser = field(u"txtUser"_s, u"Username:"_s);
    txtPass = field(u"txtPass"_s, u"Password:"_s);
    lstSections = new PrivilegeGrid(u"lstSections"_s, m_client.codePage, fmeAddUser);
    lstSections->setAccessibleName(u"Privileges"_s);
    auto* caption = new QLabel(u"Privileges"_s, fmeAddUser);
    caption->setObjectName(u"lblSections"_s);
    caption->setBuddy(lstSections);
    cmdAddUser = new ImageButton(u"cmdAddUser"_s, u"Add User"_s, m_client.pictures, fmeAddUser);
    cmdModify = new ImageButton(u"cmdModify"_s, u"Modify User"_s, m_client.pictures, fmeAddUser);
    lblNote = new QLabel(fmeAddUser);
    lblNote->setObjectName(u"lblNote"_s);
    lblNote->setTextFormat(Qt::PlainText);
    lblNote->setWordWrap(true);
    lblNote->setAlignment(Qt::AlignLeft | Qt::AlignTop);
}

void qrvrcProfileAdmin::buildUsersAndLog()
{
    static constexpr std::array<GridColumn, ColumnCount> columns{{
        {"Username", 1800_twips, Qt::AlignLeft},
        {"Password", 1800_twips, Qt::AlignLeft},
        {"IP Address", 2200_twips, Qt::AlignHCenter},
        {"Status", 2500_twips, Qt::AlignHCenter},
    }};
    mfgUsers = new GridView(u"mfgUsers"_s, fmeUsers);
    mfgUsers->setAccessibleName(u"Users"_s);
    mfgUsers->setColumns(columns);
    cmdKickUser = new ImageButton(u"cmdKickUser"_s, u"Kick User"_s, m_client.pictures, fmeUsers);
    cmdDeleteUser = new ImageButton(u"cmdDeleteUser"_s, u"Delete User"_s, m_client.pictures, fmeUsers);

    lstLog = new QListWidget(fmeLog);
    lstLog->setObjectName(u"lstLog"_s);
    lstLog->setAccessibleName(u"Connectivity Log"_s);
    lstLog->setFont(mfgUsers->font());
    lstLog->setWordWrap(true);
    lstLog->setAlternatingRowColors(true);
    lstLog->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    lstLog->setVerticalScrollMode(QListView::ScrollPerPixel);
    lstLog->setLayoutMode(QListView::Batched);
    lstLog->setBatchSize(logBatch);
    addCopyActions(lstLog);
    lblLogEmpty = new QLabel(lstLog->viewport());
    lblLogEmpty->setObjectName(u"lblLogEmpty"_s);
    lblLogEmpty->setAlignment(Qt::AlignCenter);
    lblLogEmpty->setWordWrap(true);
    lblLogEmpty->setForegroundRole(QPalette::PlaceholderText);
    auto* overLog = new QVBoxLayout(lstLog->viewport());
    overLog->addWidget(lblLogEmpty);
}

void qrvrcProfileAdmin::placeControls()
{
    const QSize page = parentWidget() ? parentWidget()->size() : QSize(757, 440);
    const int addWidth = inset + fieldWidth + inset + checklistWidth + inset;
    fmeAddUser->setGeometry(margin, 2, addWidth, upperHeight);
    int y = captionTop;
    const auto below = [&y](QWidget* widget, int height, int gap) {
        widget->setGeometry(inset, y, fieldWidth, height);
        y += height + gap;
    };
    below(cboUser, fieldHeight, 8);
    below(fmeAddUser->findChild<QLabel*>(u"lblUser"_s), labelHeight, 0);
    below(txtUser, fieldHeight, 6);
    below(fmeAddUser->findChild<QLabel*>(u"lblPass"_s), labelHeight, 0);
    below(txtPass, fieldHeight, 10);
    const QRect button(QPoint(inset, y), buttonSize);
    cmdAddUser->place(button);
    cmdModify->place(button);
    y = button.bottom() + 8;
    lblNote->setGeometry(inset, y, fieldWidth, upperHeight - y - 4);

    const int checklistLeft = inset + fieldWidth + inset;
    fmeAddUser->findChild<QLabel*>(u"lblSections"_s)->setGeometry(checklistLeft, captionTop - 4, checklistWidth, 16);
    const int checklistTop = captionTop + 14;
    lstSections->setGeometry(checklistLeft, checklistTop, checklistWidth, upperHeight - inset - checklistTop);

    const int logLeft = margin + addWidth + 6;
    fmeLog->setGeometry(logLeft, 2, page.width() - margin - logLeft, upperHeight);
    lstLog->setGeometry(inset, captionTop, fmeLog->width() - 2 * inset, upperHeight - inset - captionTop);

    const int usersTop = 2 + upperHeight + 6;
    fmeUsers->setGeometry(margin, usersTop, page.width() - 2 * margin, page.height() - margin - usersTop);
    const int buttonLeft = fmeUsers->width() - inset - buttonSize.width();
    mfgUsers->setGeometry(inset, captionTop, buttonLeft - 2 * inset, fmeUsers->height() - inset - captionTop);
    cmdKickUser->place(QRect(QPoint(buttonLeft, captionTop), buttonSize));
    cmdDeleteUser->place(QRect(QPoint(buttonLeft, captionTop + buttonSize.height() + 8), buttonSize));
}
