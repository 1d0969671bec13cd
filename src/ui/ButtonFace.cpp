#include "ui/ButtonFace.h"

#include "ui/ImageButton.h"
#include "ui/PictureStore.h"

#include <QCoreApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QStyleOptionButton>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr qreal disabledOpacity = 0.45;
constexpr int usualHeight = 30;  // pixels, as the next
constexpr int captionMargin = 6; // above and below
constexpr int hoverAlpha = 28;   // of 255
constexpr qreal focusFrameWidth = 2;
constexpr qreal focusFrameInset = 2.5; // pixels from the face's edge to the middle of the frame
constexpr qreal cornerRadius = 3;

} // namespace

ButtonFace::ButtonFace(ImageButton& caption, PictureStore& pictures)
    : QWidget(caption.parentWidget()),
      m_caption(&caption),
      m_pictures(pictures)
{
    setObjectName(caption.objectName() + u"Img"_s);
    setFocusPolicy(Qt::NoFocus);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

QSize ButtonFace::sizeHint() const
{
    if (!m_caption)
        return {};
    const QSize caption = m_caption->sizeHint();
    return {caption.width(), std::max(usualHeight, caption.height() + 2 * captionMargin)};
}

void ButtonFace::followEnabled()
{
    if (m_caption)
        setEnabled(!m_caption->testAttribute(Qt::WA_ForceDisabled));
}

void ButtonFace::changeEvent(QEvent* event)
{
    QWidget::changeEvent(event);
    // A container that is enabled again enables its face without asking a caption that was disabled meanwhile.
    if (event->type() == QEvent::EnabledChange)
        followEnabled();
}

void ButtonFace::enterEvent(QEnterEvent* event)
{
    QWidget::enterEvent(event);
    update();
}

void ButtonFace::leaveEvent(QEvent* event)
{
    QWidget::leaveEvent(event);
    update();
}

void ButtonFace::mouseDoubleClickEvent(QMouseEvent* event)
{
    forward(event);
}

void ButtonFace::mouseMoveEvent(QMouseEvent* event)
{
    forward(event);
}

void ButtonFace::mousePressEvent(QMouseEvent* event)
{
    forward(event);
}

void ButtonFace::mouseReleaseEvent(QMouseEvent* event)
{
    forward(event);
}

void ButtonFace::moveEvent(QMoveEvent* event)
{
    QWidget::moveEvent(event);
    if (m_caption)
        m_caption->layOutCaption();
}

void ButtonFace::resizeEvent(QResizeEvent* event)
{
    QWidget::resizeEvent(event);
    if (m_caption)
        m_caption->layOutCaption();
}

void ButtonFace::forward(QMouseEvent* event)
{
    if (!m_caption)
        return;
    QMouseEvent moved(event->type(), m_caption->mapFromParent(mapToParent(event->position())), event->globalPosition(),
                      event->button(), event->buttons(), event->modifiers(), event->pointingDevice());
    QCoreApplication::sendEvent(m_caption, &moved);
    event->setAccepted(moved.isAccepted());
}

void ButtonFace::paintEvent(QPaintEvent*)
{
    if (!m_caption)
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool hovered = isEnabled() && (underMouse() || m_caption->underMouse());
    const QPixmap picture = m_pictures.scaled(m_caption->m_pressed ? "\\imgs\\butdown.gif" : "\\imgs\\butup.gif",
                                              size(), devicePixelRatioF());
    if (picture.isNull()) {
        paintPlainButton(painter, hovered);
    } else {
        painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
        painter.drawPixmap(0, 0, picture);
        painter.setOpacity(1);
        if (hovered && !m_caption->m_pressed) {
            painter.setPen(Qt::NoPen);
            QColor tint = palette().color(QPalette::Highlight);
            tint.setAlpha(hoverAlpha);
            painter.setBrush(tint);
            painter.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), cornerRadius, cornerRadius);
        }
    }
    if (m_caption->hasFocus()) {
        painter.setPen(QPen(palette().color(QPalette::Highlight), focusFrameWidth));
        painter.setBrush(Qt::NoBrush);
        const qreal inset = focusFrameInset;
        painter.drawRoundedRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset), cornerRadius, cornerRadius);
    }
}

void ButtonFace::paintPlainButton(QPainter& painter, bool hovered) const
{
    QStyleOptionButton option;
    option.initFrom(this);
    option.state |= m_caption->m_pressed ? QStyle::State_Sunken : QStyle::State_Raised;
    option.state.setFlag(QStyle::State_MouseOver, hovered);
    style()->drawControl(QStyle::CE_PushButtonBevel, &option, &painter, this);
}
