#pragma once

#include <QRect>
#include <QWidget>

#include <optional>

/// A window of another toolkit inside of one of ours.
struct ForeignPage
{
    WId id = 0;
    QRect place; ///< in the coordinates of our window
};

/// The one that is shown in `frame`; none where such windows do not occur.
std::optional<ForeignPage> foreignPageIn(const QWidget& frame);

void giveKeyboard(const ForeignPage& page);

/// Whether a message of the system tells that the keyboard came from such a page to `frame` by the Tab key, and which
/// way: true is forward.
std::optional<bool> tabOutOfPage(const QWidget& frame, void* message);
