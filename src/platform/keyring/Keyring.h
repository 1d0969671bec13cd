#pragma once

#include <QString>

#include <functional>
#include <memory>

/// What the system keeps passwords in for its user. An answer comes from the event loop, later or never: the user may
/// be asked to unlock it.
class Keyring
{
public:
    struct Answer
    {
        bool isGood = true;
        QString password = {}; ///< of a good answer to `read`
        QString fault = {};    ///< else why not, in the keyring's own words
        bool isSilent = false; ///< there was no answer in time
    };
    using Done = std::function<void(const Answer& answer)>;

    virtual ~Keyring() = default;

    virtual void read(const QString& entry, Done done) = 0;
    virtual void write(const QString& entry, const QString& password, Done done) = 0;
    /// An entry that is not there is no fault.
    virtual void remove(const QString& entry, Done done) = 0;
};

/// The keyring of this system; null where the program was built without one.
std::shared_ptr<Keyring> systemKeyring();
