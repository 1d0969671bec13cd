#pragma once

#include <QLabel>

/// The line beside a list that says that there is more of it than is shown. Takes no room while there is not.
class CutNote : public QLabel
{
public:
    CutNote(const QString& name, QWidget* parent);

    /// @param rows  that are shown
    void tell(bool isCut, qsizetype rows);
};
