#pragma once

#include <QByteArray>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>

class QNetworkAccessManager;

/// HTTP and HTTPS transfers. The network machinery is set up with the first transfer, so that a program that makes
/// none does not pay for it.
class Inet : public QObject
{
    Q_OBJECT

public:
    struct Answer
    {
        int status = 0; ///< HTTP status; 0 when there was no answer
        QByteArray body;
    };

    explicit Inet(QObject* parent = nullptr);
    ~Inet() override;

    /// Posts a form body as it stands.
    /// @param limit  time for the whole transfer; it is cut off then
    /// @param done   called once from the event loop, not when this object is gone first
    void post(const QUrl& url, const QByteArray& body, std::chrono::milliseconds limit,
              std::function<void(const Answer&)> done);

private:
    std::unique_ptr<QNetworkAccessManager> m_network;
};
