#include "practice/web/UpdatePages.h"

#include <QCryptographicHash>
#include <QHttpServer>
#include <QHttpServerRequest>
#include <QHttpServerResponder>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

#include <array>
#include <vector>

namespace practice {

using namespace Qt::StringLiterals;
using StatusCode = QHttpServerResponder::StatusCode;

namespace {

constexpr qsizetype maxRequestsKept = 1000;
const QByteArray pluginsBelow = "plugins/";
const QByteArray manifestName = "qrvv3rc_manifest.txt";
const QByteArray errorPage = "<html><body><h1>Page not found</h1></body></html>\n";

/// The list's line by which clients know that it is one; the program that it offers is old.
const OfferedFile oldProgram{.name = "qrvv3rc.exe",
                             .folder = "\\",
                             .type = "executable file",
                             .description = "(QRV) Main Executable",
                             .version = "1.0.0.0",
                             .body = {}};

QByteArray servedName(const QByteArray& name)
{
    return QByteArray(name).replace("exe", "fle");
}

void put(QList<OfferedFile>& files, const OfferedFile& file)
{
    files.removeIf([&file](const OfferedFile& other) { return other.name == file.name; });
    files.append(file);
}

const OfferedFile* served(const QList<OfferedFile>& files, const QByteArray& name)
{
    for (const OfferedFile& file : files) {
        if (servedName(file.name) == name)
            return &file;
    }
    return nullptr;
}

QByteArray head(qsizetype length)
{
    return "HTTP/1.1 200 OK\r\nContent-Type: application/octet-stream\r\n" +
           (length < 0 ? QByteArray() : "Content-Length: " + QByteArray::number(length) + "\r\n") +
           "Connection: close\r\n\r\n";
}

/// Writes a body piece by piece, as long as the other side listens.
class SlowBody : public QTimer
{
public:
    SlowBody(QTcpSocket* socket, QByteArray body, const PageFault& fault)
        : QTimer(socket),
          m_socket(socket),
          m_body(std::move(body)),
          m_step(qMax(1, fault.number))
    {
        connect(this, &QTimer::timeout, this, &SlowBody::writeStep);
        start(fault.pause);
    }

private:
    void writeStep()
    {
        m_socket->write(m_body.left(m_step));
        m_body.remove(0, m_step);
        if (m_body.isEmpty())
            stop();
    }

