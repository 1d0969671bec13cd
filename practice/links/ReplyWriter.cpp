#include "practice/links/ReplyWriter.h"

#include "practice/links/Framing.h"

#include <random>

#include <sys/socket.h>

namespace practice {

namespace {

/// What a plugin of the tracker tells in front of an answer.
QByteArray newsInFront()
{
    return watchMessage("Alpha: Kestrel eliminated Otter (M4)");
}

QByteArray garbageBody(int seed)
{
    std::minstd_rand chance(static_cast<quint32>(seed));
    QByteArray body;
    while (body.size() < 64) {
        const char byte = static_cast<char>(chance() >> 8);
        if (byte != '[' && byte != ']') // so that no marker can arise
            body += byte;
    }
    return body;
}

QByteArray withGarbageElement(const QByteArray& body, int element)
{
    QList<QByteArray> elements = body.split('_');
    if (element < elements.size())
        elements[element] = "\x01!*\x7F%(~";
    return elements.join('_');
}

QByteArray withPrefix(const QByteArray& prefix, const QByteArray& body)
{
    return prefix + framed(body).mid(7);
}

/// Closing without lingering makes the system send a reset instead of an orderly end.
void closeWithReset(QTcpSocket& socket)
{
    struct linger noLinger = {1, 0};
    ::setsockopt(static_cast<int>(socket.socketDescriptor()), SOL_SOCKET, SO_LINGER,
                 reinterpret_cast<const char*>(&noLinger), sizeof noLinger);
    socket.abort();
}

} // namespace

Delivery planDelivery(const QByteArray& body, const Fault& fault)
{
    using Kind = Fault::Kind;
    const QByteArray whole = framed(body);
    switch (fault.kind()) {
    case Kind::None:
    case Kind::Late:
        return {.bytes = whole};
    case Kind::Chunks:
        return {.bytes = whole, .chunk = qMax(1, fault.number()), .gap = fault.delay()};
    case Kind::Never:
        return {};
    case Kind::Twice:
        return {.bytes = whole + whole};
    case Kind::CutOff:
        return {.bytes = whole.left(fault.number()), .ending = Delivery::Ending::Close};
    case Kind::Silent:
        return {.bytes = whole.left(fault.number())};
    case Kind::Reset:
        return {.ending = Delivery::Ending::Reset};
    case Kind::Garbage:
        return {.bytes = framed(garbageBody(fault.number()))};
    case Kind::GarbageElement:
        return {.bytes = framed(withGarbageElement(body, fault.number()))};
    case Kind::WrongPrefix:
        return {.bytes = withPrefix("length?", body)};
    case Kind::HugePrefix:
        return {.bytes = withPrefix("9999999", body)};
    case Kind::NoMarkers:
        return {.bytes = whole.left(7) + body};
    case Kind::NoEnd:
        return {.bytes = whole.chopped(4)};
    case Kind::EmptyBody:
        return {.bytes = framed({})};
    case Kind::NewsFirst:
        return {.bytes = framed(newsInFront()) + whole};
    case Kind::NewsWithin:
        return {.bytes = framed(newsInFront() + "[ND][ST]" + body)};
    }
    return {};
}

ReplyWriter::ReplyWriter(QTcpSocket& socket, QObject* parent) : QObject(parent), m_socket(socket)
{
    m_next.setSingleShot(true);
    connect(&m_next, &QTimer::timeout, this, &ReplyWriter::writeOn);
}

void ReplyWriter::reply(const QByteArray& body, const Fault& fault)
{
    const Delivery delivery = planDelivery(body, fault);
    if (fault.kind() == Fault::Kind::Late)
        QTimer::singleShot(fault.delay(), this, [this, delivery] { deliver(delivery); });
    else
        deliver(delivery);
}

void ReplyWriter::deliver(const Delivery& delivery)
{
    m_queue.enqueue(delivery);
    if (!m_next.isActive())
        writeOn();
}

void ReplyWriter::closeAfterwards()
{
    deliver({.ending = Delivery::Ending::Close});
}

void ReplyWriter::reset()
{
    m_queue.clear();
    closeWithReset(m_socket);
}

void ReplyWriter::writeOn()
{
    while (!m_queue.isEmpty() && m_socket.state() == QAbstractSocket::ConnectedState) {
        Delivery& delivery = m_queue.head();
        const qsizetype size = delivery.chunk > 0 ? delivery.chunk : delivery.bytes.size();
        m_socket.write(delivery.bytes.left(size));
        delivery.bytes.remove(0, size);
        if (!delivery.bytes.isEmpty()) {
            m_socket.flush();
            m_next.start(delivery.gap);
            return;
        }
        end(m_queue.dequeue().ending);
    }
}

void ReplyWriter::end(Delivery::Ending ending)
{
    if (ending == Delivery::Ending::Close)
        m_socket.disconnectFromHost(); // writes out what is pending first
    else if (ending == Delivery::Ending::Reset)
        reset();
}

} // namespace practice
