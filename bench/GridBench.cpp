#include "GridSubjects.h"

#include <benchmark/benchmark.h>

namespace {

template <typename Subject>
void refill(benchmark::State& state)
{
    const auto rows = static_cast<int>(state.range(0));
    ShownGrid<Subject> grid(rows);
    for ([[maybe_unused]] const auto step : state)
        grid.refillAndPaint();
    if (grid.shownRows() != rows)
        state.SkipWithError("the grid does not show its rows");
    state.counters["paints"] = grid.paintsPerRefill();
}

void rowCounts(benchmark::internal::Benchmark* row)
{
    row->Arg(50)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
}

BENCHMARK_TEMPLATE(refill, EagerGrid)->Name("refill: ours")->Apply(rowCounts);
BENCHMARK_TEMPLATE(refill, LazyGrid)->Name("refill: ours, rows on demand")->Apply(rowCounts);
BENCHMARK_TEMPLATE(refill, ItemGrid)->Name("refill: QTableWidget")->Apply(rowCounts);
BENCHMARK_TEMPLATE(refill, StaticTextRows)->Name("refill: static texts")->Apply(rowCounts);
BENCHMARK_TEMPLATE(refill, StockDelegateGrid)
    ->Name("refill: stock delegate, rows on demand")
    ->Arg(1000)
    ->Unit(benchmark::kMicrosecond);

} // namespace
