#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>

#include <chrono>
#include <memory>

class QHttpServer;
class QHttpServerRequest;
class QHttpServerResponder;

namespace practice {

/// The statistics scripts of a web host, to which profiles upload: "stats_import.php" and "request.php" in any
/// folder of the host. The folder says how they behave: "slow" answers late, "silent" never, "failing" with an error of
/// the server, "empty" with a page that says nothing, "none" has no scripts; every other one answers as scripts do.
class ScriptPages : public QObject
{
    Q_OBJECT

public:
    /// Adds the pages to `server`, which outlives this.
    explicit ScriptPages(QHttpServer& server, QObject* parent = nullptr);
    ~ScriptPages() override;

    QList<QByteArray> serverIds{"7", "101", "102", "103"}; ///< those that are known
    std::chrono::milliseconds slowness = std::chrono::seconds(3);

    /// Path and query of all requests so far as they came, escapes included, oldest first; at most the newest 1,000.
    const QList<QByteArray>& requests() const { return m_requests; }

Q_SIGNALS:
    void requested(const QByteArray& address);

private:
    using Reply = QByteArray (ScriptPages::*)(const QHttpServerRequest&) const;

    void answer(const QString& folder, const QHttpServerRequest& request, QHttpServerResponder&& responder,
                Reply reply);
    QByteArray importReply(const QHttpServerRequest& request) const;
    QByteArray requestReply(const QHttpServerRequest& request) const;

    struct Unanswered;
    std::unique_ptr<Unanswered> m_unanswered;
    QList<QByteArray> m_requests;
};

} // namespace practice
