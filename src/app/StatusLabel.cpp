#include "app/StatusLabel.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QHelpEvent>
#include <QPainter>
#include <QToolTip>

using namespace Qt::StringLiterals;

namespace {

// Pixels.
constexpr int markSide = 9;
constexpr int indent = 6;
constexpr int gap = 5;

const QString separator = u"  \u00B7  "_s;

class StatusAccessible : public QAccessibleWidget
{
public:
    explicit StatusAccessible(StatusLabel* label) : QAccessibleWidget(label, QAccessible::StaticText) {}

    QString text(QAccessible::Text kind) const override
    {
        return kind == QAccessible::Name ? static_cast<StatusLabel*>(widget())->text() : QAccessibleWidget::text(kind);
    }
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* label = qobject_cast<StatusLabel*>(object);
    return label ? new StatusAccessible(label) : nullptr;
}

QColor colourOf(LinkMark mark)
{
    switch (mark) {
    case LinkMark::Down:
        return {0x60, 0x68, 0x72};
    case LinkMark::Waiting:
    case LinkMark::OnTheWay:
        return {0xB0, 0x6A, 0x00};
    case LinkMark::LoggedIn:
        return {0x1C, 0x80, 0x3C};
    }
    return {};
}

} // namespace

StatusLabel::StatusLabel(const QString& name, QWidget* parent) : QWidget(parent)
{
    setObjectName(name);
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    QAccessible::installFactory(makeAccessible); // the same one is known once
}

void StatusLabel::show(LinkMark mark, const QStringList& texts)
{
    if (mark == m_mark && texts == m_texts)
        return;
    m_mark = mark;
    m_texts = texts;
    update();
}

void StatusLabel::announce()
{
    QAccessibleEvent event(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&event);
}

QString StatusLabel::text() const
{
    return m_texts.join(separator);
}

QSize StatusLabel::sizeHint() const
{
    return {0, fontMetrics().height()};
}

bool StatusLabel::event(QEvent* event)
{
    if (event->type() == QEvent::ToolTip) // made when it is wanted: the text changes by the second
        QToolTip::showText(static_cast<QHelpEvent*>(event)->globalPos(), m_texts.join(u'\n').toHtmlEscaped(), this);
    return QWidget::event(event);
}

void StatusLabel::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    paintMark(painter, QRectF(indent, (height() - markSide) / 2.0, markSide, markSide));
    const QRect line = rect().adjusted(indent + markSide + gap, 0, 0, 0);
    painter.setPen(palette().color(foregroundRole()));
    painter.drawText(line, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                     fontMetrics().elidedText(text(), Qt::ElideRight, line.width()));
}

void StatusLabel::paintMark(QPainter& painter, const QRectF& place) const
{
    constexpr int halfTurn = 180 * 16; // in the painter's sixteenths of a degree
    const QColor colour = colourOf(m_mark);
    painter.setPen(QPen(colour, 1.6));
    painter.setBrush(m_mark == LinkMark::LoggedIn || m_mark == LinkMark::Waiting ? QBrush(colour) : QBrush());
    const QRectF inner = place.adjusted(1, 1, -1, -1);
    if (m_mark == LinkMark::Waiting) {
        painter.drawPolygon(QPolygonF({{inner.center().x(), inner.top()}, inner.bottomRight(), inner.bottomLeft()}));
        return;
    }
    painter.drawEllipse(inner);
    if (m_mark == LinkMark::OnTheWay) {
        painter.setBrush(colour);
        painter.drawPie(inner, halfTurn / 2, halfTurn);
    }
}
