#pragma once

#include "ui/GridModel.h"

#include <QList>
#include <QPersistentModelIndex>
#include <QTableView>

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
    /// "Copy Cell", "Copy Row" and "Copy All", for a window that gives the grid a context menu of its own.
    const QList<QAction*>& copyActions() const { return m_copyActions; }

protected:
    void changeEvent(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;
    bool viewportEvent(QEvent* event) override;

private:
    void addCopyActions();
    void noteMenuCell(const QContextMenuEvent& event);
    void copyCell() const;
    void copyRows() const;
    void copyAll() const;
    QString lineOf(int row) const;
    void fixRowHeight();
    void fitHeaderFont();
    void spanTitles(int firstRow);

    GridModel* m_model;
    GridDelegate* m_delegate;
    QList<QAction*> m_copyActions;
    QPersistentModelIndex m_menuCell; ///< where the context menu was asked for
    QString m_emptyText;
    PictureStore* m_pictures = nullptr;
    std::string m_background;
};
