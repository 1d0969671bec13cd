#pragma once

#include <QByteArray>
#include <QList>

namespace practice {

/// A reply as it travels: seven digits that count what follows, "[ST]", the body and "[ND]".
QByteArray framed(const QByteArray& body);

/// The body of a message by which the tracker's plugin "Match Watch" (file "qrvWatch.dll") tells its counterpart of
/// `line`.
QByteArray watchMessage(const QByteArray& line);

/// The compressed payload: length of `text` in decimal, "[-]Quorvane[-]" and `text` as a zlib stream. The
/// compression level is chosen so that the stream contains neither "[ST]" nor "[ND]", as far as one does that.
QByteArray envelope(const QByteArray& text);

/// Gathers the bytes of one client and cuts them into request bodies.
class RequestReader
{
public:
    /// A client that sends more than this without "[ND]" is not one of ours.
    static constexpr qsizetype maxPending = 4 * 1024 * 1024;

    /// @return the bodies completed by `bytes`, in order: what stands between "[ST]" and "[ND]", or everything before
    /// "[ND]" when there is no "[ST]"
    QList<QByteArray> take(const QByteArray& bytes);
    /// Whether the pending bytes exceed maxPending; the connection is then to be ended.
    bool overflown() const { return m_pending.size() > maxPending; }

private:
    QByteArray m_pending;
    qsizetype m_searched = 0; // "[ND]" does not begin before this
};

/// A request body taken apart.
struct Request
{
    QByteArray name; ///< "Login" for a login, "RCData" for a body without "_VB6_" or for a plugin
    QByteArray rest; ///< what stands between the name's "_" and "_VB6_"; for RCData the whole body
    QByteArray tail; ///< what follows "_VB6_"

    static Request parse(const QByteArray& body);
    /// The part of `rest` behind the user name and its "_"; user names may contain "_" themselves.
    QByteArray afterUser(const QByteArray& user) const;
};

} // namespace practice
