// The support console with a long conversation in it.

#include "QuietDesk.h"
#include "base/Base64.h"
#include "live/support/Conversation.h"
#include "live/support/SupportDesk.h"
#include "live/support/SupportTexts.h"

#include <benchmark/benchmark.h>

#include <QCoreApplication>
#include <QPlainTextEdit>

#include <string>

using namespace Qt::StringLiterals;

namespace {

std::string entryOf(std::int64_t number)
{
    return conversationEntry("Host", "The server Alpha has changed to map " + std::to_string(number) +
                                         ".\r\nTwelve players are on it, all is well.");
}

Conversation conversationOf(std::int64_t entries)
{
    Conversation talk;
    for (std::int64_t number = 0; number < entries; ++number)
        talk.add(entryOf(number));
    return talk;
}

/// A console that is shown and holds that many entries, all from the host.
class ShownConsole
{
public:
    explicit ShownConsole(std::int64_t entries)
    {
        for (std::int64_t number = 0; number < entries; ++number)
            hear(number);
        m_desk.frame->supportDesk().open();
        QCoreApplication::processEvents();
    }

    void hear(std::int64_t number)
    {
        const std::string text = "Message_" + base64::encode(entryOf(number));
        Q_EMIT m_desk.frame->core().wSupport.dataArrival(text);
    }
    int blocks() { return m_desk.frame->findChild<QPlainTextEdit*>(u"txtMessages"_s)->blockCount(); }

private:
    QuietDesk m_desk;
};

/// Entries that come one after the other, each shown before the next.
void addToShown(benchmark::State& state)
{
    ShownConsole console(state.range(0));
    const int before = console.blocks();
    std::int64_t number = state.range(0);
    for ([[maybe_unused]] const auto step : state) {
        console.hear(++number);
        QCoreApplication::processEvents();
    }
    if (console.blocks() <= before)
        state.SkipWithError("the console does not show what comes in");
}

void filter(benchmark::State& state)
{
    Conversation talk = conversationOf(state.range(0));
    for ([[maybe_unused]] const auto step : state) {
        talk.filter(Conversation::Speaker::Host, "map 77", "admin");
        benchmark::DoNotOptimize(talk.shownText().data());
    }
    if (talk.shownCount() == 0)
        state.SkipWithError("the filter shows nothing");
}

void search(benchmark::State& state)
{
    const Conversation talk = conversationOf(state.range(0));
    for ([[maybe_unused]] const auto step : state)
        benchmark::DoNotOptimize(findFirst(talk.shownText(), "to map 0."));
    if (!findFirst(talk.shownText(), "to map 0."))
        state.SkipWithError("nothing is found");
}

/// What finding costs at the least: one pass over all that was said.
void onePass(benchmark::State& state)
{
    const Conversation talk = conversationOf(state.range(0));
    const std::string all = talk.shownText();
    for ([[maybe_unused]] const auto step : state) {
        std::size_t found = 0;
        for (std::size_t at = all.find("map 77"); at != std::string::npos; at = all.find("map 77", at + 1))
            ++found;
        benchmark::DoNotOptimize(found);
    }
}

BENCHMARK(addToShown)
    ->Name("message into the shown console")
    ->Arg(100)
    ->Arg(10000)
    ->Iterations(300)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK(filter)->Name("filter")->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(search)->Name("search")->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(onePass)->Name("one pass")->Arg(10000)->Unit(benchmark::kMicrosecond);

} // namespace
