#pragma once

#include "app/StatusTexts.h"

#include <QStringList>
#include <QWidget>

/// A shape and a line of text behind it, cut off with three dots where there is no room; all of it is the tool tip.
/// Screen readers read the text when they look, and hear of it only through `announce`.
class StatusLabel : public QWidget
{
    Q_OBJECT

public:
    StatusLabel(const QString& name, QWidget* parent);

    /// @param texts  the most important first
    void show(LinkMark mark, const QStringList& texts);
    /// Tells screen readers that something has changed which they should read out.
    void announce();
    QString text() const;

    QSize sizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void paintMark(QPainter& painter, const QRectF& place) const;

    LinkMark m_mark = LinkMark::Down;
    QStringList m_texts;
};
