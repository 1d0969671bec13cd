#include "live/recovery/RecoveryCommand.h"

#include "Check.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    // The first byte says how long the pieces are in which the rest arrives.
    const std::string_view input = viewOf(data, size);
    const std::string_view sent = input.substr(std::min<std::size_t>(1, size));
    const std::size_t pieceBytes = size == 0 ? 1 : std::size_t{data[0]} + 1;
    RecoveryAnswer answer;
    std::size_t taken = 0;
    bool isComplete = false;
    while (taken < sent.size() && !isComplete) {
        const std::string_view piece = sent.substr(taken, pieceBytes);
        isComplete = answer.take(piece);
        taken += piece.size();
    }
    check(isComplete == (sent.substr(0, taken).find("[ND]") != std::string_view::npos));
    check(isComplete || taken == sent.size());
    check(answer.isEmpty() == (taken == 0));

    RecoveryAnswer whole;
    whole.take(sent.substr(0, taken));
    check(whole.text() == answer.text() && answer.text().size() <= taken);
    return 0;
}
