// A whole refresh of the profile list: request, reply from the practice tracker, records, rows, paint.

#include "Painting.h"
#include "QuietDesk.h"
#include "TrackerThread.h"
#include "app/qrvrcProgress.h"
#include "base/Bounds.h"
#include "profiles/list/ProfileRecord.h"
#include "profiles/list/qrvrcProfilesList.h"
#include "ui/Grid.h"

#include <benchmark/benchmark.h>

#include <QEventLoop>
#include <QHostAddress>

#include <array>
#include <memory>

namespace {

constexpr int profiles = 50;

/// What a refresh does to the windows.
class WindowEvents : public QObject
{
public:
    explicit WindowEvents(qrvrcMain& frame) : m_frame(frame) { qApp->installEventFilter(this); }

    int framePaints = 0;    ///< of the frame's own surface
    int passes = 0;         ///< times that something of the frame was brought to the screen
    int progressShown = 0;  ///< times that the progress window came up
    int windowsCreated = 0; ///< native windows that were made

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        const bool isFrame = watched == &m_frame;
        framePaints += isFrame && event->type() == QEvent::Paint ? 1 : 0;
        passes += isFrame && event->type() == QEvent::UpdateRequest ? 1 : 0;
        progressShown += event->type() == QEvent::Show && qobject_cast<qrvrcProgress*>(watched) ? 1 : 0;
        windowsCreated += event->type() == QEvent::PlatformSurface ? 1 : 0;
        return false;
    }

private:
    qrvrcMain& m_frame;
};

/// The client, logged in and with its profile list in front.
class LoggedInDesk : public QuietDesk
{
public:
    explicit LoggedInDesk(quint16 port)
    {
        ClientCore& core = frame->core();
        const std::filesystem::path store = core.folder.path("\\profiles.ini");
        core.store.WriteIniKey("bench", "Host", "127.0.0.1", store);
        core.store.WriteIniKey("bench", "Port", std::to_string(port), store);
        core.store.WriteIniKey("bench", "User", "admin", store);
        core.store.WriteIniKey("bench", "Pass", "admin", store);
        settle();
        frame->connectProfile(QStringLiteral("bench"));
        while (!list() || list()->rowCount() != profiles)
            QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
        settle();
    }

    qrvrcProfilesList* list() const { return frame->findChild<qrvrcProfilesList*>(); }
};

void refreshOurs(benchmark::State& state)
{
    const TrackerThread tracker(practice::World::many(profiles));
    const LoggedInDesk desk(tracker.port());
    PaintCounter grid(desk.list()->findChild<GridView*>()->viewport());
    const auto* progress = desk.frame->findChild<qrvrcProgress*>();
    const WindowEvents events(*desk.frame);
    int gridPaints = 0;
    for ([[maybe_unused]] const auto step : state) {
        grid.reset();
        desk.list()->FormReload();
        const int beforeReturn = grid.paints();
        grid.reset();
        grid.waitForPaint();
        gridPaints += beforeReturn + grid.paints();
    }
    const bool keepsProgress =
        desk.frame->findChildren<qrvrcProgress*>().size() == 1 && desk.frame->findChild<qrvrcProgress*>() == progress;
    if (!keepsProgress || desk.list()->rowCount() != profiles)
        state.SkipWithError("the refresh did not do what it should");
    const auto mean = [&state](int count) {
        return static_cast<double>(count) / static_cast<double>(state.iterations());
    };
    state.counters["grid_paints"] = mean(gridPaints);
    state.counters["frame_paints"] = mean(events.framePaints);
    state.counters["passes"] = mean(events.passes);
    state.counters["progress_shown"] = mean(events.progressShown);
    state.counters["windows_created"] = mean(events.windowsCreated);
}

/// The same with nothing around it: a socket with a nested loop, the records, a grid that stands alone.
class BareClient
{
public:
    explicit BareClient(quint16 port)
    {
        static constexpr std::array<GridColumn, 9> columns{{{"", Twips{400}},
                                                            {"Name", Twips{1600}},
                                                            {"", Twips{350}},
                                                            {"Players", Twips{700}},
                                                            {"Map", Twips{2700}},
                                                            {"Type", Twips{850}},
                                                            {"Timer", Twips{800}},
                                                            {"Status", Twips{2500}},
                                                            {"", Twips{300}}}};
        m_view.setColumns(columns);
        m_view.setFixedSize(720, 300);
        m_view.show();
        QObject::connect(&m_socket, &QTcpSocket::readyRead, &m_loop, [this] {
            m_reply += m_socket.readAll();
            if (m_reply.endsWith("[ND]"))
                m_loop.quit();
        });
        m_socket.connectToHost(QHostAddress::LocalHost, port);
        if (!m_socket.waitForConnected())
            qFatal("the tracker cannot be reached");
        m_socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
        ask("[ST]login_admin_admin_3.0.1.0_VB6_[ND]");
        const practice::World world = practice::World::many(1);
        m_request = "[ST]GetProfiles_admin_" + world.pictures.keys().join('|').toBase64() + "_VB6_[ND]";
    }

    int refresh()
    {
        ask(m_request);
        const std::string_view reply(m_reply.constData(), static_cast<std::size_t>(m_reply.size()));
        std::vector<GridRow> rows;
        for (const ProfileElement& element : splitProfilesReply(reply, Bounds().listRows).profiles) {
            const ProfileRecord record = decodeProfileRecord(element.text);
            GridRow row;
            for (const std::string* text : {&record.id, &record.name, &record.modPicture, &record.players, &record.map,
                                            &record.gameType, &record.timer, &record.statusText})
                row.cells.push_back(QString::fromLatin1(text->data(), static_cast<qsizetype>(text->size())));
            rows.push_back(std::move(row));
        }
        m_counter.reset();
        m_view.rows().setRows(std::move(rows));
        m_counter.waitForPaint();
        return m_view.rows().rowCount();
    }

private:
    void ask(const QByteArray& request)
    {
        m_reply.clear();
        m_socket.write(request);
        m_loop.exec();
    }

    QTcpSocket m_socket;
    QEventLoop m_loop;
    QByteArray m_reply;
    QByteArray m_request;
    GridView m_view{QStringLiteral("grid"), nullptr};
    PaintCounter m_counter{m_view.viewport()};
};

void refreshBare(benchmark::State& state)
{
    const TrackerThread tracker(practice::World::many(profiles));
    BareClient client(tracker.port());
    int rows = profiles;
    for ([[maybe_unused]] const auto step : state)
        rows = client.refresh();
    if (rows != profiles)
        state.SkipWithError("the grid does not show its profiles");
}

BENCHMARK(refreshOurs)->Name("refresh of 50 profiles: ours")->UseRealTime()->Unit(benchmark::kMicrosecond);
BENCHMARK(refreshBare)->Name("refresh of 50 profiles: bare")->UseRealTime()->Unit(benchmark::kMicrosecond);

} // namespace
