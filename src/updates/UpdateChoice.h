#pragma once

#include "ui/GridView.h"
#include "updates/UpdateCheck.h"

#include <QPixmap>

#include <optional>
#include <span>
#include <vector>

class CodePage;
struct GridRow;

/// The files that a check offers, in groups, with a check box for each; the user checks what is wanted.
class UpdateChoice : public GridView
{
    Q_OBJECT

public:
    /// @param codePage  outlives the grid
    UpdateChoice(const QString& name, const CodePage& codePage, QWidget* parent);

    void clear();
    /// Says in a row that nothing is offered, or shows what is. Changed files are not checked at first.
    void showCandidates(const Candidates& found);
    /// The records that are checked, from top to bottom.
    std::vector<UpdateRecord> checked() const;

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void layColumns(std::span<const GridColumn> columns);
    void fitColumns();
    void addGroup(std::vector<GridRow>& grid, const QString& title, const std::vector<UpdateRecord>& records,
                  bool checked);
    GridPicture box(bool checked) const;
    void toggle(int row);

    const CodePage& m_codePage;
    QPixmap m_checked;
    QPixmap m_unchecked;
    std::span<const GridColumn> m_columns;
    std::vector<std::optional<UpdateRecord>> m_records; ///< row by row; none for a title
};
