#include "app/Notices.h"

#include "app/ClientCore.h"
#include "app/StatusLine.h"
#include "diagnostics/report/MessageBoxes.h"
#include "live/support/SupportDesk.h"

#include <QApplication>
#include <QTime>

using namespace Qt::StringLiterals;

namespace {

constexpr qsizetype longestName = 40; // characters of a name from the host that a note shows

} // namespace

Notices::Notices(ClientCore& core, const SupportDesk& support, StatusLine& statusLine, QWidget& frame)
    : m_core(core),
      m_statusLine(statusLine)
{
    tellOfLink();
    tellOfOperator(support, frame);
    connect(&m_core.pluginHost, &PluginHost::unknownPlugin, this, [this](const std::string& component) {
        m_statusLine.tell(u"The tracker sent a message for the plugin '%1', which this client does not have."_s.arg(
            m_core.codePage.toText(component).simplified().left(longestName)));
    });
    connect(&m_core.pluginHost, &PluginHost::arrived, this, &Notices::tellOfArrived);
}

void Notices::tellOfLink()
{
    const clsWinSock& link = m_core.link;
    // Behind the socket's own doings, because the box lets events run. It may have to wait behind another one: by the
    // time it is read the link is closed then. Of what is tried again the status line tells: nobody is there to close a
    // box for each of a night's tries.
    connect(
        &link, &clsWinSock::socketFailed, this,
        [this](int number, const QString& description) {
            if (!m_core.keeper.isUnderWay())
                m_core.client.boxes.show(u"Winsock Error"_s, u"%1: %2"_s.arg(number).arg(description));
            if (m_core.link.state() == SocketState::Error)
                m_core.link.close();
        },
        Qt::QueuedConnection);
    connect(
        &link, &clsWinSock::hostUnusable, this,
        [this](const QString& text) {
            if (!m_core.keeper.isUnderWay())
                m_core.reporter.ReportMsg(MessageKind::Failed, text);
        },
        Qt::QueuedConnection);
    connect(&link, &clsWinSock::closedByHost, this, [this] {
        if (m_core.keeper.isUnderWay())
            return; // the status line says how that goes
        m_statusLine.note(u"The host closed the connection at %1."_s.arg(QTime::currentTime().toString(u"HH:mm:ss"_s)));
    });
    connect(&link, &clsWinSock::connected, this, [this] { m_statusLine.note({}); });
}

void Notices::tellOfArrived(const std::vector<LeftOutPlugin>& files)
{
    QStringList usable;
    QStringList leftOut;
    for (const LeftOutPlugin& file : files) {
        const QString name = m_core.codePage.toText(file.file);
        if (file.why.empty())
            usable += name;
        else
            leftOut += name + u": "_s + m_core.codePage.toText(file.why);
    }
    QStringList parts;
    if (!usable.isEmpty())
        parts += u"These plugins have been registered and can be used now:\r\n"_s + usable.join(u"\r\n"_s);
    if (!leftOut.isEmpty())
        parts += u"These plugins are left out until the next start:\r\n"_s + leftOut.join(u"\r\n"_s);
    m_core.reporter.ReportMsg(leftOut.isEmpty() ? MessageKind::Success : MessageKind::Failed,
                              parts.join(u"\r\n\r\n"_s));
}

void Notices::tellOfOperator(const SupportDesk& support, QWidget& frame)
{
    connect(&support, &SupportDesk::unseenMessage, this, [this, &frame] {
        m_statusLine.note(operatorsNote());
        QApplication::alert(&frame);
    });
    connect(&support, &SupportDesk::seen, this, [this] { m_statusLine.withdraw(operatorsNote()); });
}

QString Notices::operatorsNote() const
{
    return u"The operator of %1 has written to you. Open the support console to read it."_s.arg(
        m_core.link.connection().host);
}
