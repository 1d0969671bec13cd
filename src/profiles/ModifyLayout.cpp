// How the profile editor is built and laid out. What it does is in qrvrcModify.cpp.

#include "profiles/qrvrcModify.h"

#include "link/Client.h"
#include "ui/CopyActions.h"
#include "ui/ImageButton.h"

#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QProgressBar>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int margin = 8;
constexpr int inset = 14; // of what stands in a frame
constexpr int firstRowTop = 26;
constexpr int rowHeight = 32;
constexpr int fieldHeight = 25;
constexpr int leftWidth = 446;
constexpr int fieldLeft = 110;
constexpr int fieldWidth = leftWidth - fieldLeft - inset;
constexpr int numberWidth = 64;
constexpr int choiceWidth = 110;
constexpr int idWidth = 150;
constexpr int buttonWidth = 130;
constexpr int smallButtonWidth = 100;
constexpr int buttonHeight = 30;

QGroupBox* frame(const QString& name, const QString& caption, QWidget* parent)
{
    auto* box = new QGroupBox(caption, parent);
    box->setObjectName(name);
    return box;
}

/// A control with its label to the left, in a row of a frame.
void labelled(QWidget* control, const QString& name, const QString& caption, int row)
{
    control->setObjectName(name);
    control->setAccessibleName(caption.endsWith(u':') ? caption.chopped(1) : caption);
    auto* label = new QLabel(caption, control->parentWidget());
    label->setBuddy(control);
    label->setGeometry(inset, firstRowTop + row * rowHeight, label->sizeHint().width(), fieldHeight);
}

QLineEdit* field(QWidget* parent)
{
    auto* edit = new QLineEdit(parent);
    edit->setTextMargins(2, 0, 2, 0);
    return edit;
}

QCheckBox* checkBox(const QString& name, const QString& caption, int row, QWidget* parent)
{
    auto* box = new QCheckBox(caption, parent);
    box->setObjectName(name);
    box->setGeometry(inset, firstRowTop + row * rowHeight, box->sizeHint().width(), fieldHeight);
    return box;
}

} // namespace

/// In the order in which Tab goes through them.
void qrvrcModify::buildControls()
{
    setWindowTitle(u"Modify Profile"_s);
    fmeProfile = frame(u"fmeProfile"_s, u"Profile Details"_s, this);
    txtName = field(fmeProfile);
    txtName->setReadOnly(true); // the tracker takes no new name
    QPalette still = txtName->palette();
    still.setColor(QPalette::Base, still.color(QPalette::Window));
    txtName->setPalette(still);
    labelled(txtName, u"txtName"_s, u"Profile Name:"_s, 0);
    cboStats = new QComboBox(fmeProfile);
    labelled(cboStats, u"cboStats"_s, u"Stats System:"_s, 1);
    buildServerFrame();
    buildPaddingFrame();
    buildMiscFrame();
    cmdModify = new ImageButton(u"cmdModify"_s, u"Modify"_s, m_client.pictures, this);
    cmdCancel = new ImageButton(u"cmdCancel"_s, u"Cancel"_s, m_client.pictures, this);
}

void qrvrcModify::buildServerFrame()
{
    fmeServer = frame(u"fmeServer"_s, u"Server Details"_s, this);
    lstUrls = new QListWidget(fmeServer);
    lstUrls->setStyleSheet(u"QListView::item { padding: 2px; }"_s);
    labelled(lstUrls, u"lstUrls"_s, u"Url(s) to PHP Scripts:"_s, 0);
    addCopyActions(lstUrls);
    mnuRemove = new QAction(u"&Remove"_s, lstUrls);
    mnuRemove->setObjectName(u"mnuRemove"_s);
    mnuRemove->setShortcut(QKeySequence::Delete);
    mnuRemove->setShortcutContext(Qt::WidgetShortcut);
    lstUrls->addAction(mnuRemove);

    txtUrl = field(fmeServer);
    txtUrl->setObjectName(u"txtUrl"_s);
    txtUrl->setAccessibleName(u"Url to add"_s);
    txtServerid = field(fmeServer);
    txtServerid->setObjectName(u"txtServerid"_s);
    txtServerid->setAccessibleName(u"Server ID"_s);
    cmdAddurl = new ImageButton(u"cmdAddurl"_s, u"Add Url"_s, m_client.pictures, fmeServer);

    lblCheck = new QLabel(fmeServer);
    lblCheck->setObjectName(u"lblCheck"_s);
    lblCheck->setTextFormat(Qt::PlainText);
    lblCheck->setWordWrap(true);
    pbCheck = new QProgressBar(fmeServer);
    pbCheck->setObjectName(u"pbCheck"_s);
    pbCheck->setAccessibleName(u"Check under way"_s);
    pbCheck->setRange(0, 0);
    pbCheck->setTextVisible(false);
    cmdStopCheck = new ImageButton(u"cmdStopCheck"_s, u"Stop"_s, m_client.pictures, fmeServer);
    cmdStopCheck->setAccessibleName(u"Stop the check"_s);

    txtSrHost = field(fmeServer);
    txtSrHost->setObjectName(u"txtSrHost"_s);
    txtSrHost->setAccessibleName(u"Host Name"_s);
    txtSrHost->setToolTip(u"The name from which messages are sent in the game"_s);
}

