#include "link/PackedReply.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "store/clsMFD.h"

namespace {

constexpr std::string_view marker = "[-]Quorvane[-]";

} // namespace

PackedReply splitPackedReply(std::string_view body)
{
    const std::size_t end = body.find(marker);
    if (end == std::string_view::npos)
        throw RuntimeError(ErrorNumber::SubscriptOutOfRange, "compressed reply");
    // Compressed bytes may hold the marker by chance, so what follows the first one is data, all of it.
    return {toInt32(body.substr(0, end)), body.substr(end + marker.size())};
}

ListText expandList(const PackedReply& packed, std::string_view separator, std::size_t maxBytes)
{
    // A separator that ends at the bound still ends an element there.
    ListText list{clsMFD::DecompressString(packed.data, packed.length, maxBytes + separator.size())};
    if (list.text.size() <= maxBytes)
        return list;
    const std::size_t end = list.text.rfind(separator, maxBytes);
    list.text.resize(end == std::string::npos ? 0 : end);
    list.text.shrink_to_fit();
    list.isCut = true;
    return list;
}
