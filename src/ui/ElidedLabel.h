#pragma once

#include <QLabel>

/// One line of plain text, cut off with three dots where there is no room for all of it. Asks for no width itself.
class ElidedLabel : public QLabel
{
public:
    ElidedLabel(const QString& name, QWidget* parent);

protected:
    void paintEvent(QPaintEvent* event) override;
};
