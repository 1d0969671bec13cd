#include "updates/NewsDesk.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "client/Client.h"
#include "platform/net/Inet.h"
#include "platform/system/CodePage.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"
#include "updates/NewsFrequency.h"
#include "updates/UpdateServices.h"

#include <QDateTime>

#include <algorithm>

using namespace Qt::StringLiterals;

namespace {

constexpr const char* section = "Settings";
constexpr const char* frequencyKey = "NewsUpdate";
constexpr const char* stampKey = "NewsLastUpdate";
constexpr std::string_view settingsFile = "\\settings\\config.ini";

NewsClock clockNow()
{
    const QDateTime now = QDateTime::currentDateTime();
    return {.day = now.date().day(), .hour = now.time().hour()};
}

} // namespace

NewsDesk::NewsDesk(const UpdateServices& services, Client& client, QObject* parent)
    : QObject(parent),
      m_services(services),
      m_client(client)
{
    setObjectName(u"InetNews"_s);
}

NewsDesk::~NewsDesk() = default;

/// Settings that cannot be read count as none: the news are no reason to disturb the user.
std::string NewsDesk::stored(const char* key) const
{
    try {
        return m_client.store.GetIniKey(section, key, m_client.folder.path(settingsFile));
    } catch (const RuntimeError&) {
        return {};
    }
}

void NewsDesk::store(const char* key, const std::string& value) const
{
    m_client.folder.makeFolder("\\settings");
    m_client.store.WriteIniKey(section, key, value, m_client.folder.path(settingsFile));
}

QString NewsDesk::frequency() const
{
    const std::string text = stored(frequencyKey);
    const bool isKnown = std::find(newsFrequencies.begin(), newsFrequencies.end(), text) != newsFrequencies.end();
    return m_client.codePage.toText(isKnown ? std::string_view(text) : usualNewsFrequency);
}

void NewsDesk::setFrequency(const QString& frequency)
{
    store(frequencyKey, m_client.codePage.toBytes(frequency));
}

void NewsDesk::fetchIfDue()
{
    // Its own memory goes first, or settings that cannot be written would have it fetch every minute.
    const std::string last = m_lastStamp.empty() ? stored(stampKey) : m_lastStamp;
    if (areNewsDue(last, m_client.codePage.toBytes(frequency()), clockNow(), !m_news.isEmpty()))
        fetch();
}

void NewsDesk::fetchIfNone()
{
    if (m_news.isEmpty())
        fetch();
}

void NewsDesk::fetch()
{
    if (m_page && m_page->isExecuting())
        return;
    QUrl url = m_services.makerHost;
    url.setPath(u"/qrvrcnews.txt"_s);
    m_page = m_services.inet.get(url, m_services.listLimit);
    connect(m_page.get(), &PageFetch::finished, this, &NewsDesk::take);
}

void NewsDesk::take()
{
    const PageAnswer& answer = m_page->answer();
    const std::string text = answer.body.toStdString();
    const std::string lower = lowerAscii(text);
    const bool isNews = answer.isGood() && answer.isWhole && lower.find("page not found") == std::string::npos &&
                        lower.find("404 not found") == std::string::npos;
    m_news = isNews ? m_client.codePage.toText(text) : u"Unable to retrieve news!"_s;
    Q_EMIT newsChanged();
    m_lastStamp = newsStamp(clockNow());
    try {
        store(stampKey, m_lastStamp);
    } catch (const RuntimeError&) {
        return; // then the next start fetches them again
    }
}
