#pragma once

#include "admins/AdminRecords.h"
#include "ui/Grid.h"

class CodePage;

/// The checklist of an account's privileges, section by section. A left click on a box or Space changes it here, and
/// nowhere else: the tracker learns of it when the account is saved.
///
/// A box is the letter that the font Wingdings draws as one; it is painted as a picture, so that it does not matter
/// whether the font is there.
class PrivilegeGrid : public GridView
{
    Q_OBJECT

public:
    /// @param codePage  outlives the grid
    PrivilegeGrid(const QString& name, const CodePage& codePage, QWidget* parent);

    /// Shows what the tracker has told; what the user had changed is forgotten.
    void showReceived(Checklist received);
    /// The same, with what the user had changed in the rows before.
    void showReceivedKeepingEdits(Checklist received);
    /// Shows what the tracker has told, and what the user has made of it.
    void showEdited(Checklist received, Checklist edited);
    /// The rows as the tracker told them.
    const Checklist& received() const { return m_received; }
    /// The rows as they stand.
    const Checklist& checklist() const { return m_rows; }
    /// Whether the user has changed something.
    bool isEdited() const { return m_rows != m_received; }

protected:
    void changeEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;

private:
    enum Column { Box, Name, ColumnCount };

    void showRows(Checklist rows);
    GridRow gridRow(const ChecklistRow& row);
    GridPicture box(bool granted);
    /// Shows the privilege in `row` as granted for the character "1" and as not granted for any other.
    void AddCheckBox(int row, char state);
    void toggleAt(const QMouseEvent& event);
    void toggle(int row);

    const CodePage& m_codePage;
    Checklist m_received;
    Checklist m_rows;
    QPixmap m_boxes[2]; ///< not granted, granted; painted when first needed
};
