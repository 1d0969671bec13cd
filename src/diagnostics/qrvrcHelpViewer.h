#pragma once

#include <QWidget>

#include <filesystem>
#include <memory>

class HelpBook;
class HelpBrowser;
class HelpPageTexts;
class QFrame;
class QLabel;
class QLineEdit;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;
class QUrl;

/// The window that shows the manual: its contents and a search at the left, a page at the right. Everything comes from
/// the help file; nothing is ever fetched from a network.
class qrvrcHelpViewer : public QWidget
{
    Q_OBJECT

public:
    explicit qrvrcHelpViewer(QWidget* parent = nullptr);
    ~qrvrcHelpViewer() override;

    /// Brings the window to the front with a topic. What stands in the way (no such file, a damaged one, no such topic)
    /// is said in place of the page.
    /// @param topic  a page's name such as "Login.html"; an empty one opens the book's first page
    void showTopic(const std::filesystem::path& file, const QString& topic);

private:
    void buildControls();
    void wireSignals();
    /// Makes sure that `m_book` is `file` as it is on disk now. @return whether it had to be read; throws RuntimeError
    bool openBook(const std::filesystem::path& file);
    void fillContents();
    void goTo(const QUrl& page);
    void goHome();
    void followLink(const QUrl& link);
    void offerExternal(const QUrl& link);
    void followContents(const QTreeWidgetItem* item);
    void showWhereWeAre(const QUrl& page);
    QStringList wantedWords() const;
    /// Leaves only those pages in the contents that hold all words looked for, and marks the words.
    void search();
    void showNextFound();
    void showFault(const QString& title, const QString& explanation);

    std::unique_ptr<HelpBook> m_book;
    std::unique_ptr<HelpPageTexts> m_texts; ///< made with the first search in a book

    QToolButton* cmdBack = nullptr;
    QToolButton* cmdForward = nullptr;
    QToolButton* cmdHome = nullptr;
    QLineEdit* txtSearch = nullptr;
    QLabel* lblFound = nullptr;
    QTreeWidget* tvContents = nullptr;
    HelpBrowser* txtHelp = nullptr;
    QFrame* fmeExternal = nullptr; ///< hidden until a link leads out of the book
    QLabel* lblExternal = nullptr;
    QToolButton* cmdOpenExternal = nullptr;
};
