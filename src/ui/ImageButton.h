#pragma once

#include <QAbstractButton>
#include <QPointer>

class ButtonFace;
class PictureStore;

/// A push button drawn from pictures: two sibling widgets, the caption (this one, named N) over the face (named N with
/// "Img" behind it). Both take the mouse; the caption takes the keyboard and is what screen readers see. Enabling,
/// showing, hiding and deleting the caption does the same to its face. The face is what a layout holds; the caption
/// follows where the face goes.
class ImageButton : public QAbstractButton
{
    Q_OBJECT

public:
    /// @param caption   may mark a shortcut letter with "&"
    /// @param pictures  outlives the button
    /// @param container owns both widgets; they are brought to its front
    ImageButton(const QString& name, const QString& caption, PictureStore& pictures, QWidget* container);
    ~ImageButton() override;

    /// Sets the caption's font size in points.
    void setFontSize(int points);

    /// The item for layouts.
    QWidget* face() const;
    QSize sizeHint() const override;
    void setVisible(bool visible) override;

Q_SIGNALS:
    /// The button was used: a mouse button was released on it, or Space, Enter, Return, the shortcut or a screen reader
    /// pressed it, which count as the left button. The face is raised again by then.
    void activated(Qt::MouseButton button);

protected:
    void changeEvent(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool hitButton(const QPoint& position) const override;
    void keyPressEvent(QKeyEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    friend class ButtonFace;

    void layOutCaption();
    void showFace(bool pressed);
    QRect textRect() const;

    QPointer<ButtonFace> m_face;
    Qt::MouseButtons m_held; ///< other buttons than the left that went down on this button
    bool m_pressed = false;
};
