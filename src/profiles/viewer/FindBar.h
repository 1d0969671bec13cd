#pragma once

#include "profiles/viewer/TextFinder.h"

#include <QFrame>

class CodePage;
class QLabel;
class QLineEdit;
class TextPane;

/// Where one types what is looked for in the text of a pane, and reads how the search goes. Hidden until it is opened
/// or has something to say; what is found is selected in the pane.
class FindBar : public QFrame
{
    Q_OBJECT

public:
    /// @param text, codePage  outlive the bar
    FindBar(TextPane& text, const CodePage& codePage, QWidget* parent = nullptr);

    /// Takes the keyboard. What is selected in the text, when it is short and of one line, is to be looked for.
    void open();
    /// Goes away and gives the keyboard to the text.
    void leave();
    /// Looks for what was typed, from the selection on; opens the bar when nothing was.
    void find(TextFinder::Way way);
    /// Ends the search under way and forgets how the last one went.
    void reset();

private:
    void say(const QString& state);
    void showFound(std::size_t at, std::size_t size, bool wrapped);

    TextPane& m_text;
    const CodePage& m_codePage;
    TextFinder m_finder;
    TextFinder::Way m_way = TextFinder::Way::Forward;

    QLineEdit* txtFind;
    QLabel* lblFound;
};
