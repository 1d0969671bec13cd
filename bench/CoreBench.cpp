#include "CoreSubjects.h"
#include "store/Expansion.h"

#include <benchmark/benchmark.h>
#include <libdeflate.h>

#include <array>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <random>

namespace {

constexpr std::size_t logBytes = std::size_t{1024} * 1024;

/// Lines as a game server's log has them, always the same ones.
std::string logText()
{
    std::mt19937 random(1);
    const auto below = [&random](unsigned bound) { return static_cast<unsigned>(random() % bound); };
    std::string text;
    while (text.size() < logBytes) {
        std::array<char, 128> line{};
        const int length =
            std::snprintf(line.data(), line.size(),
                          "2024-05-%02u %02u:%02u:%02u player%u killed player%u with weapon %u on map %u\r\n",
                          below(28) + 1, below(24), below(60), below(60), below(64), below(64), below(40), below(12));
        text.append(line.data(), static_cast<std::size_t>(length));
    }
    text.resize(logBytes);
    return text;
}

std::string compressed(const std::string& text)
{
    constexpr int usualLevel = 6;
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(usualLevel), libdeflate_free_compressor);
    std::string data(libdeflate_zlib_compress_bound(compressor.get(), text.size()), '\0');
    data.resize(libdeflate_zlib_compress(compressor.get(), text.data(), text.size(), data.data(), data.size()));
    return data;
}

void expansionOurs(benchmark::State& state)
{
    const std::string data = compressed(logText());
    for ([[maybe_unused]] const auto step : state)
        benchmark::DoNotOptimize(expand(data, logBytes));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(logBytes));
}

/// The least that must be done: memory that nobody has filled, and the one call.
void expansionLibrary(benchmark::State& state)
{
    const std::string data = compressed(logText());
    for ([[maybe_unused]] const auto step : state) {
        libdeflate_decompressor* decompressor = libdeflate_alloc_decompressor();
        const std::unique_ptr<char[]> text(new char[logBytes]);
        const libdeflate_result result =
            libdeflate_zlib_decompress(decompressor, data.data(), data.size(), text.get(), logBytes, nullptr);
        libdeflate_free_decompressor(decompressor);
        if (result != LIBDEFLATE_SUCCESS)
            state.SkipWithError("not expanded");
        benchmark::DoNotOptimize(text.get());
    }
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(logBytes));
}

void measure(benchmark::State& state, const CoreSubject& subject)
{
    const std::function<bool()> turn = subject.prepare(static_cast<std::size_t>(state.range(0)));
    bool isSound = turn(); // buffers that are kept are there from now on
    for ([[maybe_unused]] const auto step : state)
        isSound = turn() && isSound;
    if (!isSound)
        state.SkipWithError("what came out is wrong");
}

BENCHMARK(expansionOurs)->Name("expansion of 1 MiB: ours");
BENCHMARK(expansionLibrary)->Name("expansion of 1 MiB: libdeflate itself");

} // namespace

int main(int argc, char** argv)
{
    for (const CoreSubject& subject : coreSubjects()) {
        auto* row = benchmark::RegisterBenchmark(subject.name.data(), measure, subject);
        for (const std::size_t size : subject.sizes)
            row->Arg(static_cast<std::int64_t>(size));
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
}
