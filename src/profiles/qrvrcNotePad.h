#pragma once

#include <QWidget>

#include <filesystem>

class QFrame;
class QLabel;
class QLineEdit;
class QMenuBar;
class QPlainTextEdit;
struct Client;

/// Shows a text that came from somewhere else: to be read, searched, copied and saved, not to be changed.
class qrvrcNotePad : public QWidget
{
    Q_OBJECT

public:
    /// @param client  outlives the window
    explicit qrvrcNotePad(Client& client, QWidget* parent = nullptr);

    /// Replaces the text that is shown. Its lines may end in CR LF, CR or LF.
    void setText(const QString& text);
    /// Brings the window to the front with `text` in it.
    void showText(const QString& caption, const QString& text);

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void buildControls();
    void buildMenus();
    void openFindBar();
    void closeFindBar();
    /// Selects the next occurrence, from the other end of the text when there is none before this one.
    void find(bool backward);
    void chooseFile();
    void save(const std::filesystem::path& file);

    Client& m_client;
    QString m_text; ///< as it came, with its own line ends

    QMenuBar* mnuBar = nullptr;
    QPlainTextEdit* Text1 = nullptr;
    QFrame* fmeFind = nullptr; ///< hidden until something is looked for
    QLineEdit* txtFind = nullptr;
    QLabel* lblFound = nullptr;
};
