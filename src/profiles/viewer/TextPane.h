#pragma once

#include "profiles/viewer/LinePainter.h"
#include "profiles/viewer/TextCursor.h"

#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QClipboard>

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
    /// Lets the text go; an empty one takes its place.
    void clear();
    /// A message in place of the text, which stays as it is behind it; an empty one shows the text again.
    void setMessage(const QString& message);

    /// Selects from `anchor` to `cursor` (offsets, in any order; beyond the end counts as the end) and brings the
    /// cursor into sight.
    void select(std::size_t anchor, std::size_t cursor);
    std::size_t cursor() const { return m_cursor.position(); }
    TextRange selection() const { return m_cursor.selection(); }
    /// The characters from `begin` to `end`, with the line ends that they came with.
    QString characters(std::size_t begin, std::size_t end) const;
    QString selectedText() const { return characters(selection().begin, selection().end); }

    /// Puts the selection on the clipboard. A large one is turned into characters when it is pasted.
    void copy() const;
    void selectAll();

    /// Where the character at `offset` is shown, in pixels of the viewport; it may lie outside.
    QRect characterRect(std::size_t offset) const;
    /// The offset nearest to a point of the viewport.
    std::size_t offsetAt(const QPoint& point) const;

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
    void measure();
    void setScrollRanges();
    /// Moves a place between the two bytes of a character behind it or before it.
    void keepCharacterWhole(bool onward, bool selects);
    void followCursor();
    void bringIntoSight();
    void paintLine(QPainter& painter, std::size_t line, int top) const;
    int visibleLines() const;
    void offerSelection() const;
    void putSelection(QClipboard::Mode mode) const;

    const CodePage& m_codePage;
    LinePainter m_painter;
    TextCursor::WordBytes m_words{};
    std::shared_ptr<const LinedText> m_text;
    TextCursor m_cursor; ///< of that text
    QString m_message;
    QBasicTimer m_dragScroll;
};
