#include "base/Base64.h"
#include "base/RuntimeError.h"
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

std::string randomBytes(std::size_t count)
{
    std::mt19937 random(2);
    std::string bytes(count, '\0');
    for (char& byte : bytes)
        byte = static_cast<char>(random());
    return bytes;
}

/// Decodes with one table of six-bit values, checking each group.
std::string plainTableDecode(std::string_view text)
{
    static const std::array<std::uint8_t, 256> values = [] {
        constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
        std::array<std::uint8_t, 256> table{};
        table.fill(0xFF);
        for (std::size_t i = 0; i < alphabet.size(); ++i)
            table[static_cast<unsigned char>(alphabet[i])] = static_cast<std::uint8_t>(i);
        return table;
    }();
    std::string bytes(text.size() / 4 * 3, '\0');
    char* out = bytes.data();
    const auto valueAt = [text](std::size_t at) { return std::uint32_t{values[static_cast<unsigned char>(text[at])]}; };
    for (std::size_t at = 0; at + 4 <= text.size(); at += 4) {
        const std::uint32_t a = valueAt(at);
        const std::uint32_t b = valueAt(at + 1);
        const std::uint32_t c = valueAt(at + 2);
        const std::uint32_t d = valueAt(at + 3);
        if (((a | b | c | d) & 0xC0u) != 0)
            throw RuntimeError(ErrorNumber::TypeMismatch);
        const std::uint32_t bits = a << 18 | b << 12 | c << 6 | d;
        *out++ = static_cast<char>(bits >> 16);
        *out++ = static_cast<char>(bits >> 8);
        *out++ = static_cast<char>(bits);
    }
    return bytes;
}

void base64With(benchmark::State& state, std::string (*decode)(std::string_view))
{
    const std::string text = base64::encode(randomBytes(static_cast<std::size_t>(state.range(0))));
    for ([[maybe_unused]] const auto step : state)
        benchmark::DoNotOptimize(decode(text));
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(text.size()));
}

void base64Sizes(benchmark::internal::Benchmark* row)
{
    row->Arg(300)->Arg(30000)->Arg(786432); // whole groups: the plain table knows no padding
}

BENCHMARK(expansionOurs)->Name("expansion of 1 MiB: ours");
BENCHMARK(expansionLibrary)->Name("expansion of 1 MiB: libdeflate itself");
BENCHMARK_CAPTURE(base64With, ours, base64::decode)->Name("Base64 decode: ours")->Apply(base64Sizes);
BENCHMARK_CAPTURE(base64With, plain, plainTableDecode)->Name("Base64 decode: plain table")->Apply(base64Sizes);

} // namespace
