#pragma once

#include "Painting.h"
#include "ui/Grid.h"

#include <QHeaderView>
#include <QPainter>
#include <QStaticText>
#include <QStyledItemDelegate>
#include <QTableWidget>

#include <array>
#include <map>
#include <memory>
#include <vector>

constexpr int gridColumns = 13;
constexpr QSize gridSize(740, 360); // pixels; what the windows give their grids
constexpr Twips columnWidth{850};

using GridTexts = std::vector<std::array<QString, gridColumns>>;

/// Rows as a tracker tells of them. `tick` changes one column, as time does between two refreshes.
inline GridTexts gridTexts(int rows, int tick)
{
    GridTexts texts(static_cast<std::size_t>(rows));
    for (int row = 0; row < rows; ++row) {
        auto& cells = texts[static_cast<std::size_t>(row)];
        for (int column = 0; column < gridColumns; ++column) {
            const int number = column == gridColumns - 1 ? row + tick : row % 40 * column;
            cells[static_cast<std::size_t>(column)] = QStringLiteral("cell %1").arg(number);
        }
    }
    return texts;
}

class OurGrid
{
public:
    OurGrid()
    {
        static std::array<GridColumn, gridColumns> columns{};
        columns.fill({"Header", columnWidth, Qt::AlignLeft});
        view.setColumns(columns);
        view.setFixedSize(gridSize);
    }

    int shownRows() const { return view.rows().rowCount(); }

    GridView view{QStringLiteral("grid"), nullptr};
};

/// All rows are made beforehand.
class EagerGrid : public OurGrid
{
public:
    void refill(const GridTexts& texts)
    {
        std::vector<GridRow> rows;
        rows.reserve(texts.size());
        for (const auto& cells : texts)
            rows.push_back(rowOf(cells));
        view.rows().setRows(std::move(rows));
    }

    static GridRow rowOf(const std::array<QString, gridColumns>& cells)
    {
        return {.cells = {cells.begin(), cells.end()}, .pictures = {}, .data = 0};
    }
};

/// Rows are made when they are looked at.
class LazyGrid : public OurGrid
{
public:
    void refill(const GridTexts& texts)
    {
        view.rows().setRows(static_cast<int>(texts.size()),
                            [&texts](int row) { return EagerGrid::rowOf(texts[static_cast<std::size_t>(row)]); });
    }
};

/// The toolkit's own delegate on our grid.
class StockDelegateGrid : public LazyGrid
{
public:
    StockDelegateGrid() { view.setItemDelegate(new QStyledItemDelegate(&view)); }
};

/// The toolkit's table of items, set up to look the same.
class ItemGrid
{
public:
    ItemGrid()
    {
        view.setColumnCount(gridColumns);
        view.setFixedSize(gridSize);
        view.verticalHeader()->hide();
        view.verticalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        view.verticalHeader()->setDefaultSectionSize(like.view.verticalHeader()->defaultSectionSize());
        view.horizontalHeader()->setSectionResizeMode(QHeaderView::Fixed);
        view.setSelectionBehavior(QAbstractItemView::SelectRows);
        view.setEditTriggers(QAbstractItemView::NoEditTriggers);
        view.setAlternatingRowColors(true);
        view.setWordWrap(false);
        view.setHorizontalScrollMode(QAbstractItemView::ScrollPerPixel);
        for (int column = 0; column < gridColumns; ++column) {
            view.setHorizontalHeaderItem(column, new QTableWidgetItem(QStringLiteral("Header")));
            view.setColumnWidth(column, columnWidth.pixels());
        }
    }

    void refill(const GridTexts& texts)
    {
        view.setRowCount(0);
        view.setRowCount(static_cast<int>(texts.size()));
        for (int row = 0; row < static_cast<int>(texts.size()); ++row) {
            for (int column = 0; column < gridColumns; ++column) {
                const auto& cells = texts[static_cast<std::size_t>(row)];
                view.setItem(row, column, new QTableWidgetItem(cells[static_cast<std::size_t>(column)]));
            }
        }
    }

