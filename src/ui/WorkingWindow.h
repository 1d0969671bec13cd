#pragma once

#include <QWidget>

/// A window that the frame shows below the navigation, one at a time.
class WorkingWindow : public QWidget
{
public:
    using QWidget::QWidget;

    /// Called whenever the window has become the one in front, also when it already was and its tab is used again.
    virtual void Form_Activate() {}
};
