#include "OffscreenApplication.h"

#include <benchmark/benchmark.h>

int main(int argc, char** argv)
{
    const OffscreenApplication application(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
