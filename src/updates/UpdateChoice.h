#pragma once

#include "ui/GridView.h"
#include "updates/UpdateCheck.h"

#include <QPixmap>

#include <functional>
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
    /// Says in a row that nothing is offered, or shows what is. Changed files are not checked at first; refused ones,
    /// below, cannot be.
    void showCandidates(const Candidates& found);
    /// The files that are checked, from top to bottom.
    std::vector<Candidate> checked() const;
    /// How many files can be checked.
    std::size_t offeredCount() const;

Q_SIGNALS:
    /// Another row is selected.
    /// @param why  why its file is offered or not, a sentence without its full stop; empty for a row without a file
    void reasonChanged(const QString& why);

protected:
    void resizeEvent(QResizeEvent* event) override;

private:
    void layColumns(std::span<const GridColumn> columns);
    void fitColumns();
    void addTitle(std::vector<GridRow>& grid, const QString& title);
    void addGroup(std::vector<GridRow>& grid, const QString& title, const std::vector<Candidate>& files, bool checked,
                  const std::function<QString(const Candidate&)>& reason);
    void addRefused(std::vector<GridRow>& grid, const std::vector<RefusedFile>& files);
    GridRow rowOf(const UpdateRecord& record) const;
    GridPicture box(bool checked) const;
    void toggle(int row);

    const CodePage& m_codePage;
    QPixmap m_checked;
    QPixmap m_unchecked;
    std::span<const GridColumn> m_columns;
    std::vector<std::optional<Candidate>> m_files; ///< row by row; none where nothing can be checked
    QStringList m_reasons;                         ///< row by row
};

/// Why a file is not offered; a sentence without its beginning and its full stop.
QString refusalText(Refusal why);
