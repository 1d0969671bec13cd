// How long the window cannot answer while the first list of profiles comes to a folder that knows none of them, and
// behind it, while their folders and pictures are made. Prints one JSON object of milliseconds.
//
//   ListStall [PROFILES]     10,000 unless told otherwise

#include "OffscreenApplication.h"
#include "StallProbe.h"
#include "TrackerThread.h"
#include "base/Bounds.h"

#include <QElapsedTimer>

#include <cstdio>
#include <cstdlib>
#include <iterator>

namespace {

std::size_t foldersIn(const std::filesystem::path& folder)
{
    std::error_code missing;
    return static_cast<std::size_t>(std::distance(std::filesystem::directory_iterator(folder, missing), {}));
}

int measure(int profiles)
{
    const TrackerThread host(practice::World::many(profiles, 1));
    QuietDesk desk;
    Heartbeat heart;
    QElapsedTimer waiting;
    const auto rest = [&waiting](qint64 milliseconds) {
        waiting.start();
        runUntil([&] { return waiting.elapsed() > milliseconds; });
    };
    saveConnection(desk, host.port());
    rest(500);
    heart.greatest(); // the window itself is not what is measured
    logIn(desk);
    rest(100);
    const Heartbeat::Gap first = heart.greatest();
    const std::size_t wanted = std::min(Bounds().profileFolders, static_cast<std::size_t>(profiles));
    Heartbeat::Gap behind;
    do {
        rest(2000);
        const Heartbeat::Gap gap = heart.greatest();
        behind = {std::max(behind.whole, gap.whole), std::max(behind.busy, gap.busy)};
    } while (foldersIn(QuietDesk::folder() / "profiles") < wanted && (heart.greatest(), true));
    std::printf("{\"first\": %.1f, \"first_busy\": %.1f, \"behind\": %.1f, \"behind_busy\": %.1f}\n", first.whole,
                first.busy, behind.whole, behind.busy);
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char** argv)
{
    const OffscreenApplication application(argc, argv);
    const int profiles = argc > 1 ? std::atoi(argv[1]) : 10000;
    return measure(std::clamp(profiles, 1, 100000));
}
