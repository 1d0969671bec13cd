#pragma once

#include <QAbstractScrollArea>
#include <QBasicTimer>

#include <array>
#include <memory>

class CodePage;
class LinedText;

/// Shows a text of bytes to be read, however large: only the lines in sight are looked at. Nothing is changed in it; it
/// can be selected and copied with mouse and keyboard. Bytes without a character of their own are shown as a pale dot,
/// and are copied as they are.
class TextPane : public QAbstractScrollArea
{
    Q_OBJECT

public:
    /// @param codePage  turns the bytes into characters; outlives the widget
    TextPane(const CodePage& codePage, QWidget* parent = nullptr);
    ~TextPane() override;

    /// Replaces the text, seen from its beginning. @param text  not null
    void setText(std::shared_ptr<const LinedText> text);
    const std::shared_ptr<const LinedText>& text() const { return m_text; }
    /// A message in place of the text, which stays as it is behind it; an empty one shows the text again.
    void setMessage(const QString& message);

    /// Selects from `anchor` to `cursor` (offsets, in any order; beyond the end counts as the end) and brings the
    /// cursor into sight.
    void select(std::size_t anchor, std::size_t cursor);
    std::size_t cursor() const { return m_cursor; }
    std::size_t selectionBegin() const { return std::min(m_anchor, m_cursor); }
    std::size_t selectionEnd() const { return std::max(m_anchor, m_cursor); }
    /// The characters from `begin` to `end`, with the line ends that they came with.
    QString characters(std::size_t begin, std::size_t end) const;
    QString selectedText() const { return characters(selectionBegin(), selectionEnd()); }

    /// Puts the selection on the clipboard. A large one is turned into characters when it is pasted.
    void copy() const;
    void selectAll();

    /// Where the character at `offset` is shown, in pixels of the viewport; it may lie outside.
    QRect characterRect(std::size_t offset) const;
    /// The offset nearest to a point of the viewport.
    std::size_t offsetAt(const QPoint& point) const;

Q_SIGNALS:
    void selectionChanged();

protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    void timerEvent(QTimerEvent* event) override;

private:
    enum class Move { Back, On, WordBack, WordOn, Up, Down, PageUp, PageDown, LineBegin, LineEnd, TextBegin, TextEnd };

    void measure();
    void setScrollRanges();
    void bringIntoSight();
    void paintLine(QPainter& painter, std::size_t line, int top) const;
    int visibleLines() const;
    std::size_t target(Move move);
    std::size_t lineBelow(std::ptrdiff_t lines);
    std::size_t before(std::size_t offset) const;
    std::size_t after(std::size_t offset) const;
    bool isInWord(std::size_t offset) const;
    std::size_t wordBegin(std::size_t offset) const;
    std::size_t wordEnd(std::size_t offset) const;
    void moveCursor(std::size_t to, bool keepsAnchor);
    void offerSelection() const;

    const CodePage& m_codePage;
    std::shared_ptr<const LinedText> m_text;
    QString m_message;
    std::size_t m_anchor = 0;
    std::size_t m_cursor = 0;
    std::size_t m_column = 0; ///< the one that moves up and down keep to
    qreal m_cell = 1;         ///< pixels of a column
    int m_lineHeight = 1;
    std::array<bool, 256> m_fitsCell{}; ///< whether the byte's character is as wide as a column
    QBasicTimer m_dragScroll;
};
