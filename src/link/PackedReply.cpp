#include "link/PackedReply.h"

#include "base/RuntimeError.h"
#include "base/Text.h"

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
