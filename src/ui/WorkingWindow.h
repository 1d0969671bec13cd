#pragma once

#include <QWidget>

/// A window that the frame shows below the navigation, one at a time.
class WorkingWindow : public QWidget
{
    Q_OBJECT

public:
    /// What becomes of a window when another one takes its place.
    enum class Leaving {
        Keeps,   ///< it stays as it is until it is shown again
        Unloads, ///< it goes; the next opening starts afresh
    };

    using QWidget::QWidget;

    /// Name of the section by which F1 finds its topic; empty for a window without one, "IGNORE" while F1 is to do
    /// nothing.
    virtual QString helpSection() const { return {}; }
    /// Called whenever the window has become the one in front, also when it already was and its tab is used again.
    virtual void Form_Activate() {}
    /// Called when another window has taken its place.
    virtual Leaving Form_Deactivate() { return Leaving::Keeps; }

Q_SIGNALS:
    /// The window is done: the frame unloads it and goes back to the profile list.
    void closeWanted();
};
