// Does one thing for an instruction counter: CoreCount SUBJECT SIZE TIMES. Only countedTurns() is of interest.

#include "CoreSubjects.h"

#include <cstdio>
#include <cstdlib>

namespace {

// The counter is switched on by the name of this function, so it is not to be inlined.
[[gnu::noinline]] bool countedTurns(const std::function<bool()>& turn, int times)
{
    bool isSound = true;
    for (int i = 0; i < times; ++i)
        isSound = turn() && isSound;
    return isSound;
}

} // namespace

int main(int argc, char** argv)
{
    constexpr int badUsage = 2;
    const std::string_view name = argc == 4 ? argv[1] : "";
    for (const CoreSubject& subject : coreSubjects()) {
        if (subject.name != name)
            continue;
        const std::function<bool()> turn = subject.prepare(static_cast<std::size_t>(std::atoll(argv[2])));
        turn(); // buffers that are kept are there from now on
        return countedTurns(turn, std::atoi(argv[3])) ? EXIT_SUCCESS : EXIT_FAILURE;
    }
    std::fputs("usage: CoreCount SUBJECT SIZE TIMES, with one of these subjects:\n", stderr);
    for (const CoreSubject& subject : coreSubjects())
        std::fprintf(stderr, "  \"%s\"\n", subject.name.data());
    return badUsage;
}
