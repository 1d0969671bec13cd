#pragma once

#include "updates/UpdateServices.h"

#include <QObject>

#include <chrono>
#include <memory>
#include <vector>

class PageFetch;

/// A list of files that is being fetched and compared with the disk, a little in each turn of the event loop. Deleting
/// it ends the check; `finished` is not emitted then.
class ListCheck : public QObject
{
    Q_OBJECT

public:
    /// The location is taken as it is now.
    /// @param services  outlives this
    /// @param limit     time for fetching the list
    ListCheck(const UpdateServices& services, const CheckOrder& order, std::chrono::milliseconds limit,
              QObject* parent = nullptr);
    ~ListCheck() override;

    /// Ends the check as one without a list, or with what has been found so far.
    void cancel();
    bool isOver() const { return m_isOver; }
    /// Whether the location had a whole list.
    bool hasList() const { return m_hasList; }
    const Candidates& candidates() const { return m_candidates; }
    const QString& location() const { return m_location; }

Q_SIGNALS:
    /// Once, from the event loop or from cancel().
    void finished();

private:
    void take(const std::string& text);
    void judgeSome();
    void end();

    CheckOrder m_order;
    QString m_location;
    LocalFacts m_facts;
    std::unique_ptr<PageFetch> m_page;
    std::vector<UpdateRecord> m_records;
    std::size_t m_next = 0; ///< the record to be judged next
    Candidates m_candidates;
    bool m_hasList = false;
    bool m_isOver = false;
};
