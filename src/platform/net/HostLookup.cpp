#include "platform/net/HostLookup.h"

#include <QHostInfo>

HostLookup::HostLookup(QObject* parent) : QObject(parent) {}

HostLookup::~HostLookup()
{
    QHostInfo::abortHostLookup(m_id);
}

void HostLookup::start(const QString& host)
{
    m_id = QHostInfo::lookupHost(host, this, [this](const QHostInfo& answer) {
        m_address = answer.addresses().isEmpty() ? QString() : answer.addresses().constFirst().toString();
        Q_EMIT finished();
    });
}
