#pragma once

#include <QSize>

class ImageButton;
class QGroupBox;
class QString;
class QVBoxLayout;
class QWidget;

/// What the frames beside the conversation are made of: rows of a caption and a field, or of buttons.
namespace side {

inline constexpr QSize buttonSize(106, 28); ///< pixels

QVBoxLayout* columnIn(QGroupBox* box);
/// Adds a field with its caption to the left.
/// @param captionName  the caption's objectName
void add(QVBoxLayout* column, const QString& captionName, const QString& caption, QWidget* field);
/// Adds one button at the right, and one at the left unless it is null.
void add(QVBoxLayout* column, const ImageButton* left, const ImageButton* right);

} // namespace side
