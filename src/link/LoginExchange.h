#pragma once

#include <QObject>

#include <functional>
#include <string>

class clsWinSock;
class Reporter;
struct Session;

struct Credentials
{
    std::string user;
    std::string password;
};

/// What follows a connection: "Login", and after its success "GetStatus". Each connection gets one exchange.
class LoginExchange : public QObject
{
    Q_OBJECT

public:
    /// @param credentials  asked for when the link is up, in the host's code page
    /// @param version      four-part file version of the client's executable
    LoginExchange(clsWinSock& link, Session& session, Reporter& reporter, std::function<Credentials()> credentials,
                  std::string version);

Q_SIGNALS:
    /// The account is logged in and the tracker's status has been handled.
    void completed();

private:
    void run();

    clsWinSock& m_link;
    Session& m_session;
    Reporter& m_reporter;
    std::function<Credentials()> m_credentials;
    std::string m_version;
    bool m_failed = false;    ///< the tracker refused the login of this connection, and the user knows
    bool m_succeeded = false; ///< the tracker accepted it
};
