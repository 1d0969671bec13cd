#include "platform/keyring/PasswordKeeper.h"

#include <QPointer>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

PasswordKeeper::PasswordKeeper(std::shared_ptr<Keyring> keyring, std::chrono::milliseconds limit)
    : m_keyring(std::move(keyring)),
      m_limit(limit)
{}

/// `done`, called with the first of the keyring's answer and the end of its time.
Keyring::Done PasswordKeeper::limited(Keyring::Done done)
{
    auto* clock = new QTimer(this);
    clock->setSingleShot(true);
    connect(clock, &QTimer::timeout, this, [clock, done] {
        clock->deleteLater();
        done({.isGood = false, .fault = u"It does not answer."_s, .isSilent = true});
    });
    clock->start(m_limit);
    return [clock = QPointer(clock), done = std::move(done)](const Keyring::Answer& answer) {
        if (!clock || !clock->isActive())
            return;
        clock->stop();
        clock->deleteLater();
        done(answer);
    };
}

void PasswordKeeper::read(const QString& entry, Keyring::Done done)
{
    m_keyring->read(entry, limited(std::move(done)));
}

void PasswordKeeper::write(const QString& entry, const QString& password, Keyring::Done done)
{
    m_keyring->write(entry, password, limited(std::move(done)));
}

void PasswordKeeper::remove(const QString& entry, Keyring::Done done)
{
    m_keyring->remove(entry, limited(std::move(done)));
}
