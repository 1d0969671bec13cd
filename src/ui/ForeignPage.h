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

/// What a message of the system says of such a page.
enum class PageNews {
    None,
    TabOnward,     ///< the Tab key was pressed in it
    TabBack,       ///< the same with Shift
    OtherInput,    ///< another key or a button of the mouse, wherever
    GivesKeyboard, ///< the keyboard has come from it to `frame`
};
PageNews newsOfPage(const QWidget& frame, void* message);
