#pragma once

#include <QStringList>
#include <QWidget>

/// A window, or a part of one, used through its controls as a user does. Controls go by their names; the program ends
/// when there is none of that name.
class Pane
{
public:
    explicit Pane(QWidget& root) : m_root(&root) {}

    QWidget& window() const { return *m_root; }
    template <typename Control = QWidget>
    Control& control(const QString& name) const
    {
        auto* found = m_root->findChild<Control*>(name);
        if (!found)
            fail(name);
        return *found;
    }
    /// Clicks the middle of a control with the left mouse button.
    void click(const QString& name) const;
    /// Clicks the tab with this caption.
    void clickTab(const QString& strip, const QString& caption) const;
    /// Clicks a row of a grid or a list, scrolled to when it is out of sight.
    void clickRow(const QString& view, int row) const;
    /// Replaces the text of a field by typing.
    void type(const QString& field, const QString& text) const;
    /// Chooses an entry of a drop-down list with the keyboard.
    void choose(const QString& list, const QString& entry) const;

    /// What a label, a field, a box of text or a drop-down list says.
    QString text(const QString& name) const;
    QStringList tabs(const QString& strip) const;
    /// The texts of one column, from top to bottom, of a grid, a list or a drop-down list.
    QStringList column(const QString& view, int column = 0) const;
    /// The texts of one row of a grid.
    QStringList cells(const QString& view, int row) const;

private:
    [[noreturn]] static void fail(const QString& name);

    QWidget* m_root;
};
