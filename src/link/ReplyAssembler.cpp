#include "link/ReplyAssembler.h"

#include "base/Base64.h"
#include "base/RuntimeError.h"
#include "base/Text.h"

#include <algorithm>

namespace {

constexpr std::size_t prefixBytes = 7;
constexpr std::string_view startMarker = "[ST]";
constexpr std::string_view endMarker = "[ND]";

} // namespace

void GrowingSearch::look(std::string_view text)
{
    if (m_end != nowhere)
        return;
    for (std::size_t at = text.find(m_pattern[m_rare], m_from + m_rare); at != nowhere;
         at = text.find(m_pattern[m_rare], at + 1)) {
        if (text.substr(at - m_rare, m_pattern.size()) == m_pattern) {
            m_end = at - m_rare + m_pattern.size();
            return;
        }
    }
    if (text.size() >= m_pattern.size())
        m_from = text.size() - m_pattern.size() + 1; // the pattern may have begun in what stands at the end
}

void ReplyAssembler::add(std::string_view chunk)
{
    if (chunk.size() > maxReplyBytes - m_buffer.size()) {
        reset();
        throw RuntimeError(ErrorNumber::OutOfMemory, "the reply is larger than 256 MiB");
    }
    m_buffer.append(chunk);
    if (!m_prefixRead && m_buffer.size() >= prefixBytes)
        startReply();
    if (m_prefixRead) {
        for (GrowingSearch* search : {&m_end, &m_failure, &m_success})
            search->look(m_buffer);
    }
}

void ReplyAssembler::startReply()
{
    m_prefixRead = true;
    const std::string_view prefix = std::string_view(m_buffer).substr(0, prefixBytes);
    // A prefix that is no number stays in the buffer: it may hold the start of a message, and what lies before
    // "[ST]" is skipped anyway.
    if (!isNumeric(prefix))
        return;
    m_expected = toInt32(prefix);
    m_buffer.erase(0, prefixBytes);
    m_buffer.reserve(static_cast<std::size_t>(m_expected)); // seven digits: at most 10 MB
}

std::optional<Reply> ReplyAssembler::take()
{
    if (m_end.end() == GrowingSearch::nowhere)
        return {};
    const std::size_t end = m_buffer.rfind(endMarker) + endMarker.size();
    const std::string rest = m_buffer.substr(end);
    Reply reply{.text = std::move(m_buffer), .kind = kindUpTo(end)};
    reply.text.resize(end);
    reset();
    add(rest);
    return reply;
}

ReplyKind ReplyAssembler::kindUpTo(std::size_t end) const
{
    if (m_failure.end() <= end)
        return ReplyKind::LoginFailed;
    return m_success.end() <= end ? ReplyKind::LoginSucceeded : ReplyKind::Messages;
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
    const FieldList fields(std::string(reply.substr(start)), '_');
    const std::string_view port = fields.at(4);
    base64::decode(without(fields.at(3), endMarker)); // only to know now whether it can be done later
    return {.privileges = std::string(fields.at(3)), .supportPort = toInt32(port.substr(0, port.find(endMarker)))};
}
