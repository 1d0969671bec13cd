#pragma once

class QApplication;

/// Style, colours, font and icon of the program, the same on every desktop.
void applyLook(QApplication& application);
