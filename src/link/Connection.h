#pragma once

#include <QString>

#include <string>

/// One connection to a tracker, as the user meant it when he pressed Connect. It holds for the life of the connection,
/// whatever the login window shows afterwards.
struct Connection
{
    QString profile;           ///< name of the connection profile
    QString host;              ///< what is connected to
    bool isAddress = false;    ///< the host is a dotted address, which is not looked up
    quint16 port = 0;          ///< 0 when what was typed is no port
    std::string user = {};     ///< in the host's code page
    std::string password = {}; ///< likewise

    /// Host and port, as they are told to the user.
    QString peer() const { return QStringLiteral("%1:%2").arg(host, QString::number(port)); }
    /// Whether both lead to the same tracker: profiles have numbers, and another tracker has the same ones.
    bool isSameHost(const Connection& other) const
    {
        return host.compare(other.host, Qt::CaseInsensitive) == 0 && port == other.port;
    }
    /// Whether both lead to the same account: what was typed or said there belongs to it.
    bool isSameAccount(const Connection& other) const { return isSameHost(other) && user == other.user; }

    bool operator==(const Connection&) const = default;
};
