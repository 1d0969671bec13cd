#pragma once

#include "ui/GridModel.h"

#include <QList>
#include <QPersistentModelIndex>
#include <QTableView>

#include <functional>
#include <span>
#include <string>

class GridDelegate;
class PictureStore;
class QAction;

/// A table of whole rows, one selected at most, not edited. What it costs to refill does not grow with the number of
/// rows: row heights and column widths are fixed and only the visible cells are looked at. What it shows can be copied:
/// Ctrl+C takes the selected row, a context menu the cell under the pointer, the row, or all rows with the headers.
class GridView : public QTableView
{
    Q_OBJECT

public:
    GridView(const QString& name, QWidget* parent);
    ~GridView() override;

    /// Owned by the view.
    GridModel& rows() const { return *m_model; }
    void setColumns(std::span<const GridColumn> columns);
    /// The model row that is selected, or -1.
    int selectedRow() const;

    const QString& emptyText() const { return m_emptyText; }
    /// Why there are no rows; shown in the middle of the empty grid.
    void setEmptyText(const QString& text);
    /// Paints the grid over a picture, which its white parts let through. `pictures` outlives the view.
    void setBackground(PictureStore& pictures, std::string layoutName);
    /// In place of the copy menu `show` is called, with the row that the menu is about (the one under the pointer, or
    /// the selected one when a key asked for it) and its place on the screen; not where there is no row.
    void setOwnMenu(std::function<void(int row, const QPoint& place)> show);
    /// "Copy Cell", "Copy Row" and "Copy All", for such a menu.
    const QList<QAction*>& copyActions() const { return m_copyActions; }

Q_SIGNALS:
    /// The user wants what stands behind the row: a double click on it, or Return while it is selected. Never a single
    /// click, whatever the desktop is set to.
    void rowOpened(int row);

protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void addCopyActions();
    QPoint noteMenuCell(const QContextMenuEvent& event);
    void copyCell() const;
    void copyRows() const;
    void copyAll() const;
    QString lineOf(int row) const;
    void fixRowHeight();
    void fitHeaderFont();
    void spanTitles(int firstRow);
    void paintLines(QPainter& painter, const QRect& dirty) const;

    GridModel* m_model;
    GridDelegate* m_delegate;
    QList<QAction*> m_copyActions;
    QPersistentModelIndex m_menuCell; ///< where the context menu was asked for
    std::function<void(int row, const QPoint& place)> m_ownMenu;
    QString m_emptyText;
    PictureStore* m_pictures = nullptr;
    std::string m_background;
};
