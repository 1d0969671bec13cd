#include "app/Instance.h"

#include "platform/system/PathText.h"

#include <QCoreApplication>
#include <QCryptographicHash>
#include <QLocalSocket>
#include <QSysInfo>
#include <QThread>
#include <QWidget>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

// An updater looks at the lock for a moment, and a program that has just begun does not listen yet.
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
    return Start::Silent;
}

bool Instance::take()
{
    const std::string text = std::to_string(QCoreApplication::applicationPid()) + "\nqrvv3rc\n" +
                             QSysInfo::machineHostName().toStdString() + '\n';
    m_lock = FileLock::take(m_folder / "instance.lock", text, m_fault);
    return m_lock != nullptr;
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
