// How long the window cannot answer while a large log is fetched from the practice tracker, expanded, shown, walked
// through and searched. Prints one JSON object: greatest gaps of a 5 ms heartbeat in milliseconds, and memory in MiB.
//
//   FileStall [MIB]     64 unless told otherwise

#include "OffscreenApplication.h"
#include "StallProbe.h"
#include "TrackerThread.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextFinder.h"
#include "profiles/viewer/TextPane.h"
#include "profiles/viewer/qrvrcNotePad.h"
#include "ui/Grid.h"

#include <QAbstractButton>
#include <QClipboard>
#include <QComboBox>
#include <QDateEdit>
#include <QElapsedTimer>
#include <QFile>
#include <QPlainTextEdit>
#include <QTimer>

#include <cstdio>
#include <cstdlib>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

practice::World worldWithLog(int mebibytes)
{
    practice::World world = practice::World::small();
    world.addBigLog(mebibytes);
    return world;
}

int measure(int mebibytes)
{
    const TrackerThread host(worldWithLog(mebibytes));
    QuietDesk desk;
    ClientCore& core = desk.frame->core();
    saveConnection(desk, host.port());
    QCoreApplication::processEvents();
    logIn(desk);
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
    const double resting = heart.greatest().whole;
    const double before = mebibytesOf("VmRSS");

    bool isReceived = false;
    QObject::connect(&core.link, &clsWinSock::replyHandled, &heart, [&] { isReceived = true; });
    grid->selectRow(1);
    Q_EMIT grid->rowOpened(1);
    runUntil([&] { return isReceived; });
    const double fetching = heart.greatest().whole;
    const auto size = static_cast<std::size_t>(mebibytes) << 20;
    QElapsedTimer expanding;
    expanding.start();
    runUntil([&] { return pane.text()->size() == size; });
    const qint64 expandTime = expanding.elapsed();
    idle.restart();
    runUntil([&] { return idle.elapsed() > 100; });
    const double showing = heart.greatest().whole;
    const double after = mebibytesOf("VmRSS");

    for (int step = 0; step < 200; ++step) {
        pane.select(size / 200 * static_cast<std::size_t>(step), size / 200 * static_cast<std::size_t>(step));
        QCoreApplication::processEvents();
    }
    const double walking = heart.greatest().whole;
    TextFinder finder(core.codePage, nullptr);
    bool isOver = false;
    QObject::connect(&finder, &TextFinder::notFound, &heart, [&] { isOver = true; });
    QElapsedTimer searching;
    searching.start();
    finder.start(pane.text(), "no such line", 0, TextFinder::Way::Forward);
    runUntil([&] { return isOver; });
    const qint64 searchTime = searching.elapsed();
    const double finding = heart.greatest().whole;
    pane.selectAll();
    pane.copy();
    const double copying = heart.greatest().whole;
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
    std::printf("{\"resting\": %.1f, \"fetching\": %.1f, \"showing\": %.1f, \"walking\": %.1f, \"finding\": %.1f, "
                "\"copying\": %.1f, \"expand_time\": %lld, \"search_time\": %lld, \"grown_mib\": %.0f, "
                "\"peak_mib\": %.0f, \"edit_time\": %lld, \"edit_grown_mib\": %.0f}\n",
                resting, fetching, showing, walking, finding, copying, static_cast<long long>(expandTime),
                static_cast<long long>(searchTime), after - before, peak, static_cast<long long>(editTime), editGrown);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const OffscreenApplication application(argc, argv);
    const int mebibytes = argc > 1 ? std::atoi(argv[1]) : 64;
    return measure(std::clamp(mebibytes, 2, 255));
}
