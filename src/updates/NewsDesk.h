#pragma once

#include <QObject>

#include <memory>
#include <string>

class PageFetch;
struct Client;
struct UpdateServices;

/// Fetches the maker's news as often as the user wants them, whether they are looked at or not.
class NewsDesk : public QObject
{
    Q_OBJECT

public:
    /// Both outlive this.
    NewsDesk(const UpdateServices& services, Client& client, QObject* parent);
    ~NewsDesk() override;

    /// Fetches the news when they are due by the clock.
    void fetchIfDue();
    /// Fetches the news when there are none yet.
    void fetchIfNone();

    const QString& news() const { return m_news; }
    /// One of the texts of `newsFrequencies`.
    QString frequency() const;
    /// Stores how often the news are wanted. @throws RuntimeError from the disk
    void setFrequency(const QString& frequency);

Q_SIGNALS:
    void newsChanged();

private:
    void fetch();
    void take();
    std::string stored(const char* key) const;
    void store(const char* key, const std::string& value) const;

    const UpdateServices& m_services;
    Client& m_client;
    std::unique_ptr<PageFetch> m_page;
    QString m_news;
    std::string m_lastStamp; ///< of the last fetch in this run
};
