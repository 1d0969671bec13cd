// How long the window cannot answer while a large log is fetched from the practice tracker, expanded, shown, walked
// through and searched. Prints one JSON object: greatest gaps of a 5 ms heartbeat in milliseconds, and memory in MiB.
//
//   FileStall [MIB]     64 unless told otherwise

#include "Heartbeat.h"
#include "QuietDesk.h"
#include "TrackerThread.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextFinder.h"
#include "profiles/viewer/TextPane.h"
#include "profiles/viewer/qrvrcNotePad.h"
#include "ui/Grid.h"

#include <QAbstractButton>
#include <QApplication>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QPlainTextEdit>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;

namespace {

practice::World worldWithLog(int mebibytes)
{
    practice::World world = practice::World::small();
    world.addBigLog(mebibytes);
    return world;
}

void logIn(QuietDesk& desk, quint16 port)
{
    ClientCore& core = desk.frame->core();
    const std::filesystem::path store = core.folder.path("\\profiles.ini");
    core.store.WriteIniKey("bench", "Host", "127.0.0.1", store);
    core.store.WriteIniKey("bench", "Port", std::to_string(port), store);
    core.store.WriteIniKey("bench", "User", "admin", store);
    core.store.WriteIniKey("bench", "Pass", "admin", store);
    QCoreApplication::processEvents();
    desk.frame->connectProfile(u"bench"_s);
    runUntil([&] {
        const auto* list = desk.frame->findChild<GridView*>(u"fgProfiles"_s);
        return list && list->rows().rowCount() > 0 && !core.link.pending();
    });
}

int measure(int mebibytes)
{
    const TrackerThread host(worldWithLog(mebibytes));
    QuietDesk desk;
    ClientCore& core = desk.frame->core();
    logIn(desk, host.port());
    desk.frame->findChild<QTimer*>(u"tmrRefresh"_s)->stop();
    desk.frame->showWindowFor(u"qrvrcFileManager"_s, {.id = 1, .name = {}, .gameVersion = {}});
    QWidget* room = core.windows.window(u"qrvrcFileManager"_s);
    room->findChild<QComboBox*>(u"cboFileType"_s)->setCurrentText(u"Chat Logs"_s);
    for (const QString& picker : {u"dtpFrom"_s, u"dtpTo"_s})
        room->findChild<QDateEdit*>(picker)->setDate(QDate(2009, 11, 29));
    auto* grid = room->findChild<GridView*>(u"mfgFM"_s);
    room->findChild<QAbstractButton*>(u"cmdGetFiles"_s)->click();
    runUntil([&] { return grid->rows().rowCount() == 2; });

    auto& pad = *static_cast<qrvrcNotePad*>(core.windows.window(u"qrvrcNotePad"_s));
    auto& pane = *pad.findChild<TextPane*>(u"Text1"_s);
    pad.showText(u"Text Viewer"_s, u"text"_s); // the window itself is not what is measured
    QElapsedTimer idle;
    idle.start();
    Heartbeat heart;
    runUntil([&] { return idle.elapsed() > 500; });
    const qint64 resting = heart.greatest();
    const double before = mebibytesOf("VmRSS");

    bool isReceived = false;
    QObject::connect(&core.link, &clsWinSock::replyHandled, &heart, [&] { isReceived = true; });
    grid->selectRow(1);
    Q_EMIT grid->rowOpened(1);
    runUntil([&] { return isReceived; });
    const qint64 fetching = heart.greatest();
    const auto size = static_cast<std::size_t>(mebibytes) << 20;
    QElapsedTimer expanding;
    expanding.start();
    runUntil([&] { return pane.text()->size() == size; });
    const qint64 expandTime = expanding.elapsed();
    idle.restart();
    runUntil([&] { return idle.elapsed() > 100; });
    const qint64 showing = heart.greatest();
    const double after = mebibytesOf("VmRSS");

    for (int step = 0; step < 200; ++step) {
        pane.select(size / 200 * static_cast<std::size_t>(step), size / 200 * static_cast<std::size_t>(step));
        QCoreApplication::processEvents();
    }
    const qint64 walking = heart.greatest();
    TextFinder finder(core.codePage, nullptr);
    bool isOver = false;
    QObject::connect(&finder, &TextFinder::notFound, &heart, [&] { isOver = true; });
    QElapsedTimer searching;
    searching.start();
    finder.start(pane.text(), "no such line", 0, TextFinder::Way::Forward);
    runUntil([&] { return isOver; });
    const qint64 searchTime = searching.elapsed();
    const qint64 finding = heart.greatest();
    pane.selectAll();
    pane.copy();
    const qint64 copying = heart.greatest();
    QGuiApplication::clipboard()->clear();
    const double peak = mebibytesOf("VmHWM");

    // What the toolkit's own text edit makes of it, for comparison.
    const double beforeEdit = mebibytesOf("VmRSS");
    QPlainTextEdit edit;
    edit.setReadOnly(true);
    edit.setUndoRedoEnabled(false);
    edit.setLineWrapMode(QPlainTextEdit::NoWrap);
    edit.show();
    QElapsedTimer editing;
    editing.start();
    edit.setPlainText(core.codePage.toText(pane.text()->bytes()));
    const qint64 editTime = editing.elapsed();
    const double editGrown = mebibytesOf("VmRSS") - beforeEdit;
    std::printf("{\"resting\": %lld, \"fetching\": %lld, \"showing\": %lld, \"walking\": %lld, \"finding\": %lld, "
                "\"copying\": %lld, \"expand_time\": %lld, \"search_time\": %lld, \"grown_mib\": %.0f, "
                "\"peak_mib\": %.0f, \"edit_time\": %lld, \"edit_grown_mib\": %.0f}\n",
                static_cast<long long>(resting), static_cast<long long>(fetching), static_cast<long long>(showing),
                static_cast<long long>(walking), static_cast<long long>(finding), static_cast<long long>(copying),
                static_cast<long long>(expandTime), static_cast<long long>(searchTime), after - before, peak,
                static_cast<long long>(editTime), editGrown);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    const QApplication application(argc, argv);
    QApplication::setQuitOnLastWindowClosed(false);
    const int mebibytes = argc > 1 ? std::atoi(argv[1]) : 64;
    return measure(std::clamp(mebibytes, 2, 255));
}
