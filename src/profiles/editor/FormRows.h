#pragma once

#include <QMargins>
#include <QString>

class QCheckBox;
class QComboBox;
class QGridLayout;
class QGroupBox;
class QLabel;
class QLineEdit;
class QWidget;

/// What the frames of the profile editor are made of: rows of a caption and a control.
namespace rows {

// Pixels.
inline constexpr QMargins frameInsets(11, 6, 11, 8); ///< between a frame and what it holds
inline constexpr int cellGap = 10;
inline constexpr int captionWidth = 86; ///< where the captions of several frames stand below each other

/// @param spoken  what screen readers call it
QLineEdit* field(const QString& name, const QString& spoken, QWidget* parent);
QComboBox* choice(const QString& name, const QString& spoken, QWidget* parent);
QCheckBox* checkBox(const QString& name, const QString& caption, QWidget* parent);
/// Belongs to the layout that it is added to.
QLabel* captionOf(QWidget* control, const QString& text);

/// The rows of a frame.
QGridLayout* gridIn(QGroupBox* box);
/// Adds a control with its caption to the left.
/// @param columns  over how many it reaches
/// @param width    pixels; 0 for as wide as its columns
void add(QGridLayout* grid, const QString& caption, QWidget* control, int columns = 1, int width = 0);
void add(QGridLayout* grid, QCheckBox* box);

} // namespace rows
