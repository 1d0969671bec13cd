// A file of 16 MiB from the loopback address to the disk, against a bare socket that does the same.

#include "link/EventWait.h"
#include "platform/net/Download.h"
#include "platform/net/Inet.h"

#include <benchmark/benchmark.h>

#include <QHostAddress>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTemporaryDir>
#include <QThread>

#include <array>
#include <atomic>
#include <chrono>
#include <fstream>
#include <memory>
#include <string>

#include <arpa/inet.h>
#include <fcntl.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

using namespace std::chrono_literals;

namespace {

constexpr qsizetype fileBytes = qsizetype{16} * 1024 * 1024;
constexpr std::size_t stepBytes = std::size_t{64} * 1024;
constexpr char request[] = "GET /file HTTP/1.1\r\nHost: 127.0.0.1\r\n\r\n";

/// Answers every request with the same file, in a thread of its own.
class FileHost
{
public:
    FileHost() : m_thread(QThread::create([this] { serve(); }))
    {
        m_thread->start();
        while (m_port == 0)
            QThread::yieldCurrentThread();
    }
    FileHost(const FileHost&) = delete;
    FileHost& operator=(const FileHost&) = delete;
    ~FileHost()
    {
        m_ends = true;
        m_thread->wait();
    }

    quint16 port() const { return m_port; }

private:
    static constexpr int glance = 50; // milliseconds between two looks at whether to end

    void serve()
    {
        const QByteArray body(fileBytes, 'x');
        const QByteArray head =
            "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(fileBytes) + "\r\n\r\n";
        QTcpServer server;
        if (!server.listen(QHostAddress::LocalHost))
            qFatal("no port can be had");
        m_port = server.serverPort();
        while (!m_ends) {
            if (!server.waitForNewConnection(glance))
                continue;
            const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
            if (!socket->waitForReadyRead(1000))
                continue;
            const qsizetype length = socket->readAll().startsWith("GET /small") ? 1 : fileBytes;
            socket->write("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + QByteArray::number(length) +
                          "\r\n\r\n");
            for (qsizetype sent = 0; sent < length && socket->state() == QAbstractSocket::ConnectedState;) {
                sent += socket->write(body.constData() + sent, std::min<qsizetype>(length - sent, 256 * 1024));
                while (socket->bytesToWrite() > 0 && socket->waitForBytesWritten(1000)) {
                }
            }
            socket->disconnectFromHost();
        }
    }

    std::atomic<quint16> m_port = 0;
    std::atomic<bool> m_ends = false;
    std::unique_ptr<QThread> m_thread;
};

/// A number of /proc/self/status, in KiB.
long memory(const std::string& key)
{
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(key + ":"))
            return std::stol(line.substr(key.size() + 1));
    }
    return 0;
}

void forgetPeak()
{
    std::ofstream("/proc/self/clear_refs") << 5;
}

void downloadOurs(benchmark::State& state)
{
    const FileHost host;
    const QTemporaryDir folder;
    Inet inet;
    const auto fetch = [&](const QString& page) {
        const QUrl url(QStringLiteral("http://127.0.0.1:%1/%2").arg(host.port()).arg(page));
        Download download(inet, url, folder.filePath(QStringLiteral("ours")).toStdU16String(),
                          {.silence = 30s, .maxBytes = 1 << 30});
        const WaitEnd end = EventWait(30s).endsOn(&download, &Download::finished, WaitEnd::Done).run();
        return end == WaitEnd::Done && download.outcome() == DownloadEnd::Whole;
    };
    fetch(QStringLiteral("small")); // sets the network machinery up, once in a program's life
    forgetPeak();
    const long before = memory("VmRSS");
    for ([[maybe_unused]] const auto step : state) {
        if (!fetch(QStringLiteral("file")))
            state.SkipWithError("not downloaded");
    }
    state.counters["extra_kib"] = static_cast<double>(memory("VmHWM") - before);
}

bool fetchBare(quint16 port, const char* file)
{
    const int connection = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0)
        return false;
    bool isGood = ::send(connection, request, sizeof(request) - 1, 0) > 0;
    ::unlink(file);
    const int out = ::open(file, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    static std::array<char, stepBytes> step;
    ssize_t whole = 0;
    for (ssize_t read = 0; isGood && (read = ::recv(connection, step.data(), step.size(), 0)) > 0; whole += read)
        isGood = ::write(out, step.data(), static_cast<std::size_t>(read)) == read;
    ::close(out);
    ::close(connection);
    return isGood && whole > fileBytes;
}

void downloadBare(benchmark::State& state)
{
    const FileHost host;
    const QTemporaryDir folder;
    const QByteArray file = folder.filePath(QStringLiteral("bare")).toLocal8Bit();
    for ([[maybe_unused]] const auto step : state) {
        if (!fetchBare(host.port(), file.constData()))
            state.SkipWithError("not downloaded");
    }
}

BENCHMARK(downloadOurs)->Name("download of 16 MiB: ours")->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(downloadBare)->Name("download of 16 MiB: bare socket")->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
