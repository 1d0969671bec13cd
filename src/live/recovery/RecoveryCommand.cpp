#include "live/recovery/RecoveryCommand.h"

#include "base/Base64.h"
#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::string_view startMarker = "[ST]";
constexpr std::string_view endMarker = "[ND]";

std::string_view verbOf(RecoveryOrder order)
{
    switch (order) {
    case RecoveryOrder::Start:
        return "Start";
    case RecoveryOrder::Restart:
        return "Restart";
    case RecoveryOrder::Stop:
        return "Stop";
    }
    return {};
}

} // namespace

std::string recoveryCommand(RecoveryOrder order, std::string_view user, std::string_view password)
{
    std::string text(startMarker);
    text.append(base64::encode(user)).append("|").append(base64::encode(password)).append("|");
    return text.append(verbOf(order)).append(endMarker);
}

bool RecoveryAnswer::take(std::string_view piece)
{
    // The marker may have begun in the piece before.
    const std::size_t searched = m_gathered.size() - std::min(m_gathered.size(), endMarker.size() - 1);
    m_gathered += piece.substr(0, maxBytes - m_gathered.size());
    return m_gathered.size() == maxBytes || m_gathered.find(endMarker, searched) != std::string::npos;
}

std::string RecoveryAnswer::text() const
{
    return without(without(m_gathered, startMarker), endMarker);
}
