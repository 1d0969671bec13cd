#include "platform/system/FileVersion.h"

#include "Check.h"

#include <algorithm>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::optional<std::string> version = fileVersion(viewOf(data, size));
    if (version) {
        check(std::count(version->begin(), version->end(), '.') == 3);
        check(version->size() >= 7 && version->size() <= 23);
        check(version->find_first_not_of("0123456789.") == std::string::npos);
    }
    return 0;
}
