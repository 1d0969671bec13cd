#pragma once

#include <QWidget>

#include <memory>

class HelpBook;
class HelpPageTexts;
class QLabel;
class QLineEdit;
class QTreeWidget;
class QTreeWidgetItem;
class QUrl;

/// What leads to the pages of a help book: its contents, and a search that leaves only the pages that hold all words.
class HelpGuide : public QWidget
{
    Q_OBJECT

public:
    explicit HelpGuide(QWidget* parent);
    ~HelpGuide() override;

    /// Shows the contents of a book. @param book  outlives its stay here; null for none
    void setBook(const HelpBook* book);
    /// Selects the entry of the page that is shown, if it has one.
    void showPage(const QUrl& page);
    /// The words looked for; none without a search.
    QStringList wantedWords() const;
    /// Puts the keyboard where words are typed.
    void startSearch();
    /// Shows all pages again. @return whether there was a search
    bool endSearch();

Q_SIGNALS:
    /// @param page  its name in the book
    void pageChosen(const QString& page);
    void wantedWordsChanged(const QStringList& words);

private:
    void buildControls();
    void wireSignals();
    void fill();
    void search();
    /// Leaves the found entries in sight, and those above them. @return how many were found
    int showFound(const QStringList& words);
    void chooseNextFound();
    void choose(const QTreeWidgetItem* item);

    const HelpBook* m_book = nullptr;
    std::unique_ptr<HelpPageTexts> m_texts; ///< made with the first search in a book

    QLineEdit* txtSearch = nullptr;
    QLabel* lblFound = nullptr;
    QTreeWidget* tvContents = nullptr;
};
