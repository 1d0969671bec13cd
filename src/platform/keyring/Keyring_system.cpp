#include "platform/keyring/Keyring.h"

#include <qt6keychain/keychain.h>

#include <utility>

namespace {

/// The entries of all our installations stand under it.
QString service()
{
    return QStringLiteral("qrvv3rc");
}

class SystemKeyring : public Keyring
{
public:
    void read(const QString& entry, Done done) override
    {
        auto* job = new QKeychain::ReadPasswordJob(service());
        start(job, entry, [job, done = std::move(done)](Answer answer) {
            if (answer.isGood)
                answer.password = job->textData();
            done(answer);
        });
    }

    void write(const QString& entry, const QString& password, Done done) override
    {
        auto* job = new QKeychain::WritePasswordJob(service());
        job->setTextData(password);
        start(job, entry, std::move(done));
    }

    void remove(const QString& entry, Done done) override
    {
        auto* job = new QKeychain::DeletePasswordJob(service());
        start(job, entry, [job, done = std::move(done)](const Answer& answer) {
            done(job->error() == QKeychain::EntryNotFound ? Answer{} : answer);
        });
    }

private:
    /// The job deletes itself behind its answer.
    static void start(QKeychain::Job* job, const QString& entry, Done done)
    {
        job->setKey(entry);
        QObject::connect(job, &QKeychain::Job::finished, [done = std::move(done)](QKeychain::Job* ended) {
            done({.isGood = ended->error() == QKeychain::NoError, .fault = ended->errorString()});
        });
        job->start();
    }
};

} // namespace

std::shared_ptr<Keyring> systemKeyring()
{
    return std::make_shared<SystemKeyring>();
}
