#pragma once

#include <QObject>
#include <QString>

#include <functional>

/// A trapped error as its box shows it. It changes while the box waits or is open: it happens again, and its report
/// gets somewhere.
class TrappedError : public QObject
{
    Q_OBJECT

public:
    enum class Report {
        UnderWay,
        Delivered,
        Failed,
        EqualSent,    ///< not sent, because one of an equal error was
        CountedLater, ///< not sent, because there were too many
        Offered,      ///< sent when the user wants it
        Unwanted,     ///< the user wants no reports at all
    };

    explicit TrappedError(QString text) : m_text(std::move(text)) {}

    /// What the error is, in lines that CR LF separates.
    const QString& text() const { return m_text; }
    /// What has become of it: how often it has happened, and its report.
    QString outcome() const;
    Report report() const { return m_report; }
    bool isClosed() const { return m_isClosed; }

    void happenAgain();
    void setReport(Report report);
    /// The report goes out by `send`, once, when the user wants it.
    void offerReport(std::function<void()> send);
    void sendOffered();
    /// Its box is gone: what happens from now on is another one.
    void close() { m_isClosed = true; }

Q_SIGNALS:
    void changed();

private:
    const QString m_text;
    int m_times = 1;
    Report m_report = Report::UnderWay;
    bool m_isClosed = false;
    std::function<void()> m_send;
};
