// One request and its reply on the loopback address, and what waiting for a silent tracker costs.

#include "QuietDesk.h"
#include "link/Ask.h"
#include "link/Request.h"

#include <benchmark/benchmark.h>

#include <QEventLoop>
#include <QHostAddress>
#include <QTcpServer>
#include <QThread>
#include <QTimer>

#include <atomic>
#include <chrono>
#include <ctime>
#include <memory>

using namespace std::chrono_literals;

namespace {

constexpr char loginText[] = "0000033[ST]Success_a_b_U3VwZXI=_8000[ND]";
constexpr char replyText[] = "0000312[ST]" // a reply of usual length, below that which opens the progress window
                             "RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3w"
                             "RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3w"
                             "RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3xFY2hvfEVjaG98RWNob3w"
                             "[ND]";

/// Answers every request with the same reply, in a thread of its own; requests that say "Silent" it does not answer.
/// One link at a time.
class EchoPeer
{
public:
    EchoPeer() : m_thread(QThread::create([this] { serve(); }))
    {
        m_thread->start();
        while (m_port == 0)
            QThread::yieldCurrentThread();
    }
    EchoPeer(const EchoPeer&) = delete;
    EchoPeer& operator=(const EchoPeer&) = delete;
    ~EchoPeer()
    {
        m_ends = true;
        m_thread->wait();
    }

    quint16 port() const { return m_port; }

private:
    static constexpr int glance = 50; // milliseconds between two looks at whether to end

    void serve()
    {
        QTcpServer server;
        if (!server.listen(QHostAddress::LocalHost))
            qFatal("no port can be had");
        m_port = server.serverPort();
        while (!m_ends) {
            if (!server.waitForNewConnection(glance))
                continue;
            const std::unique_ptr<QTcpSocket> socket(server.nextPendingConnection());
            socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
            while (!m_ends && socket->state() == QAbstractSocket::ConnectedState)
                answer(*socket);
        }
    }

    static void answer(QTcpSocket& socket)
    {
        if (!socket.waitForReadyRead(glance))
            return;
        const QByteArray request = socket.readAll(); // short enough to arrive in one piece
        if (request.endsWith("[ND]") && !request.contains("Silent")) {
            socket.write(request.contains("Login") ? loginText : replyText);
            socket.flush();
        }
    }

    std::atomic<quint16> m_port = 0;
    std::atomic<bool> m_ends = false;
    std::unique_ptr<QThread> m_thread;
};

class NoInterface : public LockableInterface
{
public:
    void lockInterface() override {}
    void unlockInterface() override {}
};

/// The link and all below it, with nobody above.
class Link
{
public:
    explicit Link(quint16 port)
        : m_core({.folder = m_folder.path().toStdU16String(),
                  .makerHost = QUrl(QStringLiteral("http://maker.example")),
                  .version = "3.0.1.0"},
                 m_boxes, m_interface, [](const std::filesystem::path&, const QString&) {})
    {
        m_core.replies.on("Echo", &m_owner, [this](std::string_view body) { m_answered += body.empty() ? 0 : 1; });
        m_core.link.open({.profile = {}, .host = QStringLiteral("127.0.0.1"), .isAddress = true, .port = port});
        if (EventWait(5s).endsOn(&m_core.link, &clsWinSock::connected, WaitEnd::Done).run() != WaitEnd::Done ||
            ask("Login") != WaitEnd::Done)
            qFatal("the peer cannot be reached");
    }

    WaitEnd ask(const char* name) { return ::ask(m_core.link, {name, name, {}}); }
    void setLimit(std::chrono::milliseconds limit) { m_core.link.replyLimit = limit; }
    std::int64_t answered() const { return m_answered; }

private:
    QTemporaryDir m_folder;
    NoBoxes m_boxes;
    NoInterface m_interface;
    ClientCore m_core;
    QObject m_owner;
    std::int64_t m_answered = 0;
};

void roundTripOurs(benchmark::State& state)
{
    const EchoPeer peer;
    Link link(peer.port());
    for ([[maybe_unused]] const auto step : state) {
        if (link.ask("Echo") != WaitEnd::Done)
            state.SkipWithError("no reply");
    }
    if (link.answered() != state.iterations())
        state.SkipWithError("not every reply was handled");
}

/// The least that a window can do: one socket, one nested loop.
void roundTripNestedLoop(benchmark::State& state)
{
    const EchoPeer peer;
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, peer.port());
    if (!socket.waitForConnected())
        qFatal("the peer cannot be reached");
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    QEventLoop loop;
    QByteArray reply;
    QObject::connect(&socket, &QTcpSocket::readyRead, &loop, [&] {
        reply += socket.readAll();
        if (reply.endsWith("[ND]"))
            loop.quit();
    });
    for ([[maybe_unused]] const auto step : state) {
        reply.clear();
        socket.write("[ST]Echo_VB6_[ND]");
        loop.exec();
    }
}

double threadMilliseconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) * 1e3 + static_cast<double>(now.tv_nsec) * 1e-6;
}

/// Processor time of this thread alone: the peer has its own.
void silentTracker(benchmark::State& state)
{
    const EchoPeer peer;
    for ([[maybe_unused]] const auto step : state) {
        state.PauseTiming();
        Link link(peer.port());
        link.setLimit(1s);
        state.ResumeTiming();
        const double start = threadMilliseconds();
        if (link.ask("Silent") != WaitEnd::TimedOut)
            state.SkipWithError("the wait did not end in silence");
        state.counters["cpu_ms"] = threadMilliseconds() - start;
    }
}

void emptyLoop(benchmark::State& state)
{
    for ([[maybe_unused]] const auto step : state) {
        QEventLoop loop;
        QTimer::singleShot(1s, &loop, &QEventLoop::quit);
        const double start = threadMilliseconds();
        loop.exec();
        state.counters["cpu_ms"] = threadMilliseconds() - start;
    }
}

BENCHMARK(roundTripOurs)->Name("request and reply: ours")->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(roundTripNestedLoop)->Name("request and reply: nested loop")->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(silentTracker)->Name("waiting 1 s: ours")->UseRealTime()->Iterations(1)->Unit(benchmark::kMillisecond);
BENCHMARK(emptyLoop)->Name("waiting 1 s: empty loop")->UseRealTime()->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
