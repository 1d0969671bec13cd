#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Gathers the tracker's replies from the chunks in which they arrive, in time linear in their size. A reply is seven
/// characters of decimal length and one or more messages "[ST]"..."[ND]"; it is complete as soon as an "[ND]" is there.
class ReplyAssembler
{
public:
    /// A reply may not be larger: the peer is then no tracker, or means ill.
    static constexpr std::size_t maxReplyBytes = 256U << 20;

    /// @throws RuntimeError OutOfMemory when the reply under way exceeds `maxReplyBytes`; the buffer is then empty
    void add(std::string_view chunk);

    /// The complete reply, from behind its prefix to its last "[ND]", or nothing. What stands behind stays for the
    /// next reply.
    std::optional<std::string> take();

    /// The number in the prefix of the reply under way; 0 between replies and when the prefix is no number.
    std::int32_t expectedLength() const { return m_expected; }
    /// Bytes gathered of the reply under way, without its prefix.
    std::size_t received() const { return m_buffer.size(); }
    void reset();

private:
    void startReply();

    std::string m_buffer;
    std::int32_t m_expected = 0;
    bool m_prefixRead = false;
    std::size_t m_searched = 0; ///< no "[ND]" begins before this offset
    bool m_complete = false;
};

/// The bodies of the messages in a complete reply, in order: for each piece that ends at an "[ND]", the text between
/// its first "[ST]" and the next "[ST]" or the piece's end. Pieces without "[ST]" are skipped. Views into `reply`.
std::vector<std::string_view> messagesOf(std::string_view reply);

enum class ReplyKind { LoginFailed, LoginSucceeded, Messages };

/// Login replies are recognised anywhere in a reply, a failure first.
ReplyKind kindOf(std::string_view reply);

/// The tracker's own words of a "Login Failed" reply, without the markers.
std::string loginFailureText(std::string_view reply);

struct LoginSuccess
{
    std::string privileges; ///< Base64
    std::int32_t supportPort = 0;

    bool operator==(const LoginSuccess&) const = default;
};

/// @throws RuntimeError SubscriptOutOfRange for fewer than five fields, TypeMismatch for a port that is no number,
/// Overflow for one
///         that does not fit
LoginSuccess decodeLoginSuccess(std::string_view reply);
