// How the panel of updates is built and laid out. What it does is in UpdatePanel.cpp.

#include "updates/UpdatePanel.h"

#include "link/Client.h"
#include "ui/Grid.h"
#include "ui/ImageButton.h"

#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QStyleOptionButton>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int margin = 10;
constexpr int titleHeight = 24;
constexpr int gap = 6;
constexpr QSize buttonSize(130, 30);
constexpr int progressHeight = 58;
constexpr QSize cancelSize(80, 24);
constexpr int percentWidth = 42;

/// A check box as the style draws it.
QPixmap boxPicture(const QWidget& widget, bool checked)
{
    QStyleOptionButton option;
    option.initFrom(&widget);
    option.state |= checked ? QStyle::State_On : QStyle::State_Off;
    option.rect = widget.style()->subElementRect(QStyle::SE_CheckBoxIndicator, &option, &widget);
    option.rect.moveTo(0, 0);
    const qreal ratio = widget.devicePixelRatioF();
    QPixmap picture(option.rect.size() * ratio);
    picture.setDevicePixelRatio(ratio);
    picture.fill(Qt::transparent);
    QPainter painter(&picture);
    widget.style()->drawPrimitive(QStyle::PE_IndicatorCheckBox, &option, &painter, &widget);
    return picture;
}

/// Keeps a picture under a name of its own; never shown itself.
void keepPicture(const QString& name, const QPixmap& picture, QWidget* parent)
{
    auto* box = new QLabel(parent);
    box->setObjectName(name);
    box->setPixmap(picture);
    box->hide();
}

} // namespace

void UpdatePanel::buildControls()
{
    m_checked = boxPicture(*this, true);
    m_unchecked = boxPicture(*this, false);
    keepPicture(u"picChecked"_s, m_checked, this);
    keepPicture(u"picUnchecked"_s, m_unchecked, this);
    const int inner = width() - 2 * margin;
    const int progressTop = height() - margin - progressHeight;
    buildProgress(QRect(margin, progressTop, inner, progressHeight));

    const QPoint buttonAt(margin, progressTop - gap - buttonSize.height());
    cmdCheck = new ImageButton(m_setup.checkName, m_setup.checkCaption, m_client.pictures, this);
    cmdGetUpdates = new ImageButton(u"cmdGetUpdates"_s, u"Get Updates"_s, m_client.pictures, this);
    for (ImageButton* button : {cmdCheck, cmdGetUpdates})
        button->place(QRect(buttonAt, buttonSize));

    int bottom = buttonAt.y() - gap;
    for (const QString& text :
         {u"Some items may require you to stop all active profiles or to stop the Quorvane Ravelin."_s,
          u"All items that are checked will be downloaded and installed."_s}) {
        auto* label = new QLabel(text, this);
        label->setWordWrap(true);
        const int textHeight = label->heightForWidth(inner);
        label->setGeometry(margin, bottom - textHeight, inner, textHeight);
        bottom -= textHeight + 2;
    }
    lstQRV = new GridView(u"lstQRV"_s, this);
    lstQRV->setAccessibleName(m_setup.title);
    lstQRV->horizontalHeader()->hide();
    lstQRV->setGeometry(margin, titleHeight, inner, bottom - gap - titleHeight);
    lstQRV->setEmptyText(u"Press \"%1\" to look for updates."_s.arg(m_setup.checkCaption));
    setTabOrder(lstQRV, cmdCheck);
    setTabOrder(cmdCheck, cmdGetUpdates);
    setTabOrder(cmdGetUpdates, cmdCancel);
}

void UpdatePanel::buildProgress(const QRect& place)
{
    auto* frame = new QGroupBox(u"Download Progress"_s, this);
    frame->setObjectName(u"fmeProgress"_s);
    frame->setGeometry(place);
    const int middle = (titleHeight + place.height()) / 2 - 2;
    cmdCancel = new ImageButton(u"cmdCancel"_s, u"Cancel"_s, m_client.pictures, frame);
    cmdCancel->place(
        QRect(QPoint(place.width() - margin - cancelSize.width(), middle - cancelSize.height() / 2), cancelSize));
    const int percentLeft = place.width() - margin - cancelSize.width() - gap - percentWidth;
    lblPer = new QLabel(u"0%"_s, frame);
    lblPer->setObjectName(u"lblPer"_s);
    lblPer->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    lblPer->setGeometry(percentLeft, middle - 10, percentWidth, 20);
    pbDwnld = new QProgressBar(frame);
    pbDwnld->setObjectName(u"pbDwnld"_s);
    pbDwnld->setAccessibleName(u"Download Progress"_s);
    pbDwnld->setTextVisible(false);
    pbDwnld->setRange(0, 1);
    pbDwnld->setValue(0);
    pbDwnld->setGeometry(margin, middle - 9, percentLeft - gap - margin, 18);
}
