#pragma once

#include <QStyle>
#include <QWidget>

#include <filesystem>
#include <memory>

class ExternalLinkBar;
class HelpBook;
class HelpBrowser;
class HelpGuide;
class QToolButton;
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
    QToolButton* makeButton(const QString& name, const QString& text, const QString& accessible,
                            QStyle::StandardPixmap icon, const QKeySequence& shortcut);
    void buildControls();
    void layOut();
    void wireSignals();
    /// Makes sure that `m_book` is `file` as it is on disk now. @return whether it had to be read; throws RuntimeError
    bool openBook(const std::filesystem::path& file);
    void setBook(std::unique_ptr<HelpBook> book);
    void goTo(const QUrl& page);
    void goHome();
    void followLink(const QUrl& link);
    void showWhereWeAre(const QUrl& page);
    void showFault(const QString& title, const QString& explanation);

    std::unique_ptr<HelpBook> m_book;

    QToolButton* cmdBack = nullptr;
    QToolButton* cmdForward = nullptr;
    QToolButton* cmdHome = nullptr;
    HelpGuide* m_guide = nullptr;
    HelpBrowser* txtHelp = nullptr;
    ExternalLinkBar* fmeExternal = nullptr;
};
