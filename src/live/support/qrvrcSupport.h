#pragma once

#include "live/support/ConversationView.h"

#include <QWidget>

class FilterFrame;
class ImageButton;
class QComboBox;
class QGroupBox;
class QLabel;
class QLayout;
class QMenuBar;
class QPlainTextEdit;
class QToolButton;
class SearchFrame;
class SupportDesk;
class TalkFile;
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

private:
    void buildMenu();
    void buildMessages();
    void buildOptions();
    void buildStatusLine();
    void layOut();
    void layOutMessages();
    QLayout* statusLine();
    void wireSignals();

    Conversation& conversation();
    void showTalk();
    void showAll();
    void showHostStatus();
    void showLink();
    void showCount();
    void comeForward();

    void sendMessage();
    void applyFilter();
    void search(ConversationView::Search search);

    Client& m_client;
    SupportDesk& m_desk;
    TalkFile* m_file;

    QMenuBar* mnuBar = nullptr;
    QGroupBox* fmeSupport = nullptr;
    ConversationView* txtMessages = nullptr;
    QPlainTextEdit* txtNewMessage = nullptr;
    ImageButton* cmdSend = nullptr;
    QGroupBox* fmeOptions = nullptr;
    QComboBox* cboStatus = nullptr;
    FilterFrame* fmeFilter = nullptr;
    SearchFrame* fmeSearch = nullptr;
    QLabel* lblLink = nullptr;
    QToolButton* cmdReconnect = nullptr; ///< there while the link is closed
    QLabel* lblShown = nullptr;
};
