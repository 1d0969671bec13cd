#pragma once

#include <QAbstractNativeEventFilter>
#include <QMainWindow>

#include <optional>

/// A main window that plugins with a toolkit of their own lay a page over. The Tab key leads from the last of our
/// controls into such a page, and out of it to the first; with Shift the other way. What the page covers is left out.
/// Where pages are widgets of ours, Qt does all that.
class PluginFrame : public QMainWindow, private QAbstractNativeEventFilter
{
    Q_OBJECT

public:
    PluginFrame();

protected:
    bool focusNextPrevChild(bool next) override;
    /// A page gives the keyboard back by setting the focus to this window when the Tab key was pressed in it.
    bool nativeEvent(const QByteArray& kind, void* message, qintptr* result) override;

private:
    bool nativeEventFilter(const QByteArray& kind, void* message, qintptr* result) override;
    /// Gives the keyboard to the first of our controls behind `from` that nothing covers.
    /// @return whether there is one before the round is over
    bool focusBehind(QWidget* from, bool next, const QRect& covered);

    std::optional<bool> m_tabInPage; ///< the last input was the Tab key in a page; whether it leads onward
};