    QTcpSocket* m_socket;
    QByteArray m_body;
    qsizetype m_step;
};

} // namespace

struct UpdatePages::Unfinished
{
    std::vector<QHttpServerResponder> responders; // a responder that is let go is answered by the server
};

std::optional<PageFault> PageFault::parse(const QByteArray& text)
{
    struct Form
    {
        const char* name;
        Kind kind;
        int numbers; // that must follow
    };
    static constexpr std::array forms{
        Form{"none", Kind::None, 0},     Form{"notfound", Kind::NotFound, 0}, Form{"errorpage", Kind::ErrorPage, 0},
        Form{"status", Kind::Status, 1}, Form{"cutoff", Kind::CutOff, 1},     Form{"slow", Kind::Slow, 1},
        Form{"never", Kind::Never, 0},   Form{"nolength", Kind::NoLength, 0}, Form{"redirect", Kind::Redirect, 0},
        Form{"loop", Kind::Loop, 0},
    };
    const QList<QByteArray> parts = text.split(':');
    for (const Form& form : forms) {
        const qsizetype most = form.kind == Kind::Slow ? 2 : form.numbers;
        const qsizetype given = parts.size() - 1;
        if (parts[0] != form.name || given < form.numbers || given > most)
            continue;
        PageFault fault{.kind = form.kind};
        bool areNumbers = true;
        if (given >= 1)
            fault.number = parts[1].toInt(&areNumbers);
        bool isPause = true;
        if (given == 2)
            fault.pause = std::chrono::milliseconds(parts[2].toInt(&isPause));
        return areNumbers && isPause && fault.number >= 0 ? std::optional(fault) : std::nullopt;
    }
    return {};
}

QByteArray PageFault::names()
{
    return "notfound, errorpage, status:N, cutoff:N, slow:N[:MS], never, nolength, redirect, loop, none";
}

UpdatePages::UpdatePages(QObject* parent)
    : QObject(parent),
      m_news("Welcome to the practice host.\r\n\r\nThis is where the maker's news stand.\r\n"),
      m_unfinished(std::make_unique<Unfinished>())
{}

UpdatePages::~UpdatePages() = default;

void UpdatePages::serveOn(QHttpServer& server)
{
    using Method = QHttpServerRequest::Method;
    const auto page = [this](const QString& prefix) {
        return [this, prefix](const QUrl& rest, QHttpServerResponder&& responder) {
            answer(prefix.toUtf8() + rest.path().toUtf8(), std::move(responder));
        };
    };
    server.route(u"/downloads/QRVV3/rc/<arg>"_s, Method::Get, page({}));
    server.route(u"/Quorvane/qrvrc/<arg>"_s, Method::Get, page({}));
    server.route(u"/qrvrcnews.txt"_s, Method::Get,
                 [this](QHttpServerResponder&& responder) { answer("qrvrcnews.txt", std::move(responder)); });
}

void UpdatePages::offerClientFile(const OfferedFile& file)
{
    put(m_clientFiles, file);
}

void UpdatePages::offerPluginFile(const OfferedFile& file)
{
    OfferedFile offered = file;
    if (offered.folder.isEmpty())
        offered.folder = "\\Plugins\\";
    put(m_pluginFiles, offered);
}

QByteArray UpdatePages::listOf(const QList<OfferedFile>& files)
{
    QByteArray text;
    for (const OfferedFile& file : files) {
        text +=
            QList<QByteArray>{
                file.name, file.folder, file.type, file.description, QByteArray::number(file.body.size()), file.version}
                .join('|') +
            "\r\n";
    }
    return text;
}

void UpdatePages::sign(const UpdateSigner& signer, quint64 serial)
{
    m_signer = signer;
    m_serial = serial;
}

QByteArray UpdatePages::manifest() const
{
    QByteArray text = "serial " + QByteArray::number(m_serial) + "\ndate 2026-01-31\n";
    for (const OfferedFile& file : m_clientFiles + m_pluginFiles) {
        text += QCryptographicHash::hash(file.body, QCryptographicHash::Sha256).toHex() + ' ' +
                QByteArray::number(file.body.size()) + ' ' + (file.version.isEmpty() ? "-" : file.version) + ' ' +
                file.folder + ' ' + file.name + '\n';
    }
    return text;
}

std::optional<QByteArray> UpdatePages::pageNamed(const QByteArray& name) const
{
    if (const auto set = m_pages.constFind(name); set != m_pages.constEnd())
        return *set;
    if (name == "qrvrcnews.txt")
        return m_news;
    if (name == "qrvv3rc_filelist.txt" || name == "qrvv3_filelist.txt") {
        const bool offersProgram = served(m_clientFiles, servedName(oldProgram.name));
        return listOf(offersProgram ? m_clientFiles : QList{oldProgram} + m_clientFiles);
    }
    if (name == pluginsBelow + "qrvv3rc_pluginlist.txt" || name == pluginsBelow + "qrvv3_pluginlist.txt")
        return "|\\Plugins\\|Plugin|\r\n" + listOf(m_pluginFiles);
    if (m_signer && name == manifestName)
        return manifest();
    if (m_signer && name == manifestName + ".minisig")
        return m_signer->signatureOf(pageNamed(manifestName).value_or(QByteArray()));
    const bool isPlugin = name.startsWith(pluginsBelow);
    const OfferedFile* file =
        isPlugin ? served(m_pluginFiles, name.mid(pluginsBelow.size())) : served(m_clientFiles, name);
    return file ? std::optional(file->body) : std::nullopt;
}

PageFault UpdatePages::faultOf(const QByteArray& name) const
{
    return m_faults.contains(name) ? m_faults.value(name) : m_faults.value("*");
}

void UpdatePages::answer(const QByteArray& name, QHttpServerResponder&& responder)
{
    m_requested += name;
    if (m_requested.size() > maxRequestsKept)
        m_requested.removeFirst();
    Q_EMIT pageRequested(name);
    const std::optional<QByteArray> body = pageNamed(name);
    const PageFault fault = faultOf(name);
    if (fault.kind != PageFault::Kind::None)
        misbehaveNow(fault, body.value_or(QByteArray()), std::move(responder));
    else if (body)
        responder.write(*body, "application/octet-stream");
    else
        responder.write(errorPage, "text/html", StatusCode::NotFound);
}

void UpdatePages::misbehaveNow(const PageFault& fault, const QByteArray& body, QHttpServerResponder&& responder)
{
    const QPointer<QTcpSocket> socket = responder.socket();
    switch (fault.kind) {
    case PageFault::Kind::None:
    case PageFault::Kind::NotFound:
        return responder.write(errorPage, "text/html", StatusCode::NotFound);
    case PageFault::Kind::ErrorPage:
        return responder.write(errorPage, "text/html");
    case PageFault::Kind::Status:
        return responder.write(errorPage, "text/html", static_cast<StatusCode>(fault.number));
    case PageFault::Kind::Redirect:
        return responder.write({{"Location", "/nowhere"}}, StatusCode::Found);
    case PageFault::Kind::Loop:
        return responder.write({{"Location", "?again"}}, StatusCode::Found);
    case PageFault::Kind::CutOff:
        socket->write(head(body.size()) + body.left(fault.number));
        socket->disconnectFromHost();
        break;
    case PageFault::Kind::Slow:
        socket->write(head(body.size()));
        new SlowBody(socket, body, fault);
        break;
    case PageFault::Kind::Never:
        socket->write(head(body.size()));
        break;
    case PageFault::Kind::NoLength:
        socket->write(head(-1) + body);
        socket->disconnectFromHost();
        break;
    }
    m_unfinished->responders.push_back(std::move(responder));
}

} // namespace practice
