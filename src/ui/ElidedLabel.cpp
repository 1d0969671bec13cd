#include "ui/ElidedLabel.h"

#include <QPainter>
#include <QStyle>

ElidedLabel::ElidedLabel(const QString& name, QWidget* parent) : QLabel(parent)
{
    setObjectName(name);
    setTextFormat(Qt::PlainText);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
}

void ElidedLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    const QRect line = contentsRect();
    const int alignment = static_cast<int>(QStyle::visualAlignment(layoutDirection(), this->alignment()));
    style()->drawItemText(&painter, line, alignment, palette(), isEnabled(),
                          fontMetrics().elidedText(text(), Qt::ElideRight, line.width()), foregroundRole());
}
