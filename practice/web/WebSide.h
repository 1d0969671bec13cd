#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QUrl>

#include <memory>

namespace practice {

class ScriptPages;
class UpdatePages;

/// The maker's web host on the loopback address: takes error reports, holds statistics scripts, offers updates and
/// news.
class WebSide : public QObject
{
    Q_OBJECT

public:
    explicit WebSide(QObject* parent = nullptr);
    ~WebSide() override;

    /// @param port  0 for any free one
    /// @return false when the port cannot be had
    bool listen(quint16 port = 0);
    /// Also answers over HTTPS, with the certificate of PracticeCertificate.h.
    /// @return the address, without a slash at the end; empty when no port can be had
    QUrl listenSecurely();
    quint16 port() const { return m_port; }
    /// "http://127.0.0.1:PORT", without a slash at the end.
    QUrl base() const;

    /// The statistics scripts; they answer under any folder, see there.
    ScriptPages& scripts() { return *m_scripts; }
    UpdatePages& updates() { return *m_updates; }

    /// Bodies of the reports taken so far, as sent, oldest first; at most the newest 1,000.
    const QList<QByteArray>& reports() const { return m_reports; }
    /// Content types of the same reports.
    const QList<QByteArray>& reportTypes() const { return m_reportTypes; }

    /// What the report page answers; "1" says that the report was taken.
    void setReportAnswer(const QByteArray& body, int httpStatus = 200);
    /// Reports are taken but never answered.
    void setReportsUnanswered(bool unanswered);

Q_SIGNALS:
    void reportReceived(const QByteArray& body);

private:
    struct Server;

    void addRoutes(Server& server);

    std::unique_ptr<UpdatePages> m_updates;
    std::unique_ptr<Server> m_server;
    std::unique_ptr<ScriptPages> m_scripts;
    std::unique_ptr<Server> m_secureServer;
    quint16 m_port = 0;
    QList<QByteArray> m_reports;
    QList<QByteArray> m_reportTypes;
    QByteArray m_answer = "1";
    int m_status = 200;
    bool m_unanswered = false;
};

} // namespace practice
