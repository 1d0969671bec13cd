#include "link/ReplyAssembler.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace {

constexpr std::size_t chunkBytes = 1460; // what one packet carries
constexpr std::size_t prefixBytes = 7;
constexpr std::size_t mostAnnounced = 9'999'999; // seven digits cannot say more
constexpr std::size_t streamBytes = std::size_t{16} * 1024 * 1024;

/// One reply as it travels. What is too long for its prefix is announced as long as the prefix can say.
std::string stream(std::size_t bytes)
{
    std::string reply = std::to_string(std::min(mostAnnounced, bytes - prefixBytes)) + "[ST]";
    while (reply.size() < bytes - 4)
        reply += "QWxwaGF8YmhkLmdpZnwyLzMyfFQyeGtJRlJ2ZDI0PXxETXww"; // Base64, as most replies are
    reply.resize(bytes - 4);
    return reply + "[ND]";
}

template <typename Take>
void eachChunk(std::string_view whole, Take&& take)
{
    for (std::size_t at = 0; at < whole.size(); at += chunkBytes)
        take(whole.substr(at, chunkBytes));
}

void finish(benchmark::State& state, bool isWhole)
{
    if (!isWhole)
        state.SkipWithError("the reply did not come out whole");
    state.SetBytesProcessed(state.iterations() * state.range(0));
}

void gatheringOurs(benchmark::State& state)
{
    const std::string whole = stream(static_cast<std::size_t>(state.range(0)));
    bool isWhole = true;
    for ([[maybe_unused]] const auto step : state) {
        ReplyAssembler assembler;
        eachChunk(whole, [&assembler](std::string_view chunk) { assembler.add(chunk); });
        const std::optional<Reply> reply = assembler.take();
        isWhole = isWhole && reply && reply->text.size() == whole.size() - prefixBytes;
        benchmark::DoNotOptimize(reply);
    }
    finish(state, isWhole);
}

/// The least that must be done: every byte is copied once, and the whole looked through for each of three texts. A
/// length that is announced, all of it, spares the buffer from growing.
void gatheringOnePass(benchmark::State& state)
{
    const std::string whole = stream(static_cast<std::size_t>(state.range(0)));
    bool isWhole = true;
    for ([[maybe_unused]] const auto step : state) {
        std::string buffer;
        if (whole.size() - prefixBytes <= mostAnnounced)
            buffer.reserve(whole.size());
        eachChunk(whole, [&buffer](std::string_view chunk) { buffer.append(chunk); });
        isWhole = isWhole && buffer.find("[ND]") == whole.size() - 4 &&
                  buffer.find("Login Failed") == std::string::npos && buffer.find("[ST]Success_") == std::string::npos;
        benchmark::DoNotOptimize(buffer);
    }
    finish(state, isWhole);
}

void replySizes(benchmark::internal::Benchmark* row)
{
    row->Arg(mostAnnounced + prefixBytes)->Arg(streamBytes);
}

BENCHMARK(gatheringOurs)->Name("gathering: ours")->Apply(replySizes);
BENCHMARK(gatheringOnePass)->Name("gathering: one pass")->Apply(replySizes);

} // namespace
