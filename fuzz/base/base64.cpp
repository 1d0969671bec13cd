#include "base/Base64.h"

#include "Check.h"

namespace {

constexpr std::string_view alphabet = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

/// The input's whole groups without the padding that may stand at their end.
std::string_view charactersOf(std::string_view wholeGroups)
{
    for (int i = 0; i < 2 && wholeGroups.ends_with('='); ++i)
        wholeGroups.remove_suffix(1);
    return wholeGroups;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string_view input = viewOf(data, size);

    const std::string encoded = base64::encode(input);
    check(encoded.size() == (size + 2) / 3 * 4);
    check(base64::decode(encoded) == input);

    const std::string_view groups = input.substr(0, size / 4 * 4);
    const std::string_view characters = charactersOf(groups);
    const bool isGood = characters.find_first_not_of(alphabet) == std::string_view::npos;
    std::string decoded;
    const auto error = raisedBy([&] { decoded = base64::decode(input); });
    check(isGood ? !error : error == ErrorNumber::TypeMismatch);
    if (error)
        return 0;
    check(decoded.size() == groups.size() / 4 * 3 - (groups.size() - characters.size()));
    // Only the last character before padding has bits that the bytes do not hold.
    const std::size_t exact = characters.size() == groups.size() ? groups.size() : characters.size() - 1;
    check(base64::encode(decoded).substr(0, exact) == groups.substr(0, exact));
    return 0;
}
