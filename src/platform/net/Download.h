#pragma once

#include <QFile>
#include <QObject>
#include <QTimer>
#include <QUrl>

#include <chrono>
#include <filesystem>
#include <functional>
#include <string_view>

class Inet;
class QNetworkReply;

/// How a transfer of a file ended.
enum class DownloadEnd {
    Whole,       ///< everything that was announced is in the file
    NoAnswer,    ///< no connection, or it broke before the answer had begun
    ErrorPage,   ///< the answer, at the end of all redirects, is no good one
    NoLength,    ///< the answer does not say how long it is
    OtherLength, ///< the answer announces another length than it was to have
    TooLong,     ///< the answer announces more than may come
    CutOff,      ///< fewer bytes came than were announced
    Silent,      ///< nothing came for too long
    Cancelled,   ///< by the user
    NotWritable, ///< the file cannot be made
    DiskFailed,  ///< the file cannot take what came
};

/// A file that is being transferred into a new file, step by step, so that its length does not count in memory.
/// Unless it arrives whole, nothing is left of it. Deleting this cancels the transfer; `finished` is not emitted then.
class Download : public QObject
{
    Q_OBJECT

public:
    /// Called with each step of the contents, in order.
    using Listener = std::function<void(std::string_view bytes)>;

    struct Limits
    {
        std::chrono::milliseconds silence; ///< how long nothing may come
        qint64 maxBytes;
        qint64 exactBytes = 0; ///< what must come, of which `maxBytes` says nothing then; 0 for any number
    };

    /// @param inet  outlives this
    /// @param file  made anew; what was there under that name is removed
    Download(Inet& inet, const QUrl& url, const std::filesystem::path& file, const Limits& limits,
             Listener listener = {});
    ~Download() override;

    void cancel() { end(DownloadEnd::Cancelled); }
    bool isExecuting() const { return m_reply != nullptr; }
    DownloadEnd outcome() const { return m_outcome; }
    /// HTTP status of the answer; 0 when there was none.
    int status() const { return m_status; }
    /// Bytes that the answer announced; 0 before that.
    qint64 announced() const { return m_announced; }
    /// Why the disk did not take it.
    QString diskFault() const { return m_file.errorString(); }

Q_SIGNALS:
    /// More has arrived; at most once in a turn of the event loop.
    void progress(qint64 received);
    /// The transfer is over, one way or the other; once, from the event loop or from cancel().
    void finished();

private:
    void readHead();
    void takeSteps();
    void conclude();
    void end(DownloadEnd how);

    QNetworkReply* m_reply = nullptr;
    QFile m_file;
    Limits m_limits;
    QTimer m_silence;
    Listener m_listener;
    qint64 m_announced = 0;
    qint64 m_received = 0;
    int m_status = 0;
    bool m_hasHead = false;
    DownloadEnd m_outcome = DownloadEnd::NoAnswer;
};
