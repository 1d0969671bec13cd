// Refills a grid for an instruction counter: GridCount ours|lazy|items|statics ROWS TIMES. Only countedRefill() is of
// interest.

#include "GridSubjects.h"
#include "OffscreenApplication.h"

#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

// The counter is switched on by the name of this function, so it is not to be inlined.
template <typename Subject>
[[gnu::noinline]] void countedRefill(ShownGrid<Subject>& grid)
{
    grid.refillAndPaint();
}

template <typename Subject>
int run(int rows, int times)
{
    ShownGrid<Subject> grid(rows);
    for (int i = 0; i < times; ++i)
        countedRefill(grid);
    return grid.shownRows() == rows ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace

int main(int argc, char** argv)
{
    constexpr int badUsage = 2;
    const OffscreenApplication application(argc, argv);
    const std::string_view subject = argc == 4 ? argv[1] : "";
    const int rows = argc == 4 ? std::atoi(argv[2]) : 0;
    const int times = argc == 4 ? std::atoi(argv[3]) : 0;
    if (subject == "ours")
        return run<EagerGrid>(rows, times);
    if (subject == "lazy")
        return run<LazyGrid>(rows, times);
    if (subject == "items")
        return run<ItemGrid>(rows, times);
    if (subject == "statics")
        return run<StaticTextRows>(rows, times);
    std::fputs("usage: GridCount ours|lazy|items|statics ROWS TIMES\n", stderr);
    return badUsage;
}
