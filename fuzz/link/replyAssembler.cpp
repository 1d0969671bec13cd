#include "link/ReplyAssembler.h"

#include "Check.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

constexpr std::string_view startMarker = "[ST]";
constexpr std::string_view endMarker = "[ND]";
constexpr std::size_t prefixBytes = 7;
constexpr std::int32_t maxPrefix = 9'999'999;

struct Gathered
{
    std::vector<Reply> replies;
    std::vector<std::string> messages;
    std::size_t pending = 0; ///< bytes of a reply that is not complete

    bool operator==(const Gathered&) const = default;
};

/// The kind of a reply that is looked at as a whole.
ReplyKind kindOf(std::string_view reply)
{
    if (reply.find("Login Failed") != std::string_view::npos)
        return ReplyKind::LoginFailed;
    return reply.find("[ST]Success_") != std::string_view::npos ? ReplyKind::LoginSucceeded : ReplyKind::Messages;
}

void checkDecoders(std::string_view reply)
{
    check(loginFailureText(reply).size() <= reply.size());
    const bool isSuccess = kindOf(reply) == ReplyKind::LoginSucceeded;
    LoginSuccess success;
    const auto error = raisedBy([&] { success = decodeLoginSuccess(reply); });
    check(!error || isDecoderError(error));
    check(isSuccess || error || reply.find("Login Failed") != std::string_view::npos);
    check(error || reply.find(success.privileges) != std::string_view::npos);
}

void takeAll(ReplyAssembler& assembler, Gathered& gathered)
{
    while (const std::optional<Reply> reply = assembler.take()) {
        const std::string& text = reply->text;
        check(text.ends_with(endMarker));
        check(reply->kind == kindOf(text));
        for (const std::string_view body : messagesOf(text)) {
            check(body.find(startMarker) == std::string_view::npos && body.find(endMarker) == std::string_view::npos);
            check(liesIn(text, body));
            gathered.messages.emplace_back(body);
        }
        checkDecoders(text);
        gathered.replies.push_back(*reply);
    }
    gathered.pending = assembler.received();
}

/// Feeds pieces of the given lengths and then what is left, taking replies either after each piece, as a link does, or
/// only behind the last one.
Gathered gather(std::string_view stream, const std::vector<std::size_t>& lengths, bool takesAfterEach)
{
    ReplyAssembler assembler;
    Gathered gathered;
    std::size_t fed = 0;
    const auto feed = [&](std::size_t length) {
        const std::string_view chunk = stream.substr(fed, length);
        fed += chunk.size();
        assembler.add(chunk);
        check(assembler.expectedLength() >= 0 && assembler.expectedLength() <= maxPrefix);
        check(assembler.received() <= fed);
        if (takesAfterEach)
            takeAll(assembler, gathered);
    };
    for (const std::size_t length : lengths)
        feed(length);
    feed(stream.size() - fed);
    takeAll(assembler, gathered);
    return gathered;
}

/// The messages of a stream, told without an assembler: what lies between the last end and the next, from behind its
/// first start on, up to a second start.
std::vector<std::string> messagesIn(std::string_view stream)
{
    std::vector<std::string> messages;
    for (std::size_t end = stream.find(endMarker); end != std::string_view::npos; end = stream.find(endMarker)) {
        const std::string_view piece = stream.substr(0, end);
        stream.remove_prefix(end + endMarker.size());
        std::size_t start = piece.find(startMarker);
        if (start == std::string_view::npos)
            continue;
        start += startMarker.size();
        messages.emplace_back(piece.substr(start, std::min(piece.find(startMarker, start), piece.size()) - start));
    }
    return messages;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    std::vector<std::size_t> lengths(input.ConsumeIntegralInRange<std::size_t>(0, 24));
    for (std::size_t& length : lengths)
        length = input.ConsumeIntegral<std::uint8_t>();
    const std::string stream = input.ConsumeRemainingBytesAsString();

    const Gathered whole = gather(stream, {}, false);
    check(gather(stream, lengths, false) == whole);
    check(gather(stream, lengths, true).messages == whole.messages);
    check(gather(stream, std::vector<std::size_t>(stream.size(), 1), true).messages == whole.messages);
    check(whole.messages == (stream.size() < prefixBytes ? std::vector<std::string>() : messagesIn(stream)));
    checkDecoders(stream);
    messagesOf(stream);
    return 0;
}
