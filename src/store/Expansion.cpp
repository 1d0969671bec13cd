#include "store/Expansion.h"

#include "base/RuntimeError.h"

#include <libdeflate.h>

#include <memory>

namespace {

using DecompressFunction = decltype(&libdeflate_deflate_decompress);

struct FreeDecompressor
{
    void operator()(libdeflate_decompressor* decompressor) const { libdeflate_free_decompressor(decompressor); }
};

/// Neither header can begin a raw text: the one of gzip would be a block of the reserved kind, the one of zlib a stored
/// block with bits set in its filling, which no compressor writes.
DecompressFunction functionFor(std::string_view data)
{
    if (data.size() < 2)
        return libdeflate_deflate_decompress;
    const unsigned first = static_cast<unsigned char>(data[0]);
    const unsigned second = static_cast<unsigned char>(data[1]);
    if (first == 0x1F && second == 0x8B)
        return libdeflate_gzip_decompress;
    const bool isDeflate = (first & 0x0Fu) == 8 && first >> 4 <= 7;
    if (isDeflate && (first << 8 | second) % 31 == 0)
        return libdeflate_zlib_decompress;
    return libdeflate_deflate_decompress;
}

/// Far more than the library leaves unfilled at the end of a place that is too small.
constexpr std::size_t slack = 64 * Bounds::kibibyte;

void checkLength(std::string_view data, std::uint32_t length, const Bounds& bounds)
{
    if (length > bounds.logTextBytes)
        throw RuntimeError(ErrorNumber::OutOfMemory, "compressed text");
    // A byte of deflate holds at most four repetitions, each of at most 258 bytes.
    if (length > std::uint64_t{bounds.expansionFactor} * data.size())
        throw RuntimeError(ErrorNumber::InvalidFileFormat, "compressed text");
}

std::string expandTo(std::size_t size, std::string_view data, libdeflate_result wanted)
{
    std::string text(size, '\0');
    const std::unique_ptr<libdeflate_decompressor, FreeDecompressor> decompressor(libdeflate_alloc_decompressor());
    if (!decompressor)
        throw RuntimeError(ErrorNumber::OutOfMemory, "compressed text");
    // Without a place for the actual length, less than `size` bytes are a fault like more.
    if (functionFor(data)(decompressor.get(), data.data(), data.size(), text.data(), text.size(), nullptr) != wanted)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, "compressed text");
    return text;
}

} // namespace

std::string expand(std::string_view data, std::uint32_t length, const Bounds& bounds)
{
    checkLength(data, length, bounds);
    if (data.empty())
        return {}; // nothing declared, nothing sent
    return expandTo(length, data, LIBDEFLATE_SUCCESS);
}

std::string expandBeginning(std::string_view data, std::uint32_t length, std::size_t most, const Bounds& bounds)
{
    if (length <= most + slack)
        return expand(data, length, bounds);
    checkLength(data, length, bounds);
    // The library fills its place from the beginning on and gives up when the next bytes do not fit. Had it left
    // anything else there, that would be a damaged list like any other.
    std::string text = expandTo(most + slack, data, LIBDEFLATE_INSUFFICIENT_SPACE);
    text.resize(most);
    return text;
}
