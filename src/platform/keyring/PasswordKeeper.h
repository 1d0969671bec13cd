#pragma once

#include "platform/keyring/Keyring.h"

#include <QObject>

#include <chrono>

/// The passwords of connection profiles that are kept in a keyring, if there is one and the user wants it. Whatever is
/// asked is answered once, from the event loop: a keyring that stays silent is given up.
class PasswordKeeper : public QObject
{
    Q_OBJECT

public:
    /// @param keyring  null for none
    /// @param limit    how long it may take to answer
    PasswordKeeper(std::shared_ptr<Keyring> keyring, std::chrono::milliseconds limit);

    bool isThere() const { return m_keyring != nullptr; }
    /// Whether passwords go there. A setting.
    bool isUsed() const { return m_isWanted && isThere(); }
    void use(bool isWanted) { m_isWanted = isWanted; }

    // Only with a keyring. Nobody is called behind the end of this.
    void read(const QString& entry, Keyring::Done done);
    void write(const QString& entry, const QString& password, Keyring::Done done);
    void remove(const QString& entry, Keyring::Done done);

private:
    Keyring::Done limited(Keyring::Done done);

    std::shared_ptr<Keyring> m_keyring;
    std::chrono::milliseconds m_limit;
    bool m_isWanted = false;
};
