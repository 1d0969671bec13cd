#pragma once

#include <QObject>

/// One look-up of a host name, off the GUI thread.
class HostLookup : public QObject
{
    Q_OBJECT

public:
    explicit HostLookup(QObject* parent = nullptr);
    ~HostLookup() override;

    /// Starts the look-up; `finished` follows from the event loop.
    void start(const QString& host);
    /// The first address of the answer as text; empty when the host is not known.
    const QString& address() const { return m_address; }

Q_SIGNALS:
    void finished();

private:
    int m_id = -1;
    QString m_address;
};
