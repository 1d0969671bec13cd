#pragma once

#include <QByteArray>
#include <QObject>
#include <QUrl>

#include <chrono>
#include <functional>
#include <memory>

class QNetworkAccessManager;

class QNetworkReply;

/// Whether a transfer can be made to that address: http or https, with a host.
bool isWebAddress(const QUrl& url);

/// What a page answered.
struct PageAnswer
{
    int status = 0; ///< HTTP status; 0 when there was no answer
    QByteArray body;
    bool isWhole = false; ///< nothing of the body is missing

    bool isGood() const { return status >= 200 && status < 300; }
};

/// A page that is being fetched. Deleting it cancels the transfer; `finished` is not emitted then.
class PageFetch : public QObject
{
    Q_OBJECT

public:
    /// @param reply  taken over
    /// @param limit  time for the whole transfer; it is cut off then
    PageFetch(QNetworkReply* reply, std::chrono::milliseconds limit);
    ~PageFetch() override;

    bool isExecuting() const { return m_reply != nullptr; }
    /// Empty until the transfer is over.
    const PageAnswer& answer() const { return m_answer; }
    /// Ends the transfer as one without an answer.
    void cancel();

Q_SIGNALS:
    /// The transfer is over, one way or the other; once, from the event loop or from cancel().
    void finished();

private:
    void finish();

    QNetworkReply* m_reply;
    PageAnswer m_answer;
};

/// HTTP and HTTPS transfers. The network machinery is set up with the first transfer, so that a program that makes
/// none does not pay for it.
class Inet : public QObject
{
    Q_OBJECT

public:
    explicit Inet(QObject* parent = nullptr);
    ~Inet() override;

    /// Posts a form body as it stands; an answer longer than 1 MiB is cut off.
    /// @param limit  time for the whole transfer; it is cut off then
    /// @param done   called once from the event loop, not when this object is gone first
    void post(const QUrl& url, const QByteArray& body, std::chrono::milliseconds limit,
              std::function<void(const PageAnswer&)> done);
    /// The same for a sender that may cancel: deleting what is returned ends the transfer.
    std::unique_ptr<PageFetch> post(const QUrl& url, const QByteArray& body, std::chrono::milliseconds limit);
    /// Fetches a page of at most 1 MiB, following redirects; a longer one is cut off.
    /// @param limit  as above
    std::unique_ptr<PageFetch> get(const QUrl& url, std::chrono::milliseconds limit);

    /// For transfers of other kinds; owned by this object.
    QNetworkAccessManager& network();

private:
    std::unique_ptr<QNetworkAccessManager> m_network;
};
