#pragma once

#include <QPointer>
#include <QWidget>

class ImageButton;
class PictureStore;

/// The picture under an image button's caption. Hands what the mouse does to the caption, so that the button behaves
/// the same wherever it is clicked, and looks as the caption's state tells it.
class ButtonFace : public QWidget
{
    Q_OBJECT

public:
    /// @param caption  the button that this is the face of; shares its parent and its objectName
    ButtonFace(ImageButton& caption, PictureStore& pictures);

    /// What layouts give it: room for the caption on a face of the usual height.
    QSize sizeHint() const override;
    /// Takes on the caption's own enabled state, as far as the container does not decide it.
    void followEnabled();

protected:
    void changeEvent(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void forward(QMouseEvent* event);
    void paintPlainButton(QPainter& painter, bool hovered) const;

    QPointer<ImageButton> m_caption;
    PictureStore& m_pictures;
};
