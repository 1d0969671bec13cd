#pragma once

#include "ui/GridModel.h"

#include <QTableView>

#include <span>
#include <string>

class GridDelegate;
class PictureStore;

/// A table of whole rows, one selected at most, not edited. What it costs to refill does not grow with the number of
/// rows: row heights and column widths are fixed and only the visible cells are looked at.
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

protected:
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void scrollContentsBy(int dx, int dy) override;

private:
    void fixRowHeight();
    void fitHeaderFont();
    void spanTitles(int firstRow);

    GridModel* m_model;
    GridDelegate* m_delegate;
    QString m_emptyText;
    PictureStore* m_pictures = nullptr;
    std::string m_background;
};
