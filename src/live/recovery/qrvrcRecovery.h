#pragma once

#include "live/recovery/RecoveryCommand.h"
#include "platform/net/Winsock.h"
#include "ui/BusyPointer.h"

#include <QDialog>
#include <QTimer>

#include <array>
#include <optional>

class ImageButton;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QRadioButton;
struct Client;

/// "Recovery Console": tells the recovery tool on a host to start, restart or stop the tracker. It needs no login: the
/// name and password come from a saved connection profile. Modal; nothing waits in it, so it can be closed at any time.
class qrvrcRecovery : public QDialog
{
    Q_OBJECT

public:
    struct Limits
    {
        std::chrono::milliseconds connecting = std::chrono::seconds(20);
        std::chrono::milliseconds answer = std::chrono::seconds(20); ///< from the command to the answer's end
        std::chrono::milliseconds silence = std::chrono::seconds(1); ///< that ends an answer without an end marker
    };

    /// @param client  outlives the window
    qrvrcRecovery(Client& client, const Limits& limits, QWidget* parent);

    void done(int result) override;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    /// What a command needs, taken from the window and the profile store.
    struct Target
    {
        QString host;
        quint16 port = 0;
        std::string command;
    };

    void buildControls();
    void layOut();
    void layOutCommands();
    void wireSignals();
    void loadProfileNames();
    void send();
    std::optional<Target> target();
    std::optional<RecoveryOrder> chosenOrder() const;
    void sendCommand();
    void gather(std::string_view piece);
    void showAnswer();
    void handleClosing();
    void handleFailure(int number, const QString& description);
    void handleLimit();
    void cancel();
    /// Back to rest: socket closed, timers off, controls usable. @param note  for the line at the bottom
    void rest(const QString& note);
    /// From the start of a connection until it is closed again.
    bool isBusy() const { return m_pointer.has_value(); }
    void setBusy(bool busy);

    Client& m_client;
    Limits m_limits;
    Winsock wsRecov{QStringLiteral("wsRecov")};
    QTimer m_limit;
    QTimer m_silence;
    std::string m_command;
    RecoveryAnswer m_answer;
    std::optional<BusyPointer> m_pointer; ///< while the console is busy

    QGroupBox* fmeRecov = nullptr;
    std::array<QRadioButton*, 3> Option1{};
    QComboBox* cboProfile = nullptr;
    QLineEdit* txtPort = nullptr;
    QLabel* lblNote = nullptr;
    ImageButton* cmdSendCmd = nullptr;
    ImageButton* cmdClose = nullptr;
    ImageButton* cmdCancel = nullptr; ///< in the place of Close while busy
};
