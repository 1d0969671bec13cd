#include "updates/ListCheck.h"

#include "base/RuntimeError.h"
#include "platform/net/Inet.h"
#include "updates/DiskFacts.h"

#include <QElapsedTimer>
#include <QTimer>

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
      m_order(order),
      m_location(services.location),
      m_facts(diskFacts(services.targets, order.kind, services.clientVersion, order.helpVersionIn))
{
    const QUrl url = addressAt(m_location, order.kind, order.list);
    if (url.isEmpty()) {
        QTimer::singleShot(0, this, &ListCheck::end);
        return;
    }
    m_page = services.inet.get(url, limit);
    connect(m_page.get(), &PageFetch::finished, this, [this] {
        const PageAnswer& answer = m_page->answer();
        take(answer.isGood() && answer.isWhole ? answer.body.toStdString() : std::string());
    });
}

ListCheck::~ListCheck() = default;

void ListCheck::cancel()
{
    if (m_page && m_page->isExecuting())
        m_page->cancel(); // goes on in take()
    else
        end();
}

void ListCheck::take(const std::string& text)
{
    m_hasList = isUpdateList(text, m_order.kind);
    if (m_hasList)
        m_records = parseUpdateList(text);
    judgeSome();
}

void ListCheck::judgeSome()
{
    QElapsedTimer turn;
    turn.start();
    while (!m_isOver && m_next < m_records.size()) {
        if (turn.hasExpired(turnMilliseconds)) {
            QTimer::singleShot(0, this, &ListCheck::judgeSome);
            return;
        }
        try {
            m_candidates.take(m_records[m_next++], m_facts, m_order.rule);
        } catch (const RuntimeError&) {
            continue; // a file that cannot be looked at is none that could be replaced
        }
        if (m_order.stopsAtFirst && !m_candidates.isEmpty())
            break;
    }
    end();
}

void ListCheck::end()
{
    if (!std::exchange(m_isOver, true))
        Q_EMIT finished();
}
