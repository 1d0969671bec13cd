#include "practice/links/Framing.h"

namespace practice {

namespace {

constexpr char begin[] = "[ST]";
constexpr char end[] = "[ND]";
constexpr qsizetype markerLength = 4;
constexpr qsizetype largeText = 1 << 20;

QByteArray zlibStream(const QByteArray& text, int level)
{
    if (text.isEmpty())
        return QByteArray::fromHex("789c030000000001"); // qCompress() has no stream for nothing
    return qCompress(text, level).mid(4);               // which puts the length in front, four bytes
}

} // namespace

QByteArray framed(const QByteArray& body)
{
    const QByteArray length = QByteArray::number(body.size() + 2 * markerLength);
    return length.rightJustified(7, '0') + begin + body + end;
}

QByteArray watchMessage(const QByteArray& line)
{
    return "Plugin_qrvWatch_" + line;
}

QByteArray envelope(const QByteArray& text)
{
    QByteArray stream;
    // A marker inside the stream would end the reply early; another level gives other bytes. The best level takes its
    // time, which for a large text is too long.
    const int best = text.size() > largeText ? 1 : 9;
    for (int step = 0; step < 10; ++step) {
        stream = zlibStream(text, (best + 10 - step) % 10);
        if (!stream.contains(begin) && !stream.contains(end))
            break;
    }
    return QByteArray::number(text.size()) + "[-]Quorvane[-]" + stream;
}

QList<QByteArray> RequestReader::take(const QByteArray& bytes)
{
    m_pending += bytes;
    QList<QByteArray> bodies;
    qsizetype from = 0;
    qsizetype stop = m_pending.indexOf(end, m_searched);
    while (stop >= 0) {
        const QByteArray piece = m_pending.mid(from, stop - from);
        const qsizetype start = piece.indexOf(begin);
        bodies += start < 0 ? piece : piece.mid(start + markerLength);
        from = stop + markerLength;
        stop = m_pending.indexOf(end, from);
    }
    m_pending.remove(0, from);
    m_searched = qMax<qsizetype>(0, m_pending.size() - (markerLength - 1));
    return bodies;
}

Request Request::parse(const QByteArray& body)
{
    constexpr char separator[] = "_VB6_";
    const qsizetype at = body.lastIndexOf(separator); // a tail holds none, a user name might
    if (at < 0 || body.startsWith("Plugin_"))         // plugins may say anything to each other
        return {"RCData", body, {}};
    const QByteArray head = body.left(at);
    const QByteArray tail = body.mid(at + static_cast<qsizetype>(sizeof separator) - 1);
    const qsizetype nameEnd = head.indexOf('_');
    if (nameEnd < 0)
        return {head, {}, tail};
    const QByteArray name = head.left(nameEnd);
    return {name == "login" ? QByteArray("Login") : name, head.mid(nameEnd + 1), tail};
}

QByteArray Request::afterUser(const QByteArray& user) const
{
    if (rest.startsWith(user + '_'))
        return rest.mid(user.size() + 1);
    if (rest == user)
        return {};
    const qsizetype at = rest.indexOf('_');
    return at < 0 ? QByteArray() : rest.mid(at + 1);
}

} // namespace practice
