#include "app/Instance.h"

#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathText.h"
#include "updates/InstallUpdates.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QLocalSocket>
#include <QSysInfo>
#include <QThread>
#include <QWidget>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr const char* lockName = "instance.lock";

// Most updates are installed in less, and a program that has just begun does not listen yet.
constexpr int attempts = 40;
constexpr auto betweenAttempts = 50ms;

/// The folder itself is too long for a socket's name.
QString socketNameFor(const std::filesystem::path& folder)
{
    std::error_code fault;
    const std::filesystem::path whole = std::filesystem::canonical(folder, fault);
    const QByteArray bytes = textOf(fault ? folder : whole).toUtf8();
    return u"qrvv3rc-"_s +
           QString::fromLatin1(QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex().left(32));
}

} // namespace

Instance::Instance(const std::filesystem::path& folder) : m_folder(folder), m_name(socketNameFor(folder)) {}

Instance::Start Instance::begin()
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (take())
            return Start::First;
        if (m_fault)
            return Start::Unusable;
        if (raiseOther())
            return Start::Raised;
        QThread::msleep(betweenAttempts.count());
    }
    return isUpdatersTurn() ? Start::Updating : Start::Silent;
}

bool Instance::take()
{
    const std::string text = std::to_string(QCoreApplication::applicationPid()) + "\nqrvv3rc\n" +
                             QSysInfo::machineHostName().toStdString() + '\n';
    m_lock = FileLock::take(m_folder / lockName, text, m_fault);
    return m_lock != nullptr;
}

/// What the lock says decides nothing but what the user is told.
bool Instance::isUpdatersTurn() const
{
    try {
        return readBytesIfPresent(m_folder / lockName, updaterLockText.size()) == updaterLockText;
    } catch (const RuntimeError&) {
        return false; // somebody else's, who has more to say
    }
}

bool Instance::raiseOther() const
{
    QLocalSocket other;
    other.connectToServer(m_name);
    return other.waitForConnected(1000);
}

void Instance::show(QWidget& window)
{
    QLocalServer::removeServer(m_name); // what one that was killed has left; the lock says that it is nobody's
    m_server.setSocketOptions(QLocalServer::UserAccessOption);
    m_server.listen(m_name);
    QObject::connect(&m_server, &QLocalServer::newConnection, &window, [this, &window] {
        while (QLocalSocket* caller = m_server.nextPendingConnection())
            caller->deleteLater();
        if (!window.isVisible())
            return; // it has not come so far, and will show itself
        window.setWindowState(window.windowState() & ~Qt::WindowMinimized);
        window.raise();
        window.activateWindow();
    });
}
