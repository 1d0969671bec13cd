#pragma once

#include "link/RawRequestQueue.h"
#include "login/ConnectionFields.h"
#include "ui/WorkingWindow.h"

#include <QTimer>

#include <map>
#include <string>

class ImageButton;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
enum class ConnectFault;
struct Client;

/// Where the administrator chooses or creates a connection profile, connects and disconnects. Also polls the link's
/// state for the status label and the raw request queue.
class qrvrcLogin : public WorkingWindow
{
    Q_OBJECT

public:
    /// @param client  outlives the window
    qrvrcLogin(Client& client, QWidget* parent);

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
    /// The user chooses another connection, or begins to type one.
    void otherConnectionWanted();

private:
    void buildControls();
    QLineEdit* newField(const QString& name, const QString& meaning);
    void layOut();
    void layOutConnect();
    void wireSignals();
    /// Fills the list from the store. The entry for new profiles is chosen then.
    void listProfiles();
    /// Where the list holds this profile, by the store's own rule; 0, the entry for new profiles, when it does not.
    int indexOf(std::string_view profile) const;
    /// The stored profile that is chosen in the list, if it is one.
    std::optional<QString> chosenProfile() const;
    void profileClicked();
    void profileTextChanged();
    void disconnectFromHost();
    void deleteProfile();
    void poll();
    void showNotConnected();
    ConnectionFields fields() const;
    std::string bytesOf(const QLineEdit* field) const;
    QString sendFault() const;
    void saveProfile(const ConnectionFields& fields);
    void tellFault(ConnectFault fault);
    void setFieldsEnabled(bool enabled);
    /// Leads the user to the password when nothing else is missing.
    void askForPassword();

    Client& m_client;
    RawRequestQueue m_rawRequests;
    std::map<std::string, std::string> m_passwords; ///< by profile; those that are not remembered, for this run

    QGroupBox* fmeConnect = nullptr;
    QGroupBox* fmeStatus = nullptr;
    QComboBox* cboProfile = nullptr;
    QLineEdit* txtProfile = nullptr;
    QLineEdit* txtHost = nullptr;
    QLineEdit* txtPort = nullptr;
    QLineEdit* txtUser = nullptr;
    QLineEdit* txtPass = nullptr;
    QCheckBox* chkRemember = nullptr;
    QLabel* lblStatus = nullptr;
    QLabel* lblEmblem = nullptr;
    ImageButton* cmdConnect = nullptr;
    ImageButton* cmdDisconnect = nullptr;
    ImageButton* cmdDelete = nullptr;
    QTimer* Timer1 = nullptr;
};
