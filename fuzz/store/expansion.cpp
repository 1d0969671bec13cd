#include "store/Expansion.h"

#include "Check.h"

#include <libdeflate.h>

#include <memory>

namespace {

std::string compressed(std::string_view text)
{
    constexpr int level = 1;
    const std::unique_ptr<libdeflate_compressor, decltype(&libdeflate_free_compressor)> compressor(
        libdeflate_alloc_compressor(level), libdeflate_free_compressor);
    std::string data(libdeflate_zlib_compress_bound(compressor.get(), text.size()), '\0');
    data.resize(libdeflate_zlib_compress(compressor.get(), text.data(), text.size(), data.data(), data.size()));
    return data;
}

} // namespace

/// The input is a declared length, lowest byte first, and compressed data.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 4)
        return 0;
    std::uint32_t length = 0;
    for (int i = 3; i >= 0; --i)
        length = length << 8 | data[i];
    const std::string_view input = viewOf(data + 4, size - 4);
    std::string text;
    const auto error = raisedBy([&] { text = expand(input, length); });
    check(error == ErrorNumber::OutOfMemory ? length > Bounds().logTextBytes
                                            : !error || error == ErrorNumber::InvalidFileFormat);
    check(error || text.size() == length);

    const auto inputLength = static_cast<std::uint32_t>(input.size());
    const std::string ours = compressed(input);
    check(expand(ours, inputLength) == input);
    check(raisedBy([&] { expand(ours, inputLength + 1); }) == ErrorNumber::InvalidFileFormat);
    check(raisedBy([&] { expand(ours, inputLength - 1); }).has_value());
    return 0;
}
