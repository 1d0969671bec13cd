#include "profiles/viewer/TextPaneAccessible.h"

#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"

#include <QAccessibleWidget>

namespace {

/// A pane's text for screen readers. Whatever they ask for, no more of it is made into characters than they get.
class TextPaneAccessible : public QAccessibleWidget, public QAccessibleTextInterface
{
public:
    explicit TextPaneAccessible(TextPane* pane) : QAccessibleWidget(pane, QAccessible::EditableText) {}

    QAccessible::State state() const override
    {
        QAccessible::State state = QAccessibleWidget::state();
        state.readOnly = true;
        state.multiLine = true;
        state.selectableText = true;
        return state;
    }

    void* interface_cast(QAccessible::InterfaceType type) override
    {
        if (type == QAccessible::TextInterface)
            return static_cast<QAccessibleTextInterface*>(this);
        return QAccessibleWidget::interface_cast(type);
    }

    void selection(int index, int* start, int* end) const override
    {
        const bool isThere = index < selectionCount();
        *start = isThere ? static_cast<int>(pane().selection().begin) : 0;
        *end = isThere ? static_cast<int>(pane().selection().end) : 0;
    }
    int selectionCount() const override { return pane().selection().isEmpty() ? 0 : 1; }
    void addSelection(int start, int end) override { setSelection(0, start, end); }
    void removeSelection(int) override { setCursorPosition(cursorPosition()); }
    void setSelection(int, int start, int end) override { pane().select(offset(start), offset(end)); }
    int cursorPosition() const override { return static_cast<int>(pane().cursor()); }
    void setCursorPosition(int position) override { pane().select(offset(position), offset(position)); }
    int characterCount() const override { return static_cast<int>(lined().size()); }
    QString text(int start, int end) const override { return part(start, end); }

    QString textBeforeOffset(int at, QAccessible::TextBoundaryType kind, int* start, int* end) const override
    {
        return unit(at, kind, -1, start, end);
    }
    QString textAtOffset(int at, QAccessible::TextBoundaryType kind, int* start, int* end) const override
    {
        return unit(at, kind, 0, start, end);
    }
    QString textAfterOffset(int at, QAccessible::TextBoundaryType kind, int* start, int* end) const override
    {
        return unit(at, kind, 1, start, end);
    }

    QRect characterRect(int at) const override
    {
        const QRect place = pane().characterRect(offset(at));
        return {pane().viewport()->mapToGlobal(place.topLeft()), place.size()};
    }
    int offsetAtPoint(const QPoint& point) const override
    {
        return static_cast<int>(pane().offsetAt(pane().viewport()->mapFromGlobal(point)));
    }
    void scrollToSubstring(int start, int) override { setCursorPosition(start); }
    QString attributes(int at, int* start, int* end) const override
    {
        *start = at;
        *end = characterCount();
        return {};
    }

private:
    TextPane& pane() const { return *static_cast<TextPane*>(widget()); }
    const LinedText& lined() const { return *pane().text(); }
    std::size_t offset(int position) const
    {
        return std::min(static_cast<std::size_t>(std::max(0, position)), lined().size());
    }

    QString part(int start, int end) const
    {
        const std::size_t begin = offset(start);
        return pane().characters(begin, std::max(begin, offset(end)));
    }

    /// The character, or for every other kind the line, `step` units from the one at `at`.
    QString unit(int at, QAccessible::TextBoundaryType kind, int step, int* start, int* end) const
    {
        if (kind == QAccessible::NoBoundary) {
            *start = step == 0 ? 0 : -1;
            *end = step == 0 ? characterCount() : -1;
            return part(*start, *end);
        }
        if (kind == QAccessible::CharBoundary) {
            *start = at + step;
            *end = *start + 1;
            return part(*start, *end);
        }
        const std::ptrdiff_t line = static_cast<std::ptrdiff_t>(lined().lineOf(offset(at))) + step;
        if (line < 0 || line >= static_cast<std::ptrdiff_t>(lined().lineCount())) {
            *start = *end = -1;
            return {};
        }
        const auto which = static_cast<std::size_t>(line);
        const std::size_t begin = lined().lineStart(which);
        const std::size_t next = which + 1 < lined().lineCount() ? lined().lineStart(which + 1) : lined().size();
        *start = static_cast<int>(begin);
        *end = static_cast<int>(next);
        return part(*start, *end);
    }
};

QAccessibleInterface* makeAccessible(const QString&, QObject* object)
{
    auto* pane = qobject_cast<TextPane*>(object);
    return pane ? new TextPaneAccessible(pane) : nullptr;
}

} // namespace

void installTextPaneAccessible()
{
    QAccessible::installFactory(makeAccessible); // once is enough, and the same one is known already
}
