#pragma once

#include <functional>

class QWidget;

/// Runs `work` once, behind the first paint of `widget`: for what nobody misses until there is something to see. Never
/// when the widget goes before that.
void afterFirstPaint(QWidget& widget, std::function<void()> work);
