#pragma once

/// Style, colours, font and icon of the program, the same on every desktop.
/// The application object must exist.
void applyLook();
