#include "login/KeptPasswords.h"

#include "client/Client.h"
#include "diagnostics/report/Reporter.h"
#include "login/ConnectionFields.h"
#include "platform/system/CodePage.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"

#include <QPointer>
#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

KeptPasswords::KeptPasswords(Client& client, std::shared_ptr<Keyring> keyring, std::chrono::milliseconds limit)
    : m_client(client),
      m_keeper(std::move(keyring), limit)
{}

/// Other installations of the same user have profiles of the same name.
QString KeptPasswords::entryOf(const std::string& profile) const
{
    return QString::fromStdString(m_client.store.GetUIDStr()) + u'/' + m_client.codePage.toText(profile);
}

void KeptPasswords::tell(const QString& what, const QString& fault)
{
    m_client.reporter.ReportMsg(MessageKind::Failed, fault.isEmpty() ? what : what + u"\r\n"_s + fault);
}

void KeptPasswords::fetch(const std::string& profile, std::function<void(const std::optional<std::string>&)> done)
{
    m_keeper.read(entryOf(profile), [self = QPointer(this), done = std::move(done)](const Keyring::Answer& answer) {
        if (!self)
            return;
        if (!answer.isGood)
            self->tell(u"The keyring does not give the password. Please type it."_s, answer.fault);
        done(answer.isGood ? std::optional(self->m_client.codePage.toBytes(answer.password)) : std::nullopt);
    });
}

void KeptPasswords::store(const std::string& profile, const std::string& password)
{
    m_client.reporter.trap("cmdConnect_Click", [&] {
        m_client.store.WriteIniKey(profile, "Pass", password, m_client.folder.path(connectionFile));
    });
}

void KeptPasswords::keep(const std::string& profile, const std::string& password)
{
    m_keeper.write(entryOf(profile), m_client.codePage.toText(password),
                   [self = QPointer(this), profile](const Keyring::Answer& answer) {
                       if (!self)
                           return;
                       if (answer.isGood)
                           self->store(profile, {});
                       else
                           self->tell(u"The keyring does not take the password. It is asked for next time."_s,
                                      answer.fault);
                   });
}

void KeptPasswords::forget(const std::string& profile)
{
    m_keeper.remove(entryOf(profile), [self = QPointer(this)](const Keyring::Answer& answer) {
        if (self && !answer.isGood)
            self->tell(u"The password is still in the keyring."_s, answer.fault);
    });
}

void KeptPasswords::takeBack()
{
    m_takenBack = 0;
    m_toTakeBack = m_client.store.GetAllIniSections(m_client.folder.path(connectionFile));
    takeNextBack();
}

void KeptPasswords::takeNextBack()
{
    if (m_toTakeBack.empty()) {
        m_client.reporter.ReportMsg(MessageKind::Success,
                                    u"Passwords that were taken back from the keyring: %1"_s.arg(m_takenBack));
        return;
    }
    const std::string profile = m_toTakeBack.back();
    m_toTakeBack.pop_back();
    const auto lines = m_client.store.GetIniSection(profile, m_client.folder.path(connectionFile));
    if (!storedConnection(profile, lines).password.empty()) {
        QTimer::singleShot(0, this, m_client.reporter.trapped("cmdSave_Click", [this] { takeNextBack(); }));
        return;
    }
    m_keeper.read(entryOf(profile), [self = QPointer(this), profile](const Keyring::Answer& answer) {
        if (self)
            self->m_client.reporter.trap("cmdSave_Click", [&] { self->takeBack(profile, answer); });
    });
}

void KeptPasswords::takeBack(const std::string& profile, const Keyring::Answer& answer)
{
    if (answer.isSilent) {
        m_toTakeBack.clear();
        tell(u"Passwords are still in the keyring."_s, answer.fault);
        return;
    }
    if (answer.isGood) {
        ++m_takenBack;
        store(profile, m_client.codePage.toBytes(answer.password));
        forget(profile);
    }
    takeNextBack();
}
