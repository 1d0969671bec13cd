#pragma once

#include "diagnostics/report/MessageBoxes.h"

#include <QList>

/// Boxes that nobody sees: each is written down and closed at once, as by a user who is quick.
class RecordingDialogs : public MessageBoxes
{
public:
    struct Box
    {
        QString title;
        QString text;

        bool operator==(const Box&) const = default;
    };

    QList<Box> boxes;                             ///< all so far, questions and trapped errors too, oldest first
    QList<bool> deliveries;                       ///< outcomes of the error reports, in the order in which they came
    QList<std::shared_ptr<TrappedError>> trapped; ///< those of the boxes, and what has become of them
    bool answer = true;                           ///< to every question
    std::function<void()> whileOpen;              ///< runs while a box is open

    void show(const QString& title, const QString& text) override;
    bool confirm(const QString& title, const QString& question) override;
    void showTrapped(const QString& title, const std::shared_ptr<TrappedError>& error) override;

    /// How many boxes of that title there were.
    qsizetype count(const QString& title) const;
    /// The text of the only box so far; says what was shown instead when there is not exactly one.
    QString onlyText() const;

private:
    void open(const QString& title, const QString& text);
};
