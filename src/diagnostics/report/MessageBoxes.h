#pragma once

#include <QString>

#include <functional>

/// Starts the delivery of an error report; calls back once, at most ten seconds later, with whether it was delivered.
/// The callback may come at once, later, or never when the program ends first.
using ReportDelivery = std::function<void(std::function<void(bool delivered)>)>;

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
    /// Shows a trapped error at once, starts `deliver` and completes the box's last line with its outcome, so that an
    /// error page that does not answer holds nobody up; returns when the user closes it.
    virtual void showTrapped(const QString& title, const QString& errorText, const ReportDelivery& deliver) = 0;
};