    int shownRows() const { return view.rowCount(); }

    OurGrid like;
    QTableWidget view;
};

/// The least that shows the same cells: the texts of both fills are laid out beforehand, so a refill picks one of them
/// and a paint draws the rows that are seen, on their grounds and with their lines. It has no model, selection, scroll
/// bar or header, and nothing in it is cut off.
class StaticTextRows
{
public:
    StaticTextRows() { view.setFixedSize(like.view.viewport()->size()); }

    void refill(const GridTexts& texts)
    {
        Fill& fill = m_fills[&texts];
        if (fill.empty())
            fill = laidOut(texts);
        view.shown = &fill;
        view.update();
    }

    int shownRows() const { return static_cast<int>(view.shown->size()); }

private:
    using Fill = std::vector<std::array<QStaticText, gridColumns>>;

    struct Rows : QWidget
    {
        const Fill* shown = nullptr;
        QFont cellFont;
        int rowHeight = 0;

        QWidget* viewport() { return this; }

    protected:
        void paintEvent(QPaintEvent*) override
        {
            QPainter painter(this);
            painter.setFont(cellFont);
            painter.setPen(palette().color(QPalette::Text));
            const QColor line = Qt::lightGray;
            const int width = columnWidth.pixels();
            for (int row = 0; row * rowHeight < height() && row < std::ssize(*shown); ++row) {
                const QRect whole(0, row * rowHeight, gridColumns * width, rowHeight);
                painter.fillRect(whole, palette().color(row % 2 != 0 ? QPalette::AlternateBase : QPalette::Base));
                for (int column = 0; column < gridColumns; ++column) {
                    const QPoint place(column * width + 2, whole.top() + 3);
                    const auto& texts = (*shown)[static_cast<std::size_t>(row)];
                    painter.drawStaticText(place, texts[static_cast<std::size_t>(column)]);
                    painter.fillRect((column + 1) * width - 1, whole.top(), 1, rowHeight, line);
                }
                painter.fillRect(0, whole.bottom(), whole.width(), 1, line);
            }
        }
    };

    Fill laidOut(const GridTexts& texts)
    {
        view.cellFont = like.view.font();
        view.rowHeight = like.view.verticalHeader()->defaultSectionSize();
        Fill fill(texts.size());
        for (std::size_t row = 0; row < texts.size(); ++row) {
            for (std::size_t column = 0; column < gridColumns; ++column) {
                QStaticText& text = fill[row][column];
                text.setText(texts[row][column]);
                text.setTextFormat(Qt::PlainText);
                text.setPerformanceHint(QStaticText::AggressiveCaching);
                text.prepare({}, view.cellFont);
            }
        }
        return fill;
    }

public:
    OurGrid like;
    Rows view;

private:
    std::map<const GridTexts*, Fill> m_fills;
};

/// A shown grid that is refilled again and again with what has changed a little.
template <typename Subject>
class ShownGrid
{
public:
    explicit ShownGrid(int rows) : m_texts{gridTexts(rows, 0), gridTexts(rows, 1)}
    {
        m_subject.refill(m_texts.front());
        m_subject.view.show();
        m_counter = std::make_unique<PaintCounter>(m_subject.view.viewport());
        refillAndPaint();
        settle();
    }

    void refillAndPaint()
    {
        m_counter->reset();
        m_subject.refill(m_texts[static_cast<std::size_t>(++m_refills % 2)]);
        m_counter->waitForPaint();
        m_paints += m_counter->paints();
    }

    double paintsPerRefill() const { return static_cast<double>(m_paints) / m_refills; }
    int shownRows() const { return m_subject.shownRows(); }

private:
    std::array<GridTexts, 2> m_texts;
    Subject m_subject;
    std::unique_ptr<PaintCounter> m_counter;
    int m_refills = 0;
    int m_paints = 0;
};
