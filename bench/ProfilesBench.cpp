// A "GetProfiles" reply on its way from the dispatcher to the screen.

#include "Painting.h"
#include "QuietDesk.h"
#include "base/Bounds.h"
#include "practice/answers/Answers.h"
#include "profiles/list/ProfileRecord.h"
#include "profiles/list/qrvrcProfilesList.h"
#include "ui/Grid.h"

#include <benchmark/benchmark.h>

#include <array>
#include <chrono>
#include <ctime>
#include <map>
#include <memory>
#include <string>

namespace {

/// The reply to a client that holds all pictures, which is every reply but the first. With time to pass between them
/// the replies differ as they do in life.
class Replies
{
public:
    explicit Replies(int profiles) : m_world(practice::World::many(profiles, 1))
    {
        m_first = bodyFor({});
        for (std::string& body : m_later) {
            body = bodyFor(m_world.pictures.keys().join('|').toBase64());
            m_world.advance(std::chrono::seconds(5));
        }
    }

    const std::string& first() const { return m_first; }
    const std::string& next() { return m_later[++m_turn % m_later.size()]; }

private:
    std::string bodyFor(const QByteArray& heldPictures)
    {
        const practice::Account who = *m_world.account("admin");
        const practice::Request request{"GetProfiles", "admin_" + heldPictures, {}};
        return practice::answerRequest(m_world, who, request).body.toStdString();
    }

    practice::World m_world;
    std::string m_first;
    std::array<std::string, 2> m_later;
    std::size_t m_turn = 0;
};

/// Made once for each number of profiles: a world of 10,000 takes longer to make than to show.
Replies& repliesFor(benchmark::State& state)
{
    static std::map<std::int64_t, std::unique_ptr<Replies>> known;
    std::unique_ptr<Replies>& replies = known[state.range(0)];
    if (!replies)
        replies = std::make_unique<Replies>(static_cast<int>(state.range(0)));
    return *replies;
}

class ShownList
{
public:
    ShownList()
    {
        m_desk.frame->showWindow(QStringLiteral("qrvrcProfilesList"));
        settle();
        m_list = m_desk.frame->findChild<qrvrcProfilesList*>();
        m_counter = std::make_unique<PaintCounter>(m_list->findChild<GridView*>()->viewport());
    }

    void handle(const std::string& body)
    {
        m_counter->reset();
        const auto owner = std::make_shared<const std::string>(body);
        ReplyDispatcher& replies = m_desk.frame->core().replies;
        replies.HandleData(*owner, owner, replies.handlerOf("GetProfiles"));
    }
    // Instructions are counted by this name, so it is not to be inlined.
    [[gnu::noinline]] void countedPaint() { m_counter->waitForPaint(); }
    int rows() const { return m_list->rowCount(); }

private:
    QuietDesk m_desk;
    qrvrcProfilesList* m_list = nullptr;
    std::unique_ptr<PaintCounter> m_counter;
};

double threadSeconds()
{
    timespec now{};
    clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
    return static_cast<double>(now.tv_sec) + static_cast<double>(now.tv_nsec) * 1e-9;
}

/// Reply to records alone.
void decodeProfiles(benchmark::State& state)
{
    Replies& replies = repliesFor(state);
    for ([[maybe_unused]] const auto step : state) {
        for (const ProfileElement& element : splitProfilesReply(replies.next(), Bounds().listRows).profiles)
            benchmark::DoNotOptimize(decodeProfileRecord(element.text));
    }
}

/// Reply to painted rows. The counters split it into the handler and what the event loop does afterwards.
void showProfiles(benchmark::State& state)
{
    Replies& replies = repliesFor(state);
    ShownList list;
    static bool holdsPictures = false; // they are stored once, on a disk that takes its time
    list.handle(holdsPictures ? replies.next() : replies.first());
    holdsPictures = true;
    list.countedPaint();
    settle();
    double handling = 0;
    double painting = 0;
    for ([[maybe_unused]] const auto step : state) {
        const double start = threadSeconds();
        list.handle(replies.next());
        const double handled = threadSeconds();
        list.countedPaint();
        handling += handled - start;
        painting += threadSeconds() - handled;
    }
    if (list.rows() != state.range(0))
        state.SkipWithError("the list does not show its profiles");
    const auto mean = [&state](double seconds) { return seconds * 1e6 / static_cast<double>(state.iterations()); };
    state.counters["handler_us"] = mean(handling);
    state.counters["paint_us"] = mean(painting);
}

void profileCounts(benchmark::internal::Benchmark* row)
{
    row->Arg(50)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK(decodeProfiles)->Name("profiles to records")->Apply(profileCounts);
BENCHMARK(showProfiles)->Name("profiles to the shown list")->Apply(profileCounts);

} // namespace
