#pragma once

#include "updates/UpdateServices.h"
#include "updates/UpdatesIni.h"

#include <QObject>

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class Download;
class PageFetch;

/// What became of one file of a queue.
struct ObtainedFile
{
    enum class How {
        Placed,   ///< where it belongs
        Diverted, ///< waits for the updater
        Failed,   ///< the old file, if any, is as it was
    };

    std::string name;
    How how = How::Failed;
    QString why = {}; ///< for Failed
};

/// Downloads files one after the other, and puts each where it belongs or where it waits for that. A file that fails
/// does not stop those behind it. Deleting the queue stops it where it is.
class UpdateQueue : public QObject
{
    Q_OBJECT

public:
    /// @param services  outlives this
    /// @param location  the update location that the list came from
    UpdateQueue(const UpdateServices& services, ListKind kind, QString location, std::vector<WaitingFile> items,
                QObject* parent = nullptr);
    ~UpdateQueue() override;

    void start();
    /// Breaks the transfer off that is under way, and leaves the rest.
    void cancel();
    bool isCancelled() const { return m_isCancelled; }
    const std::vector<ObtainedFile>& results() const { return m_results; }

Q_SIGNALS:
    /// So many bytes more have arrived.
    void received(qint64 bytes);
    /// Once, from the event loop or from cancel().
    void finished();

private:
    void fetchSums();
    void takeSums();
    void next();
    void GetFilesObtain();
    bool openDownload(const std::filesystem::path& folder);
    void conclude();
    void put();
    void fail(const QString& why);
    void end();

    const UpdateServices& m_services;
    ListKind m_kind;
    QString m_location;
    std::deque<WaitingFile> m_items; ///< the first one is under way
    std::vector<ObtainedFile> m_results;

    std::unique_ptr<PageFetch> m_sumsPage;
    std::unique_ptr<PageFetch> m_signaturePage;
    std::optional<FileSums> m_sums;
    std::unique_ptr<Sha256> m_sum; ///< of the file under way

    std::filesystem::path m_target;
    std::filesystem::path m_part; ///< what has arrived of it
    std::unique_ptr<Download> m_download;
    qint64 m_received = 0; ///< of the file under way
    bool m_isCancelled = false;
    bool m_isOver = false;
};
