#pragma once

#include "base/Bounds.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

enum class ReplyKind { LoginFailed, LoginSucceeded, Messages };

/// A complete reply.
struct Reply
{
    std::string text; ///< from behind the length prefix to the last "[ND]"
    /// Login replies are recognised anywhere in a reply, a failure first.
    ReplyKind kind = ReplyKind::Messages;

    bool operator==(const Reply&) const = default;
};

/// The text in which a message body stands. Who keeps it keeps the body without copying it.
using ReplyOwner = std::shared_ptr<const std::string>;

/// Gathers the tracker's replies from the chunks in which they arrive, in time linear in their size. A reply is seven
/// characters of decimal length and one or more messages "[ST]"..."[ND]"; it is complete as soon as an "[ND]" is there.
/// A length of 10 MB and more has further digits, which are skipped with all else that stands before "[ST]".
class ReplyAssembler
{
public:
    /// A reply may not be larger: the peer is then no tracker, or means ill.
    static constexpr std::size_t maxReplyBytes = Bounds{}.replyBytes;

    /// @throws RuntimeError OutOfMemory when the reply under way exceeds `maxReplyBytes`; the buffer is then empty
    void add(std::string_view chunk);

    /// The complete reply, or nothing. What stands behind it stays for the next one.
    std::optional<Reply> take();

    /// Takes the text of a reply back that nobody needs any more, so that the next one finds its room. That of a large
    /// reply is given back to the system.
    void reuse(std::string text);

    /// The number in the prefix of the reply under way; 0 between replies and when the prefix is no number.
    std::int32_t expectedLength() const { return m_expected; }
    /// Bytes gathered of the reply under way, without its prefix.
    std::size_t received() const { return m_buffer.size(); }
    void reset();

private:
    static constexpr std::size_t nowhere = std::string_view::npos;

    std::size_t readPrefix(std::string_view chunk);
    void lookForTexts();
    ReplyKind kind() const;

    std::string m_buffer;
    std::int32_t m_expected = 0;
    bool m_prefixRead = false;
    // All that must be known of a reply is looked for while it arrives: a large one is not gone through at its end.
    std::size_t m_lookFrom = 0;      ///< nothing that is looked for begins before and was not seen
    std::size_t m_end = nowhere;     ///< behind the last end marker
    std::size_t m_success = nowhere; ///< where the first login success begins
    std::size_t m_failure = nowhere; ///< where the first login failure begins
};

/// The bodies of the messages in a complete reply, in order: for each piece that ends at an "[ND]", the text between
/// its first "[ST]" and the next "[ST]" or the piece's end. Pieces without "[ST]" are skipped. Views into `reply`.
std::vector<std::string_view> messagesOf(std::string_view reply);

/// The tracker's own words of a "Login Failed" reply, without the markers.
std::string loginFailureText(std::string_view reply);

struct LoginSuccess
{
    std::string privileges; ///< Base64
    std::int32_t supportPort = 0;

    bool operator==(const LoginSuccess&) const = default;
};

/// @throws RuntimeError SubscriptOutOfRange for fewer than five fields, TypeMismatch for privileges that are no Base64
///         (an "[ND]" in them is not looked at) and for a port that is no number, Overflow for one that does not fit
LoginSuccess decodeLoginSuccess(std::string_view reply);
