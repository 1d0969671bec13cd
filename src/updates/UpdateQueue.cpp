#include "updates/UpdateQueue.h"

#include "base/Bounds.h"
#include "base/Text.h"
#include "platform/net/Download.h"
#include "platform/net/Inet.h"
#include "platform/system/ExecutableFile.h"
#include "platform/system/FileBytes.h"
#include "platform/system/PathBytes.h"
#include "updates/InstallUpdates.h"
#include "updates/Sha256.h"
#include "updates/UpdateState.h"
#include "updates/UpdateTargets.h"

#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace fs = std::filesystem;

namespace {

/// Where a file is gathered: hidden, and beside the place that it is for, so that it can be moved there at once.
fs::path partName(const fs::path& folder, const std::string& name)
{
    constexpr std::size_t takenOver = 64;
    const fs::path::string_type begin = pathOfBytes(name).native().substr(0, takenOver);
    return folder / fs::path(".").concat(begin).concat(".download");
}

QString meaningOf(const Download& download, std::chrono::milliseconds silence)
{
    switch (download.outcome()) {
    case DownloadEnd::Whole:
        return {};
    case DownloadEnd::NoAnswer:
        return u"the update location did not answer"_s;
    case DownloadEnd::ErrorPage:
        return u"the update location answered with error %1"_s.arg(download.status());
    case DownloadEnd::NoLength:
        return u"the update location did not tell the file's length"_s;
    case DownloadEnd::OtherLength:
        return u"its length, %1 bytes, is not the one in the update list"_s.arg(download.announced());
    case DownloadEnd::TooLong:
        return u"it is longer than %1 MiB"_s.arg(Bounds{}.downloadBytes / Bounds::mebibyte);
    case DownloadEnd::CutOff:
        return u"the transfer broke off"_s;
    case DownloadEnd::Silent:
        return u"nothing came for %1 seconds"_s.arg(std::chrono::ceil<std::chrono::seconds>(silence).count());
    case DownloadEnd::Cancelled:
        return u"cancelled"_s;
    case DownloadEnd::NotWritable:
    case DownloadEnd::DiskFailed:
        return download.diskFault();
    }
    return {};
}

QString meaningOf(const RuntimeError& error)
{
    return QString::fromLocal8Bit(error.description().c_str());
}

/// On systems where it takes a right of its own to be run, a program that replaces none gets it.
void makeRunnable(const fs::path& file, const std::string& name)
{
    if (!lowerAscii(name).ends_with(".exe"))
        return;
    std::error_code ignored; // it can still be given by hand
    fs::permissions(file, fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec, fs::perm_options::add,
                    ignored);
}

} // namespace

UpdateQueue::UpdateQueue(const UpdateServices& services, ListKind kind, QString location, std::vector<WantedFile> items,
                         QObject* parent)
    : QObject(parent),
      m_services(services),
      m_atWork(services.downloads),
      m_kind(kind),
      m_location(std::move(location)),
      m_items(std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()))
{}

UpdateQueue::~UpdateQueue() = default;

void UpdateQueue::start()
{
    next();
}

void UpdateQueue::next()
{
    if (m_items.empty())
        return end();
    GetFilesObtain();
}

void UpdateQueue::GetFilesObtain()
{
    const WantedFile& item = m_items.front();
    Q_EMIT fetching(item.name, static_cast<int>(m_items.size()) - 1);
    const auto failAndGoOn = [this](const QString& why) {
        fail(why);
        QTimer::singleShot(0, this, &UpdateQueue::next);
    };
    try {
        const std::optional<fs::path> target = m_services.targets.pathOf(item.name, item.folder, m_kind);
        if (!target)
            return failAndGoOn(u"this system has no such folder"_s);
        m_target = *target;
        const AppFolder& folder = m_services.targets.folder();
        if (openDownload(m_target.parent_path()))
            return;
        folder.makeFolder(updatesFolder); // the only other place where it can be gathered
        if (!openDownload(folder.path(updatesFolder)))
            failAndGoOn(meaningOf(*m_download, m_services.silenceLimit));
    } catch (const RuntimeError& error) {
        failAndGoOn(meaningOf(error));
    }
}

bool UpdateQueue::openDownload(const fs::path& folder)
{
    const WantedFile& item = m_items.front();
    m_part = partName(folder, item.name);
    m_received = 0;
    // What waits is looked at again before it is installed.
    m_sum = !item.digest.empty() || mustWait() ? std::make_unique<Sha256>() : nullptr;
    Download::Listener listener;
    if (m_sum)
        listener = [this](std::string_view bytes) { m_sum->add(bytes); };
    const Download::Limits limits{.silence = m_services.silenceLimit,
                                  .maxBytes = static_cast<qint64>(Bounds{}.downloadBytes),
                                  .exactBytes = item.size};
    m_download = std::make_unique<Download>(m_services.inet, addressAt(m_location, m_kind, requestedName(item.name)),
                                            m_part, limits, std::move(listener));
    if (!m_download->isExecuting())
        return false;
    connect(m_download.get(), &Download::progress, this,
            [this](qint64 bytes) { Q_EMIT received(bytes - std::exchange(m_received, bytes)); });
    connect(m_download.get(), &Download::finished, this, &UpdateQueue::conclude);
    return true;
}

