#pragma once

#include "updates/UpdateServices.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <optional>
#include <vector>

class ManifestFetch;
class PageFetch;

/// A list of files that is being fetched and compared with the disk, a little in each turn of the event loop. Deleting
/// it ends the check; `finished` is not emitted then.
class ListCheck : public QObject
{
    Q_OBJECT

public:
    /// Location and key are taken as they are now. Where a package manager keeps the client current, its list is not
    /// asked for.
    /// @param services  outlives this
    /// @param limit     time for fetching the list
    ListCheck(const UpdateServices& services, const CheckOrder& order, std::chrono::milliseconds limit,
              QObject* parent = nullptr);
    ~ListCheck() override;

    /// Ends the check as one without a list, or with what has been found so far.
    void cancel();
    bool isCancelled() const { return m_isCancelled; }
    bool isOver() const { return m_isOver; }
    /// Whether the location had a whole list and, where a key is set, a manifest to prove it by.
    bool hasList() const { return m_hasList; }
    /// Why a list that the location has does not count; a sentence without its full stop. Empty when there is none.
    const QString& fault() const { return m_fault; }
    const Candidates& candidates() const { return m_candidates; }
    const QString& location() const { return m_location; }
    /// Whether it judged with what is in force.
    bool isOf(const UpdateServices& services) const { return m_location == services.location && m_key == services.key; }

Q_SIGNALS:
    /// Once, from the event loop or from cancel().
    void finished();

private:
    void fetch();
    void take();
    bool fetchAgainIfMixed();
    QString judgeList();
    void judgeSome();
    void end();

    const UpdateServices& m_services;
    CheckOrder m_order;
    std::chrono::milliseconds m_limit;
    QString m_location;
    std::optional<UpdateKey> m_key;
    LocalFacts m_facts;
    std::unique_ptr<PageFetch> m_page;
    std::unique_ptr<ManifestFetch> m_manifest; ///< none where nothing is proven
    std::vector<UpdateRecord> m_records;
    std::size_t m_next = 0; ///< the record to be judged next
    Candidates m_candidates;
    QString m_fault;
    bool m_hasList = false;
    bool m_isSecondTime = false;
    bool m_isCancelled = false;
    bool m_isOver = false;
};
