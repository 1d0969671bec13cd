#include "ui/ImageButton.h"

#include "ui/ButtonFace.h"
#include "ui/Twips.h"

#include <QKeyEvent>
#include <QPainter>

namespace {

constexpr Twips captionIndent = 75_twips; // from the face's left edge
constexpr Twips pressedRight = 20_twips;  // a pressed caption moves right
constexpr Twips pressedDown = 50_twips;   // and down

constexpr qreal disabledOpacity = 0.55;

} // namespace

ImageButton::ImageButton(const QString& name, const QString& caption, PictureStore& pictures, QWidget* container)
    : QAbstractButton(container)
{
    setObjectName(name);
    setText(caption);
    setFocusPolicy(Qt::TabFocus);
    m_face = new ButtonFace(*this, pictures);
    m_face->raise();
    raise();

    connect(this, &QAbstractButton::pressed, this, [this] { showFace(true); });
    connect(this, &QAbstractButton::released, this, [this] { showFace(false); });
    connect(this, &QAbstractButton::clicked, this, [this] { Q_EMIT activated(Qt::LeftButton); });
}

ImageButton::~ImageButton()
{
    delete m_face;
}

QWidget* ImageButton::face() const
{
    return m_face;
}

void ImageButton::setFontSize(int points)
{
    QFont sized = font();
    sized.setPointSize(points);
    setFont(sized);
}

QSize ImageButton::sizeHint() const
{
    const QSize text = fontMetrics().size(Qt::TextShowMnemonic | Qt::TextSingleLine, this->text());
    return text + QSize(2 * captionIndent.pixels(), 0);
}

void ImageButton::setVisible(bool visible)
{
    if (m_face)
        m_face->setVisible(visible);
    QAbstractButton::setVisible(visible);
}

void ImageButton::layOutCaption()
{
    const QRect faceRect = m_face->geometry();
    // The classic caption is drawn from its top edge, one font size above the middle of the face.
    Twips left = Twips::fromPixels(faceRect.left()) + captionIndent;
    Twips top = Twips::fromPixels(faceRect.top()) +
                Twips{faceRect.height() * Twips::perPixel / 2 - qRound(fontInfo().pointSizeF() * Twips::perPixel)};
    if (m_pressed) {
        left = left + pressedRight;
        top = top + pressedDown;
    }
    const int width = faceRect.width() - 2 * captionIndent.pixels();
    setGeometry(left.pixels(), top.pixels(), width, faceRect.height());
}

void ImageButton::showFace(bool pressed)
{
    m_pressed = pressed;
    layOutCaption();
    m_face->update();
}

/// Where the caption's text stands: over the middle of the face, which is not the middle of this widget.
QRect ImageButton::textRect() const
{
    const int height = fontMetrics().height();
    const int shift = m_pressed ? pressedDown.pixels() : 0;
    const int middle = m_face->y() + m_face->height() / 2 + shift - y();
    return {0, qMax(0, middle - height / 2), width(), height};
}

bool ImageButton::hitButton(const QPoint& position) const
{
    return m_face->geometry().contains(mapToParent(position));
}

void ImageButton::mousePressEvent(QMouseEvent* event)
{
    if (event->button() == Qt::LeftButton) {
        QAbstractButton::mousePressEvent(event);
    } else if (hitButton(event->position().toPoint())) {
        m_held |= event->button();
        event->accept();
    } else {
        event->ignore();
    }
}

void ImageButton::mouseReleaseEvent(QMouseEvent* event)
{
    const Qt::MouseButton button = event->button();
    if (button == Qt::LeftButton) {
        QAbstractButton::mouseReleaseEvent(event);
        return;
    }
    event->accept();
    const bool held = m_held.testFlag(button);
    m_held.setFlag(button, false);
    if (held && hitButton(event->position().toPoint()))
        Q_EMIT activated(button); // which may be this button's end
}

void ImageButton::keyPressEvent(QKeyEvent* event)
{
    const bool enter = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (!enter)
        QAbstractButton::keyPressEvent(event);
    else if (!event->isAutoRepeat())
        click();
}

void ImageButton::changeEvent(QEvent* event)
{
    QAbstractButton::changeEvent(event);
    if (!m_face)
        return;
    if (event->type() == QEvent::EnabledChange) {
        m_held = {};
        m_face->followEnabled();
        m_face->update();
    } else if (event->type() == QEvent::FontChange) {
        layOutCaption();
    }
}

void ImageButton::hideEvent(QHideEvent* event)
{
    // A press that a hidden button never sees released must not show when it comes back.
    m_held = {};
    if (isDown()) {
        setDown(false);
        showFace(false);
    }
    QAbstractButton::hideEvent(event);
}

void ImageButton::enterEvent(QEnterEvent* event)
{
    QAbstractButton::enterEvent(event);
    m_face->update();
}

void ImageButton::leaveEvent(QEvent* event)
{
    QAbstractButton::leaveEvent(event);
    m_face->update();
}

void ImageButton::focusInEvent(QFocusEvent* event)
{
    QAbstractButton::focusInEvent(event);
    m_face->update();
}

void ImageButton::focusOutEvent(QFocusEvent* event)
{
    QAbstractButton::focusOutEvent(event);
    m_face->update();
}

void ImageButton::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // The style's own grey for disabled text is hard to read on a faded face.
    painter.setPen(palette().color(QPalette::Active, QPalette::ButtonText));
    painter.setOpacity(isEnabled() ? 1 : disabledOpacity);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width(), Qt::TextShowMnemonic);
    painter.drawText(textRect(), Qt::AlignCenter | Qt::TextShowMnemonic | Qt::TextSingleLine, shown);
}
