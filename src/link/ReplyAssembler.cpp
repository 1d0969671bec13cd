#include "link/ReplyAssembler.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"
#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::size_t prefixBytes = 7;
constexpr std::string_view startMarker = "[ST]";
constexpr std::string_view endMarker = "[ND]";
constexpr std::string_view successStart = "[ST]Success_";
constexpr std::string_view failureText = "Login Failed";
constexpr std::size_t successFields = 6; ///< those of a success, and what stands behind them

/// A length that a prefix announces makes room for no more than this; what is longer must show it.
constexpr std::size_t mostForeseen = std::size_t{64} << 20;
constexpr std::size_t furtherDigits = 2; // no reply has more
/// Room of a reply that is kept for the next one.
constexpr std::size_t mostKept = std::size_t{2} << 20;

/// The room for a reply of which `prefix` and the digits in front of `rest`, which stay in it, tell the length.
std::size_t roomFor(std::int32_t prefix, std::string_view rest)
{
    auto length = static_cast<std::size_t>(prefix);
    for (; !rest.empty() && rest.front() >= '0' && rest.front() <= '9' && length < mostForeseen; rest.remove_prefix(1))
        length = length * 10 + static_cast<std::size_t>(rest.front() - '0');
    return std::min(length, mostForeseen) + furtherDigits;
}

} // namespace

void ReplyAssembler::add(std::string_view chunk)
{
    if (chunk.size() > maxReplyBytes - m_buffer.size()) {
        reset();
        throw RuntimeError(ErrorNumber::OutOfMemory, "the reply is larger than 256 MiB");
    }
    if (!m_prefixRead)
        chunk.remove_prefix(readPrefix(chunk));
    m_buffer.append(chunk);
    if (m_prefixRead)
        lookForTexts();
}

/// @return how much of `chunk` it took
std::size_t ReplyAssembler::readPrefix(std::string_view chunk)
{
    const std::size_t count = std::min(prefixBytes - m_buffer.size(), chunk.size());
    m_buffer.append(chunk, 0, count);
    if (m_buffer.size() < prefixBytes)
        return count;
    m_prefixRead = true;
    // A prefix that is no number stays in the buffer: it may hold the start of a message, and what lies before
    // "[ST]" is skipped anyway.
    if (!isNumeric(m_buffer))
        return count;
    m_expected = toInt32(m_buffer);
    m_buffer.clear();
    m_buffer.reserve(roomFor(m_expected, chunk.substr(count)));
    return count;
}

/// Goes to the letters by which the texts are found fastest. All markers begin with the same one; a login failure
/// stands anywhere, without a marker, and a blank is the rarest of its letters: Base64 has none.
void ReplyAssembler::lookForTexts()
{
    const std::string_view text = m_buffer;
    for (std::size_t at = text.find('[', m_lookFrom); at != nowhere; at = text.find('[', at + 1)) {
        const std::string_view found = text.substr(at);
        if (found.starts_with(endMarker))
            m_end = at + endMarker.size();
        else if (found.starts_with(successStart))
            m_success = std::min(m_success, at);
    }
    constexpr std::size_t blank = failureText.find(' ');
    for (std::size_t at = text.find(' ', m_lookFrom + blank); at != nowhere; at = text.find(' ', at + 1)) {
        if (text.substr(at - blank).starts_with(failureText))
            m_failure = std::min(m_failure, at - blank);
    }
    // The longest of them may have begun, and an end marker that is seen twice does no harm.
    m_lookFrom = text.size() - std::min(text.size(), std::max(successStart.size(), failureText.size()) - 1);
}

std::optional<Reply> ReplyAssembler::take()
{
    if (m_end == nowhere)
        return {};
    const std::string rest = m_buffer.substr(m_end);
    Reply reply{.text = std::move(m_buffer), .kind = kind()};
    reply.text.resize(m_end);
    reset();
    add(rest);
    return reply;
}

void ReplyAssembler::reuse(std::string text)
{
    if (text.capacity() > mostKept || text.capacity() <= m_buffer.capacity())
        return;
    text.assign(m_buffer);
    m_buffer.swap(text);
}

/// Of the reply that ends at the last end marker, in which no text that is looked for overlaps another.
ReplyKind ReplyAssembler::kind() const
{
    if (m_failure < m_end)
        return ReplyKind::LoginFailed;
    return m_success < m_end ? ReplyKind::LoginSucceeded : ReplyKind::Messages;
}

void ReplyAssembler::reset()
{
    *this = {};
    m_buffer.shrink_to_fit(); // an empty text that is assigned leaves the old one's room
}

std::vector<std::string_view> messagesOf(std::string_view reply)
{
    std::vector<std::string_view> bodies;
    while (!reply.empty()) {
        const std::size_t end = std::min(reply.find(endMarker), reply.size());
        const std::string_view piece = reply.substr(0, end);
        reply.remove_prefix(std::min(end + endMarker.size(), reply.size()));
        const std::size_t start = piece.find(startMarker);
        if (start == std::string_view::npos)
            continue;
        const std::string_view body = piece.substr(start + startMarker.size());
        bodies.push_back(body.substr(0, body.find(startMarker)));
    }
    return bodies;
}

std::string loginFailureText(std::string_view reply)
{
    return without(without(reply, startMarker), endMarker);
}

LoginSuccess decodeLoginSuccess(std::string_view reply)
{
    const std::size_t start = std::min(reply.find("[ST]Success_"), reply.size());
    const FieldList fields(std::string(reply.substr(start)), '_', successFields);
    const std::string_view port = fields.at(4);
    base64::decode(without(fields.at(3), endMarker)); // only to know now whether it can be done later
    return {.privileges = std::string(fields.at(3)), .supportPort = toInt32(port.substr(0, port.find(endMarker)))};
}
