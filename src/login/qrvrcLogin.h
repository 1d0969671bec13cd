#pragma once

#include "link/LoginExchange.h"
#include "link/RawRequestQueue.h"
#include "login/ConnectionFields.h"
#include "ui/WorkingWindow.h"

#include <QTimer>

class ImageButton;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
struct Client;

/// Where the administrator chooses or creates a connection profile, connects and disconnects. Also polls the link's
/// state for the status label and the raw request queue.
class qrvrcLogin : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param client  outlives the window
    qrvrcLogin(Client& client, QWidget* parent);

    /// User name and password as they stand in the fields now, in the host's code page.
    Credentials credentials() const;
    /// The host that Connect connects to.
    QString host() const;
    /// Chooses a stored profile as the user would; false when there is none of that name.
    bool chooseProfile(const QString& name);
    /// What the Connect button does.
    void connectToHost();
    void startPolling() { Timer1->start(); }
    void stopPolling() { Timer1->stop(); }

    void Form_Activate() override;

Q_SIGNALS:
    /// The link is not connected (any more): the menus of a client that is not logged in belong there.
    void notConnected();
    /// The user disconnects; emitted before the link is closed.
    void disconnecting();
    /// Ends the look-up of a host name.
    void lookupCancelled();

private:
    void buildControls();
    void placeControls();
    void wireSignals();
    QLineEdit* addField(const QString& name, const QString& caption, const QString& labelName, int row);
    void loadProfileNames();
    void profileClicked();
    void profileTextChanged();
    void disconnectFromHost();
    void deleteProfile();
    void poll();
    void showNotConnected();
    ConnectionFields fields() const;
    std::string bytesOf(const QLineEdit* field) const;
    QString foreignCharacter() const;
    void saveProfile(const ConnectionFields& fields);
    bool isKnownHost(const std::string& host);
    void setFieldsEnabled(bool enabled);

    Client& m_client;
    RawRequestQueue m_rawRequests;
    bool m_isResolving = false;
    bool m_storeFailed = false; ///< the profile store cannot be used, and the user knows

    QGroupBox* fmeConnect = nullptr;
    QGroupBox* fmeStatus = nullptr;
    QComboBox* cboProfile = nullptr;
    QLineEdit* txtProfile = nullptr;
    QLineEdit* txtHost = nullptr;
    QLineEdit* txtPort = nullptr;
    QLineEdit* txtUser = nullptr;
    QLineEdit* txtPass = nullptr;
    QLabel* lblStatus = nullptr;
    QLabel* lblEmblem = nullptr;
    ImageButton* cmdConnect = nullptr;
    ImageButton* cmdDisconnect = nullptr;
    ImageButton* cmdDelete = nullptr;
    QTimer* Timer1 = nullptr;
};
