#pragma once

#include <QTabBar>

#include <string>

class PictureStore;

/// A strip of tabs painted over a stretched background picture. Each tab carries a key, the name of what it opens.
class StripTabBar : public QTabBar
{
    Q_OBJECT

public:
    /// @param pictures    outlives the strip
    /// @param background  layout name of the picture; the strip is plain while there is none
    StripTabBar(const QString& name, PictureStore& pictures, std::string background, QWidget* parent);

    /// @return the new tab's index; it stands behind the others
    int addKeyedTab(const QString& caption, const QString& key);
    /// Empty for an index without a tab.
    QString key(int index) const;
    /// The first tab with this key, or -1.
    int indexOfKey(const QString& key) const;
    /// The first tab with this caption, or -1.
    int indexOfCaption(const QString& caption) const;
    void removeAllTabs();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    PictureStore& m_pictures;
    std::string m_background;
};
