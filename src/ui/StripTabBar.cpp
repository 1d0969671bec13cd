#include "ui/StripTabBar.h"

#include "ui/BackgroundPicture.h"
#include "ui/PictureStore.h"

#include <QPainter>

StripTabBar::StripTabBar(const QString& name, PictureStore& pictures, std::string background, QWidget* parent)
    : QTabBar(parent),
      m_pictures(pictures),
      m_background(std::move(background))
{
    setObjectName(name);
    setExpanding(false);
    setUsesScrollButtons(true);
    // White lets the background picture through unchanged; any other ground would tint it bit by bit.
    QPalette ground = palette();
    ground.setColor(QPalette::Window, Qt::white);
    setPalette(ground);
    setAutoFillBackground(true);
}

int StripTabBar::addKeyedTab(const QString& caption, const QString& key)
{
    const int index = addTab(caption);
    setTabData(index, key);
    return index;
}

QString StripTabBar::key(int index) const
{
    return tabData(index).toString();
}

int StripTabBar::indexOfKey(const QString& key) const
{
    for (int index = 0; index < count(); ++index) {
        if (this->key(index) == key)
            return index;
    }
    return -1;
}

int StripTabBar::indexOfCaption(const QString& caption) const
{
    for (int index = 0; index < count(); ++index) {
        if (tabText(index) == caption)
            return index;
    }
    return -1;
}

void StripTabBar::removeAllTabs()
{
    while (count() > 0)
        removeTab(count() - 1);
}

void StripTabBar::paintEvent(QPaintEvent* event)
{
    QTabBar::paintEvent(event);
    QPainter painter(this);
    paintBackground(painter, m_pictures.scaled(m_background, size(), devicePixelRatioF()), rect());
}
