#pragma once

#include "link/RawRequestQueue.h"
#include "login/ConnectionFields.h"
#include "login/LoginControls.h"
#include "ui/WorkingWindow.h"

#include <QTimer>

#include <map>
#include <string>

class KeptPasswords;
enum class ConnectFault;
struct Client;

/// Where the administrator chooses or creates a connection profile, connects and disconnects. Also polls the link's
/// state for the status label and the raw request queue.
class qrvrcLogin : public WorkingWindow, private LoginControls
{
    Q_OBJECT

public:
    /// Both outlive the window.
    qrvrcLogin(Client& client, KeptPasswords& passwords, QWidget* parent);

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
    bool isPasswordStored(const std::string& profile) const;
    void fetchPassword(const ConnectionFields& fields);
    void openLink(const ConnectionFields& fields);
    void tellFault(ConnectFault fault);
    void setFieldsEnabled(bool enabled);
    /// Leads the user to the password when nothing else is missing.
    void askForPassword();

    Client& m_client;
    KeptPasswords& m_kept;
    RawRequestQueue m_rawRequests;
    int m_fetches = 0;                              ///< of passwords from the keyring, so far
    int m_fetching = 0;                             ///< the one under way, 0 for none
    std::map<std::string, std::string> m_passwords; ///< by profile; those that are not remembered, for this run

    QTimer* Timer1;
};
