#pragma once

#include <QComboBox>
#include <QWheelEvent>

/// A combo box whose choice the wheel does not change: turning it over the box is meant for what is behind, and a
/// choice made by accident may replace what was typed. An open list follows the wheel as ever.
class QuietComboBox : public QComboBox
{
public:
    using QComboBox::QComboBox;

protected:
    void wheelEvent(QWheelEvent* event) override { event->ignore(); }
};
