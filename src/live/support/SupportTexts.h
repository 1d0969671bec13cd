#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The texts of the support link. They carry no frame: neither a length nor a mark at their end.

/// One text of the host.
struct SupportText
{
    enum class Kind {
        Status,  ///< the operator's status
        Message, ///< an entry of the conversation
        Damaged, ///< a message that is no Base64; its value is empty
    };

    Kind kind = Kind::Message;
    /// Decoded, in the host's code page. Empty when damaged, and for a status that continues one which has turned out
    /// to be the beginning of the next text.
    std::string value;
    bool continues = false; ///< stands for the text handed out before it, whose end is known better now

    bool operator==(const SupportText&) const = default;
};

/// Puts the host's texts together from whatever pieces they arrive in, in time linear in their size.
///
/// A text begins at "Announce_" or "Message_", wherever that stands, and what lies before is no text. It ends where the
/// next one begins, at the "_" behind its value, or at the "=" that fills up its last group of Base64. All other ends
/// can only be guessed, and the guess must not cost a word:
/// - a message is handed out as soon as its Base64 stands at a whole group and its entry ends in the empty line that
///   ends every entry; at a pause it need not end so; between two groups it waits for the rest, however long that
///   takes;
/// - a status is handed out as it arrives, but for an end that may be the beginning of the next text's first word; at a
///   pause with that end, which is taken back when a "_" follows it after all;
/// - what comes behind a text that was handed out, and is not the beginning of another one, still belongs to it: the
///   text is then handed out again, longer, and marked as the same one.
class SupportTexts
{
public:
    /// Nobody types more; a host that sends more means ill.
    static constexpr std::size_t maxMessageBytes = std::size_t{256} << 10;
    static constexpr std::size_t maxStatusBytes = 256;

    /// @throws RuntimeError OutOfMemory when a message exceeds `maxMessageBytes`; the rest of the chunk is lost, the
    ///         texts before it are not
    void add(std::string_view chunk);

    /// The texts that are complete, or look so.
    std::vector<SupportText> take();
    /// The same when nothing has arrived for a while.
    std::vector<SupportText> takeAfterPause();
    /// The same when nothing will arrive any more; a message that was cut off is given as far as it came.
    std::vector<SupportText> takeRest();

    /// Whether a pause may bring something to light.
    bool isUnderWay() const { return m_kind && m_value.size() != m_taken; }
    void reset() { *this = SupportTexts(); }

private:
    void append(std::string_view bytes);
    void appendToMessage(std::string_view bytes);
    void endField();
    void finish();
    void handOut(std::size_t length);
    std::size_t lengthThatLooksComplete() const;
    std::vector<SupportText> takeReady();

    std::optional<SupportText::Kind> m_kind; ///< of the text under way; nothing between texts
    std::string m_value;                     ///< its value so far; between texts what may become a first word
    std::size_t m_whole = 0;                 ///< length of the Base64 that its "=" settles; 0 while none has come
    std::size_t m_taken = 0;                 ///< how much of the value has been handed out
    std::vector<SupportText> m_ready;
};

/// An entry of the conversation: "NAME says:", the message and an empty line. Lines end in CR LF.
std::string conversationEntry(std::string_view speaker, std::string_view message);

/// What tells the host that the user is there, and in which status.
std::string announceText(std::string_view user, std::string_view status);
std::string messageText(std::string_view user, std::string_view entry);
