#pragma once

#include "live/support/Conversation.h"

#include <QGroupBox>

#include <array>

class ImageButton;
class PictureStore;
class QLineEdit;
class QRadioButton;

/// The frame in which the user says which entries of the conversation he wants to see.
class FilterFrame : public QGroupBox
{
    Q_OBJECT

public:
    /// @param pictures  outlives the frame
    FilterFrame(PictureStore& pictures, QWidget* parent);

    Conversation::Speaker speaker() const;
    /// What the entries are to contain.
    QString text() const;
    /// Empties the text.
    void clear();

Q_SIGNALS:
    /// What is entered is to be applied.
    void filterWanted();

private:
    void layOut();

    std::array<QRadioButton*, 3> Option1{};
    QLineEdit* txtFilter = nullptr;
    ImageButton* cmdFilter = nullptr;
};