void qrvrcModify::buildPaddingFrame()
{
    fmePadding = frame(u"fmePadding"_s, u"Anti Stats Padding Options"_s, this);
    chkAntiStatsPad = checkBox(u"chkAntiStatsPad"_s, u"Enable Anti Stats Padding:"_s, 0, fmePadding);
    txtPadnum = field(fmePadding);
    labelled(txtPadnum, u"txtPadnum"_s, u"Minimum number of players:"_s, 1);
    txtPadtime = field(fmePadding);
    labelled(txtPadtime, u"txtPadtime"_s, u"Minimum number of minutes:"_s, 2);
}

void qrvrcModify::buildMiscFrame()
{
    fmeMisc = frame(u"fmeMisc"_s, u"Misc Options"_s, this);
    cboLL = new QComboBox(fmeMisc);
    cboLL->addItems({u"Ignore"_s, u"Disarm"_s, u"Kill!"_s});
    labelled(cboLL, u"cboLL"_s, u"Left Leaning Players"_s, 0);
    chkAra = checkBox(u"chkAra"_s, u"Announce Ranks/Awards"_s, 1, fmeMisc);
    chkRbm = checkBox(u"chkRbm"_s, u"Report to Quorvane Master Server List"_s, 2, fmeMisc);
    chkAcs = checkBox(u"chkAcs"_s, u"Auto connect on startup"_s, 3, fmeMisc);
    chkAcs->setToolTip(u"Connects to the game when the tracker starts, if the game runs"_s);
}

void qrvrcModify::placeControls()
{
    const QSize page = parentWidget() ? parentWidget()->size() : QSize(757, 440);
    const int buttonTop = page.height() - margin - buttonHeight;
    constexpr int top = 2;

    const int profileHeight = firstRowTop + 2 * rowHeight + 4;
    fmeProfile->setGeometry(margin, top, leftWidth, profileHeight);
    txtName->setGeometry(fieldLeft, firstRowTop, fieldWidth, fieldHeight);
    cboStats->setGeometry(fieldLeft, firstRowTop + rowHeight, fieldWidth, fieldHeight);
    const int serverTop = top + profileHeight + 6;
    fmeServer->setGeometry(margin, serverTop, leftWidth, buttonTop - margin - serverTop);
    placeServerFrame();

    const int rightLeft = margin + leftWidth + margin;
    const int rightWidth = page.width() - rightLeft - margin;
    const int paddingHeight = firstRowTop + 3 * rowHeight + 4;
    fmePadding->setGeometry(rightLeft, top, rightWidth, paddingHeight);
    const int numberLeft = rightWidth - inset - numberWidth;
    txtPadnum->setGeometry(numberLeft, firstRowTop + rowHeight, numberWidth, fieldHeight);
    txtPadtime->setGeometry(numberLeft, firstRowTop + 2 * rowHeight, numberWidth, fieldHeight);
    fmeMisc->setGeometry(rightLeft, top + paddingHeight + 6, rightWidth, firstRowTop + 4 * rowHeight + 4);
    cboLL->setGeometry(rightWidth - inset - choiceWidth, firstRowTop, choiceWidth, fieldHeight);

    // Away from the place of the list's button that opens this window, where a double click would press them.
    const int cancelLeft = page.width() - margin - buttonWidth;
    cmdCancel->place(QRect(cancelLeft, buttonTop, buttonWidth, buttonHeight));
    cmdModify->place(QRect(cancelLeft - margin - buttonWidth, buttonTop, buttonWidth, buttonHeight));
}

/// From the bottom up; the list takes what is left.
void qrvrcModify::placeServerFrame()
{
    const auto caption = [this](const QString& text, QWidget* control, int y) {
        auto* label = new QLabel(text, fmeServer);
        label->setBuddy(control);
        label->setGeometry(inset, y, fieldLeft - inset - 4, fieldHeight);
    };
    constexpr int buttonLeft = leftWidth - inset - smallButtonWidth;
    constexpr int noteWidth = buttonLeft - inset - 10;
    int y = fmeServer->height() - rowHeight - 4;
    caption(u"Host Name:"_s, txtSrHost, y);
    txtSrHost->setGeometry(fieldLeft, y, fieldWidth, fieldHeight);
    y -= 50;
    lblCheck->setGeometry(inset, y - 2, noteWidth, 32);
    pbCheck->setGeometry(inset, y + 32, noteWidth, 8);
    cmdStopCheck->place(QRect(buttonLeft, y + 5, smallButtonWidth, buttonHeight));
    y -= rowHeight + 2;
    caption(u"Server ID:"_s, txtServerid, y);
    txtServerid->setGeometry(fieldLeft, y, idWidth, fieldHeight);
    cmdAddurl->place(QRect(buttonLeft, y - 2, smallButtonWidth, buttonHeight));
    y -= rowHeight;
    caption(u"Url:"_s, txtUrl, y);
    txtUrl->setGeometry(fieldLeft, y, fieldWidth, fieldHeight);
    constexpr int listTop = firstRowTop + fieldHeight;
    lstUrls->setGeometry(inset, listTop, leftWidth - 2 * inset, y - 8 - listTop);
}
