#include "updates/ListCheck.h"

#include "base/Bounds.h"
#include "base/RuntimeError.h"
#include "platform/net/Inet.h"
#include "updates/DiskFacts.h"
#include "updates/ManifestFetch.h"

#include <QElapsedTimer>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace Qt::StringLiterals;

namespace {

constexpr qint64 turnMilliseconds = 8; // for judging; the files are read for their versions

} // namespace

const CheckOrder clientCheck{.list = "qrvv3rc_filelist.txt",
                             .kind = ListKind::Client,
                             .rule = CheckRule::Client,
                             .helpVersionIn = helpVersionFile,
                             .stopsAtFirst = false};
const CheckOrder clientCheckByClock{.list = "qrvv3_filelist.txt",
                                    .kind = ListKind::Client,
                                    .rule = CheckRule::Client,
                                    .helpVersionIn = helpVersionFileByClock,
                                    .stopsAtFirst = true};
const CheckOrder pluginCheck{.list = "qrvv3rc_pluginlist.txt",
                             .kind = ListKind::Plugins,
                             .rule = CheckRule::Plugins,
                             .helpVersionIn = helpVersionFile,
                             .stopsAtFirst = false};
const CheckOrder pluginCheckByClock{.list = "qrvv3_pluginlist.txt",
                                    .kind = ListKind::Plugins,
                                    .rule = CheckRule::PluginsByClock,
                                    .helpVersionIn = helpVersionFileByClock,
                                    .stopsAtFirst = true};

QUrl addressAt(const QString& location, ListKind kind, std::string_view name)
{
    // Only what an address could mistake for something else is written differently in it.
    const QByteArray encoded =
        QByteArray(name.data(), static_cast<qsizetype>(name.size())).toPercentEncoding("!$&'()*+,;=:@ ");
    const QUrl url(location + (kind == ListKind::Plugins ? u"plugins/"_s : QString()) + QString::fromLatin1(encoded));
    return isWebAddress(url) ? url : QUrl();
}

ListCheck::ListCheck(const UpdateServices& services, const CheckOrder& order, std::chrono::milliseconds limit,
                     QObject* parent)
    : QObject(parent),
      m_services(services),
      m_order(order),
      m_limit(limit),
      m_location(services.location),
      m_key(services.key),
      m_facts(diskFacts(services.targets, order.kind, services.clientVersion, order.helpVersionIn))
{
    fetch();
}

void ListCheck::fetch()
{
    if (m_isOver)
        return;
    const QUrl url = addressAt(m_location, m_order.kind, m_order.list);
    const bool isForeign = m_services.isPackaged && m_order.kind == ListKind::Client;
    if (url.isEmpty() || isForeign) {
        QTimer::singleShot(0, this, &ListCheck::end);
        return;
    }
    m_page = m_services.inet.get(url, m_limit);
    connect(m_page.get(), &PageFetch::finished, this, &ListCheck::take);
    if (m_key) {
        m_manifest = std::make_unique<ManifestFetch>(m_services, m_location, *m_key, m_limit);
        connect(m_manifest.get(), &ManifestFetch::finished, this, &ListCheck::take);
    }
}

ListCheck::~ListCheck() = default;

void ListCheck::cancel()
{
    if (m_isOver)
        return;
    m_isCancelled = true;
    m_manifest.reset();
    if (m_page && m_page->isExecuting())
        m_page->cancel(); // goes on in take()
    else
        end();
}

void ListCheck::take()
{
    if (m_page->isExecuting() || (m_manifest && !m_manifest->isOver()))
        return;
    if (!m_isCancelled)
        m_fault = judgeList();
    m_hasList = m_hasList && m_fault.isEmpty();
    if (m_hasList)
        judgeSome();
    else if (!fetchAgainIfMixed())
        end();
}

/// A new release may have come between the answers. Then they do not belong to each other, and all are asked for anew;
/// those that belong to each other no better the second time are refused.
bool ListCheck::fetchAgainIfMixed()
{
    const auto isUnproven = [](const RefusedFile& file) {
        return file.why == Refusal::NotSigned || file.why == Refusal::NotAsSigned;
    };
    const bool isMixed =
        m_manifest && (m_manifest->isMismatched() ||
                       std::any_of(m_candidates.refused.begin(), m_candidates.refused.end(), isUnproven));
    if (!isMixed || m_isCancelled || std::exchange(m_isSecondTime, true))
        return false;
    m_candidates = {};
    m_next = 0;
    QTimer::singleShot(0, this, &ListCheck::fetch); // what has answered is still on the way out of its own signal
    return true;
}

/// @return what speaks against a list that is there
QString ListCheck::judgeList()
{
    const PageAnswer& answer = m_page->answer();
    if (answer.isGood() && static_cast<std::size_t>(answer.body.size()) >= Bounds{}.updateListBytes)
        return u"The update list is longer than %1 KiB"_s.arg(Bounds{}.updateListBytes / Bounds::kibibyte);
    const std::string text = answer.isGood() && answer.isWhole ? answer.body.toStdString() : std::string();
    m_hasList = isUpdateList(text, m_order.kind);
    if (!m_hasList)
        return {};
    m_records = parseUpdateList(text);
    if (m_records.size() > Bounds{}.updateListRecords)
        return u"The update list names more than %1 files"_s.arg(Bounds{}.updateListRecords);
    return m_manifest ? m_manifest->fault() : QString();
}

void ListCheck::judgeSome()
{
    const UpdateManifest* manifest = m_manifest ? &*m_manifest->manifest() : nullptr;
    QElapsedTimer turn;
    turn.start();
    while (!m_isOver && m_next < m_records.size()) {
        if (turn.hasExpired(turnMilliseconds)) {
            QTimer::singleShot(0, this, &ListCheck::judgeSome);
            return;
        }
        try {
            m_candidates.take(m_records[m_next++], m_facts, m_order.rule, manifest);
        } catch (const RuntimeError&) {
            continue; // a file that cannot be looked at is none that could be replaced
        }
        if (m_order.stopsAtFirst && !m_candidates.isEmpty())
            break;
    }
    if (!fetchAgainIfMixed())
        end();
}

void ListCheck::end()
{
    if (!std::exchange(m_isOver, true))
        Q_EMIT finished();
}
