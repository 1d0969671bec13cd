#pragma once

#include <QMainWindow>

/// A main window that plugins with a toolkit of their own lay a page over. The Tab key leads from the last of our
/// controls into such a page, and out of it to the first; with Shift the other way. What the page covers is left out.
/// Where pages are widgets of ours, Qt does all that.
class PluginFrame : public QMainWindow
{
    Q_OBJECT

public:
    using QMainWindow::QMainWindow;

protected:
    bool focusNextPrevChild(bool next) override;
    /// A page gives the keyboard back by setting the focus to this window while the Tab key is down.
    bool nativeEvent(const QByteArray& kind, void* message, qintptr* result) override;

private:
    /// Gives the keyboard to the first of our controls behind `from` that nothing covers.
    /// @return whether there is one before the round is over
    bool focusBehind(QWidget* from, bool next, const QRect& covered);
};
