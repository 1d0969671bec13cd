#pragma once

#include <QObject>

#include <functional>
#include <string>

class clsWinSock;
class Reporter;
enum class WaitEnd;

/// What follows a connection: "Login", and after its success "GetStatus", for the account that Connect named.
class LoginExchange : public QObject
{
    Q_OBJECT

public:
    /// Link and reporter outlive the exchange.
    /// @param isStatusKnown  whether what the tracker answered to "GetStatus" on this connection could be used
    /// @param version        four-part file version of the client's executable
    LoginExchange(clsWinSock& link, Reporter& reporter, std::function<bool()> isStatusKnown, std::string version);

    /// Asks for the tracker's status once more when somebody is logged in and it is not known, and waits for the
    /// answer. Does nothing while the first one is still awaited.
    void askMissedStatus();

Q_SIGNALS:
    /// The account is logged in and the tracker has answered for its status, whether or not that could be used.
    void completed();

private:
    void run();
    WaitEnd askStatus();

    clsWinSock& m_link;
    Reporter& m_reporter;
    std::function<bool()> m_isStatusKnown;
    std::string m_version;
    bool m_isAskingStatus = false;
};
