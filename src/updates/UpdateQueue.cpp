#include "updates/UpdateQueue.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/net/Download.h"
#include "platform/net/Inet.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "updates/UpdateTargets.h"

#include <QTimer>

#include <utility>

using namespace Qt::StringLiterals;

namespace fs = std::filesystem;

namespace {

constexpr int notThere = 404;
constexpr int gone = 410;

/// Where a file is gathered: hidden, and beside the place that it is for, so that it can be moved there at once.
fs::path partName(const fs::path& folder, const std::string& name)
{
    constexpr std::size_t takenOver = 64;
    return folder / ('.' + name.substr(0, takenOver) + ".download");
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

UpdateQueue::UpdateQueue(const UpdateServices& services, ListKind kind, QString location,
                         std::vector<WaitingFile> items, QObject* parent)
    : QObject(parent),
      m_services(services),
      m_kind(kind),
      m_location(std::move(location)),
      m_items(std::make_move_iterator(items.begin()), std::make_move_iterator(items.end()))
{}

UpdateQueue::~UpdateQueue() = default;

void UpdateQueue::start()
{
    if (m_services.key)
        fetchSums();
    else
        next();
}

void UpdateQueue::fetchSums()
{
    m_sumsPage = m_services.inet.get(addressAt(m_location, m_kind, FileSums::listName), m_services.listLimit);
    m_signaturePage = m_services.inet.get(addressAt(m_location, m_kind, FileSums::signatureName), m_services.listLimit);
    for (const PageFetch* page : {m_sumsPage.get(), m_signaturePage.get()})
        connect(page, &PageFetch::finished, this, &UpdateQueue::takeSums);
}

void UpdateQueue::takeSums()
{
    if (m_isOver || m_sumsPage->isExecuting() || m_signaturePage->isExecuting())
        return;
    const PageAnswer& sums = m_sumsPage->answer();
    const PageAnswer& signature = m_signaturePage->answer();
    if (sums.status == notThere || sums.status == gone)
        return next(); // a location that offers no checksums
    const bool isGenuine = sums.isGood() && sums.isWhole && signature.isGood() && signature.isWhole &&
                           m_services.key->hasSigned(sums.body.toStdString(), signature.body.toStdString());
    if (isGenuine) {
        m_sums.emplace(sums.body.toStdString());
        return next();
    }
    while (!m_items.empty())
        fail(u"the checksums of the update location are not signed with the key that is set in the options"_s);
    end();
}

void UpdateQueue::next()
{
    if (m_items.empty())
        return end();
    GetFilesObtain();
}

void UpdateQueue::GetFilesObtain()
{
    const WaitingFile& item = m_items.front();
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
    const WaitingFile& item = m_items.front();
    m_part = partName(folder, item.name);
    m_received = 0;
    m_sum = m_sums ? std::make_unique<Sha256>() : nullptr;
    Download::Listener listener;
    if (m_sum)
        listener = [this](std::string_view bytes) { m_sum->add(bytes); };
    m_download = std::make_unique<Download>(m_services.inet, addressAt(m_location, m_kind, requestedName(item.name)),
                                            m_part, m_services.silenceLimit, std::move(listener));
    if (!m_download->isExecuting())
        return false;
    connect(m_download.get(), &Download::progress, this,
            [this](qint64 bytes) { Q_EMIT received(bytes - std::exchange(m_received, bytes)); });
    connect(m_download.get(), &Download::finished, this, &UpdateQueue::conclude);
    return true;
}

void UpdateQueue::conclude()
{
    if (m_download->outcome() != DownloadEnd::Whole)
        fail(meaningOf(*m_download, m_services.silenceLimit));
    else if (m_sum && !m_sums->matches(m_items.front().name, m_sum->digits())) {
        std::error_code ignored;
        fs::remove(m_part, ignored);
        fail(u"its checksum is not the one that the update location has signed"_s);
    } else
        put();
    if (m_isCancelled)
        end();
    else
        QTimer::singleShot(0, this, &UpdateQueue::next); // the transfer is still on the way out of its own signal
}

void UpdateQueue::put()
{
    const WaitingFile item = m_items.front();
    const AppFolder& folder = m_services.targets.folder();
    const bool waits = m_part.parent_path() != m_target.parent_path() ||
                       (m_services.isInUse && m_services.isInUse(m_target)) || m_services.targets.isProgram(m_target);
    std::error_code fault;
    if (!fs::exists(m_target, fault))
        makeRunnable(m_part, item.name);
    bool isPlaced = false;
    try {
        if (!waits) {
            moveFile(m_part, m_target);
            isPlaced = true;
        }
    } catch (const RuntimeError&) {
        isPlaced = false; // it waits, whatever the reason
    }
    try {
        if (!isPlaced)
            divert(folder, m_part, item);
    } catch (const RuntimeError& error) {
        fs::remove(m_part, fault);
        return fail(meaningOf(error));
    }
    m_items.pop_front();
    m_results.push_back({item.name, isPlaced ? ObtainedFile::How::Placed : ObtainedFile::How::Diverted});
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
        m_download->cancel(); // goes on in conclude()
    else
        end();
}

void UpdateQueue::end()
{
    if (std::exchange(m_isOver, true))
        return;
    m_items.clear();
    Q_EMIT finished();
}
