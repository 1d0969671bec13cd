#pragma once

#include <QString>

#include <memory>

class TrappedError;

/// The modal boxes through which the program talks to its user. The real ones are windows; whoever needs to know what
/// would have been shown hands in its own.
class MessageBoxes
{
public:
    virtual ~MessageBoxes() = default;

    /// Shows `text`, as plain text, with an OK button and no icon; returns when the user closes it.
    virtual void show(const QString& title, const QString& text) = 0;
    /// Asks a question with the buttons Yes and No. @return whether the answer was Yes; closing the box means No
    virtual bool confirm(const QString& title, const QString& question) = 0;
    /// Shows a trapped error and follows its changes, with a button for a report that is offered; returns when the user
    /// closes it.
    virtual void showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error) = 0;

    /// Until as many calls of `release`, boxes are shown later, from the event loop, where these can do that.
    virtual void hold() {}
    virtual void release() {}
};

/// Holds boxes back while it lives: what runs is not to be held up by its user.
class BoxHold
{
public:
    explicit BoxHold(MessageBoxes& boxes) : m_boxes(boxes) { m_boxes.hold(); }
    ~BoxHold() { m_boxes.release(); }
    BoxHold(const BoxHold&) = delete;
    BoxHold& operator=(const BoxHold&) = delete;

private:
    MessageBoxes& m_boxes;
};
