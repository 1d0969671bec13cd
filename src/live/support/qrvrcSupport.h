#pragma once

#include "live/support/Conversation.h"

#include <QWidget>

#include <array>
#include <filesystem>
#include <optional>
#include <string>

class ImageButton;
class QComboBox;
class QFrame;
class QGroupBox;
class QLabel;
class QLineEdit;
class QMenu;
class QMenuBar;
class QPlainTextEdit;
class QRadioButton;
class QToolButton;
class SupportDesk;
struct SupportTalk;
struct Client;

/// The support console: a chat with the operator at the host, which can be filtered, searched and saved. Closing it
/// unloads the window; link, conversation and unsent text stay with the desk.
class qrvrcSupport : public QWidget
{
    Q_OBJECT

public:
    /// @param client  outlives the window
    /// @param desk    outlives the window
    qrvrcSupport(Client& client, SupportDesk& desk, QWidget* parent);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void buildMenu();
    void buildMessages();
    void buildOptions();
    void buildFilter();
    void buildSearch();
    void buildStatusLine();
    void placeControls();
    void wireSignals();

    Conversation& conversation();
    void showTalk();
    void showAll();
    void addEntries(Conversation::Number first);
    void replaceEntry(Conversation::Number number, TextSpan span);
    void insertText(int at, int length, const QString& text);
    void showHostStatus();
    void showLink();
    void showCount();
    void comeForward();

    void sendMessage();
    void applyFilter();
    void search();
    void searchNext();
    void searchPrevious();
    /// @return empty also for a text that no message can hold
    std::string wanted() const;
    TextSpan selection() const;
    /// @param position  counts from 1
    void showFound(std::optional<std::size_t> position);

    void save();
    void chooseFile(const QString& title);
    void saveTo(SupportTalk& talk, std::filesystem::path file);

    Client& m_client;
    SupportDesk& m_desk;

    QMenuBar* mnuBar = nullptr;
    QMenu* mnuOptions = nullptr;
    QGroupBox* fmeSupport = nullptr;
    QPlainTextEdit* txtMessages = nullptr;
    QPlainTextEdit* txtNewMessage = nullptr;
    ImageButton* cmdSend = nullptr;
    QGroupBox* fmeOptions = nullptr;
    QComboBox* cboStatus = nullptr;
    QGroupBox* fmeFilter = nullptr;
    std::array<QRadioButton*, 3> Option1{};
    QLineEdit* txtFilter = nullptr;
    ImageButton* cmdFilter = nullptr;
    QGroupBox* fmeSearch = nullptr;
    QLineEdit* txtSearch = nullptr;
    ImageButton* cmdSearch = nullptr;
    ImageButton* cmdPrevious = nullptr;
    ImageButton* cmdNext = nullptr;
    QFrame* fmeStatus = nullptr;
    QLabel* lblLink = nullptr;
    QLabel* lblShown = nullptr;
    QToolButton* cmdReconnect = nullptr; ///< there while the link is closed
};
