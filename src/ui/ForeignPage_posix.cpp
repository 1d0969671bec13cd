#include "ui/ForeignPage.h"

// Plugins share our Qt here: their pages are widgets of ours.

std::optional<ForeignPage> foreignPageIn(const QWidget& /*frame*/)
{
    return {};
}

void giveKeyboard(const ForeignPage& /*page*/) {}

PageNews newsOfPage(const QWidget& /*frame*/, void* /*message*/)
{
    return PageNews::None;
}
