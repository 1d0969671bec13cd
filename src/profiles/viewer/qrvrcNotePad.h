#pragma once

#include "link/ReplyAssembler.h"

#include <QFutureWatcher>
#include <QWidget>

#include <filesystem>
#include <memory>

class FindBar;
class LinedText;
class QAction;
class QLabel;
class QMenuBar;
class TextExpander;
class TextPane;
struct Client;
struct PackedReply;

/// Shows a text that came from somewhere else: to be read, searched, copied and saved, not to be changed.
class qrvrcNotePad : public QWidget
{
    Q_OBJECT

public:
    /// @param client  outlives the window
    explicit qrvrcNotePad(Client& client, QWidget* parent = nullptr);

    /// Brings the window to the front with `text` in it. Characters that the host's code page lacks become "?".
    void showText(const QString& caption, const QString& text);

    /// Brings the window to the front with the text of a file in it. A large one is expanded first, beside the window,
    /// which says so; if that fails, the window reports it and shows what it showed before.
    /// @param file  its name on the host
    /// @param owner  keeps the packed text
    /// @throws RuntimeError for a small text that cannot be expanded
    void showFile(const QString& file, const PackedReply& packed, const ReplyOwner& owner);

protected:
    /// A text that is still being expanded is no longer wanted, and the one that is shown is let go.
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void buildMenus();
    void dropAwaited();
    void announce();
    void present(std::shared_ptr<const LinedText> text);
    void bringToFront();
    void nameFile(const QString& file);
    void chooseFile();
    void save(const std::filesystem::path& file, std::shared_ptr<const LinedText> text);

    Client& m_client;
    TextExpander* m_expander;
    QString m_awaited; ///< name of the file whose text is being expanded
    QFutureWatcher<void> m_saving;
    QString m_file; ///< name of the file that is shown; empty for another text

    QMenuBar* mnuBar = nullptr;
    QAction* mnuSaveAs = nullptr;
    TextPane* Text1 = nullptr;
    FindBar* fmeFind = nullptr;
    QLabel* lblFile = nullptr;
};
