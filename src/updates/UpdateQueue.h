#pragma once

#include "base/RuntimeError.h"
#include "platform/system/Background.h"
#include "store/AppFolder.h"
#include "updates/UpdateServices.h"
#include "updates/UpdatesIni.h"

#include <QObject>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

class Download;
class Sha256;

/// A file that is to be downloaded.
struct WantedFile
{
    std::string name;
    std::string folder;      ///< as in the list
    std::int64_t size = 0;   ///< bytes; 0 when the list gives none
    std::string digest = {}; ///< what it must hold, 64 hexadecimal digits; empty where nothing is proven
};

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
    UpdateQueue(const UpdateServices& services, ListKind kind, QString location, std::vector<WantedFile> items,
                QObject* parent = nullptr);
    ~UpdateQueue() override;

    void start();
    /// Breaks the transfer off that is under way, and leaves the rest.
    void cancel();
    bool isCancelled() const { return m_isCancelled; }
    const std::vector<ObtainedFile>& results() const { return m_results; }

Q_SIGNALS:
    /// The next file's turn has come.
    /// @param left  how many files come behind it
    void fetching(const std::string& name, int left);
    /// So many bytes more have arrived.
    void received(qint64 bytes);
    /// Once, from the event loop or from cancel().
    void finished();

private:
    /// What another thread does with a file that has arrived. Owns all that it says.
    struct Move
    {
        AppFolder folder;
        WaitingFile file;
        std::filesystem::path part;
        std::optional<std::filesystem::path> target; ///< nothing when it must wait
        std::optional<std::filesystem::path> kept;   ///< where the target is kept before it is replaced
        std::string digest;                          ///< of the part; empty when it is not known
    };
    /// What came of it.
    struct Moved
    {
        bool isPlaced = false;
        std::filesystem::path part; ///< where it lies otherwise
        std::string digest;
        std::optional<RuntimeError> fault;
    };

    void next();
    void GetFilesObtain();
    bool openDownload(const std::filesystem::path& folder);
    void conclude();
    void goOn();
    bool mustWait() const;
    void put(const std::string& digest);
    static Moved moved(const Move& move);
    void concludeMove(const Moved& how);
    void dropPart(const QString& why);
    void divertPart(const std::string& digest) const;
    void fail(const QString& why);
    void end();

    const UpdateServices& m_services;
    std::shared_ptr<const int> m_atWork;
    ListKind m_kind;
    QString m_location;
    std::deque<WantedFile> m_items; ///< the first one is under way
    std::vector<ObtainedFile> m_results;

    std::unique_ptr<Sha256> m_sum; ///< of the file under way, where it is needed

    std::filesystem::path m_target;
    std::filesystem::path m_part; ///< what has arrived of it
    std::unique_ptr<Download> m_download;
    qint64 m_received = 0; ///< of the file under way
    NewestWork<Moved> m_moving;
    bool m_isCancelled = false;
    bool m_isOver = false;
};
