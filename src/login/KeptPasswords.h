#pragma once

#include "platform/keyring/PasswordKeeper.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct Client;

/// The passwords of connection profiles in the system's keyring, where the user wants them there. Then "Pass=" stays
/// empty in the store. Faults of the keyring are told here. All texts are bytes of the host's code page.
class KeptPasswords : public QObject
{
    Q_OBJECT

public:
    /// @param client   outlives this
    /// @param keyring  null for none
    /// @param limit    how long it may take to answer
    KeptPasswords(Client& client, std::shared_ptr<Keyring> keyring, std::chrono::milliseconds limit);

    bool isThereAKeyring() const { return m_keeper.isThere(); }
    bool areInKeyring() const { return m_keeper.isUsed(); }
    /// Whether they are to be. A setting.
    void use(bool isWanted) { m_keeper.use(isWanted); }
    /// Asks for a profile's password. @param done  called later, once, without one when the user has to type it
    void fetch(const std::string& profile, std::function<void(const std::optional<std::string>& password)> done);
    /// Puts a password into the keyring; what the store holds goes when it is there.
    void keep(const std::string& profile, const std::string& password);
    void forget(const std::string& profile);
    /// Takes those of all profiles back into the store, one after the other, and says how many there were.
    void takeBack();

private:
    QString entryOf(const std::string& profile) const;
    void store(const std::string& profile, const std::string& password);
    void takeNextBack();
    void takeBack(const std::string& profile, const Keyring::Answer& answer);
    void tell(const QString& what, const QString& fault);

    Client& m_client;
    PasswordKeeper m_keeper;
    std::vector<std::string> m_toTakeBack; ///< profiles that have not been looked at
    int m_takenBack = 0;
};