void UpdateQueue::conclude()
{
    const WantedFile& item = m_items.front();
    const bool isWhole = m_download->outcome() == DownloadEnd::Whole;
    const std::string digest = isWhole && m_sum ? m_sum->digits() : std::string();
    QString fault;
    if (!isWhole)
        fault = meaningOf(*m_download, m_services.silenceLimit);
    else if (item.digest.empty() && m_services.key)
        fault = u"nothing proves it, and an update key is set"_s;
    else if (!item.digest.empty() && item.digest != digest)
        fault = u"its checksum is not the one that the update location has signed"_s;
    else if (!mayReplace(m_part, m_services.targets.existingPathOf(item.name, item.folder, m_kind).value_or(m_target)))
        fault = u"it is no program for this system"_s;
    if (fault.isEmpty())
        return put(digest);
    dropPart(fault);
    goOn();
}

void UpdateQueue::goOn()
{
    if (m_isCancelled)
        end();
    else
        QTimer::singleShot(0, this, &UpdateQueue::next); // the transfer may still be on the way out of its own signal
}

void UpdateQueue::dropPart(const QString& why)
{
    std::error_code ignored;
    fs::remove(m_part, ignored);
    fail(why);
}

bool UpdateQueue::mustWait() const
{
    return m_part.parent_path() != m_target.parent_path() || (m_services.isInUse && m_services.isInUse(m_target)) ||
           m_services.targets.isProgram(m_target);
}

void UpdateQueue::put(const std::string& digest)
{
    const WantedFile& item = m_items.front();
    const AppFolder& folder = m_services.targets.folder();
    std::error_code fault;
    if (!fs::exists(m_target, fault))
        makeRunnable(m_part, item.name);
    Move move{.folder = folder,
              .file = {item.name, item.folder},
              .part = m_part,
              .target = mustWait() ? std::nullopt : std::optional(m_target),
              .kept = {},
              .digest = digest};
    try {
        UpdateState(folder).noteHandOver(UpdateState::HandOver::None); // a set that has failed before may do now
        if (move.target)
            move.kept = placeToKeep(folder, m_target, move.file);
    } catch (const RuntimeError&) {
        move.target.reset(); // it waits, whatever the reason
    }
    m_moving.start([move = std::move(move)] { return moved(move); }, [this](const Moved& how) { concludeMove(how); });
}

/// Everything that takes longer the longer the file is: it is on the disk when it has its new name, and may have to be
/// copied or read for that.
UpdateQueue::Moved UpdateQueue::moved(const Move& move)
{
    Moved how{.part = move.part, .digest = move.digest, .fault = {}};
    try {
        if (move.kept)
            keepFile(*move.target, *move.kept);
        if (move.target) {
            moveFile(move.part, *move.target);
            how.isPlaced = true;
            return how;
        }
    } catch (const RuntimeError&) {
        how.isPlaced = false; // it waits, whatever the reason
    }
    try {
        if (how.digest.empty())
            how.digest = sha256Of(move.part);
        if (how.digest.empty())
            throw RuntimeError(ErrorNumber::DeviceInputOutput, move.file.name);
        move.folder.makeFolder(updatesFolder);
        const fs::path beside = partName(move.folder.path(updatesFolder), move.file.name);
        if (beside != move.part)
            moveFile(move.part, beside);
        how.part = beside;
    } catch (const RuntimeError& error) {
        how.fault = error;
    }
    return how;
}

void UpdateQueue::concludeMove(const Moved& how)
{
    m_part = how.part;
    try {
        if (how.fault)
            throw RuntimeError(*how.fault);
        if (!how.isPlaced)
            divertPart(how.digest);
        m_results.push_back(
            {m_items.front().name, how.isPlaced ? ObtainedFile::How::Placed : ObtainedFile::How::Diverted});
        m_items.pop_front();
    } catch (const RuntimeError& error) {
        dropPart(meaningOf(error));
    }
    goOn();
}

void UpdateQueue::divertPart(const std::string& digest) const
{
    const AppFolder& folder = m_services.targets.folder();
    const WaitingFile file{m_items.front().name, m_items.front().folder};
    if (waitsForAnotherFolder(folder, file))
        throw RuntimeError(ErrorNumber::FileAlreadyExists, "another file of this name waits to be installed");
    UpdateState(folder).noteDigest(file.name, digest);
    divert(folder, m_part, file);
}

void UpdateQueue::fail(const QString& why)
{
    m_results.push_back({m_items.front().name, ObtainedFile::How::Failed, why});
    m_items.pop_front();
    // A folder that was only made for this file says that something waits.
    std::error_code notEmpty;
    fs::remove(m_services.targets.folder().path(updatesFolder), notEmpty);
}

void UpdateQueue::cancel()
{
    if (m_isOver)
        return;
    m_isCancelled = true;
    if (m_download && m_download->isExecuting())
        m_download->cancel();        // goes on in conclude()
    else if (!m_moving.isUnderWay()) // which ends it
        end();
}

void UpdateQueue::end()
{
    if (std::exchange(m_isOver, true))
        return;
    m_items.clear();
    Q_EMIT finished();
}
