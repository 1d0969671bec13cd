#pragma once

#include "live/support/ConversationView.h"

#include <QGroupBox>

class ImageButton;
class PictureStore;
class QLineEdit;

/// The frame in which the user says what he is looking for in the conversation.
class SearchFrame : public QGroupBox
{
    Q_OBJECT

public:
    /// @param pictures  outlives the frame
    SearchFrame(PictureStore& pictures, QWidget* parent);

    /// What is looked for.
    QString text() const;
    /// Empties the text.
    void clear();
    /// Gives the keyboard to the text.
    void takeKeyboard();

Q_SIGNALS:
    void searchWanted(ConversationView::Search search);

private:
    void layOut();

    QLineEdit* txtSearch = nullptr;
    ImageButton* cmdSearch = nullptr;
    ImageButton* cmdPrevious = nullptr;
    ImageButton* cmdNext = nullptr;
};
