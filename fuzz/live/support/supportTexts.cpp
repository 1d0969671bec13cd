#include "live/support/SupportTexts.h"

#include "Check.h"
#include "base/Base64.h"
#include "live/support/Conversation.h"

#include <fuzzer/FuzzedDataProvider.h>

namespace {

using Kind = SupportText::Kind;

struct Reader
{
    SupportTexts texts;
    std::vector<SupportText> shown; ///< a text that continues stands for the one before it

    void show(const std::vector<SupportText>& more)
    {
        for (SupportText text : more) {
            check(text.kind != Kind::Damaged || text.value.empty());
            check(!text.value.empty() || text.kind == Kind::Damaged || (text.kind == Kind::Status && text.continues));
            check(text.kind != Kind::Status || text.value.size() <= SupportTexts::maxStatusBytes);
            check(!text.continues || !shown.empty());
            if (text.continues)
                shown.pop_back();
            text.continues = false;
            shown.push_back(text);
        }
    }
};

/// What is on the screen in the end, when the stream comes in pieces of these lengths and one more.
std::vector<SupportText> read(std::string_view stream, const std::vector<std::size_t>& lengths, bool pauses)
{
    Reader reader;
    const auto feed = [&](std::size_t length) {
        reader.texts.add(stream.substr(0, length));
        stream.remove_prefix(std::min(length, stream.size()));
        reader.show(reader.texts.take());
        if (pauses)
            reader.show(reader.texts.takeAfterPause());
        check(reader.texts.take().empty() || pauses);
    };
    for (const std::size_t length : lengths)
        feed(length);
    feed(stream.size());
    reader.show(reader.texts.takeRest());
    check(!reader.texts.isUnderWay());
    return reader.shown;
}

void checkConversation(const std::vector<SupportText>& texts, std::string_view wanted)
{
    Conversation talk;
    std::size_t said = 0;
    for (const SupportText& text : texts) {
        const Conversation::Number number = talk.add(text.value);
        said += talk.entry(number).size();
        check(talk.entry(number).ends_with("\n\n") && talk.entry(number).find('\r') == std::string::npos);
    }
    check(talk.shownText().size() == said);
    const std::string all = talk.shownText();
    if (talk.filter(Conversation::Speaker::All, wanted, "user")) {
        check(talk.shownText().size() <= said);
        const auto at = findFirst(talk.shownText(), wanted);
        check(talk.shownCount() == 0 || at.has_value());
        check(talk.filter(Conversation::Speaker::All, {}, "user"));
    }
    check(talk.shownText() == all);
    TextSpan selection;
    for (auto at = findFirst(all, wanted); at; at = findNext(all, wanted, selection)) {
        check(all.compare(*at - 1, wanted.size(), wanted) == 0);
        const auto previous = findPrevious(all, wanted, {*at - 1, wanted.size()});
        check(!previous || *previous < *at);
        selection = {*at - 1, wanted.size()};
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzedDataProvider input(data, size);
    std::vector<std::size_t> lengths(input.ConsumeIntegralInRange<std::size_t>(0, 24));
    for (std::size_t& length : lengths)
        length = input.ConsumeIntegral<std::uint8_t>();
    const std::string wanted = input.ConsumeRandomLengthString(8);
    const std::string stream = input.ConsumeRemainingBytesAsString();

    // Cuts change nothing of what is there in the end, and words that were sent well arrive.
    const std::vector<SupportText> whole = read(stream, {}, false);
    check(read(stream, lengths, false) == whole);
    check(read(stream, std::vector<std::size_t>(stream.size(), 1), false) == whole);
    checkConversation(whole, wanted);

    std::string good;
    std::vector<SupportText> sent;
    for (std::size_t at = 0; at < stream.size() && sent.size() < 8; at += 37) {
        const std::string entry = conversationEntry("Host", std::string_view(stream).substr(at, 37));
        good += "Message_" + base64::encode(entry);
        sent.push_back({Kind::Message, entry});
    }
    check(read(good, lengths, true) == sent);
    check(read(good, std::vector<std::size_t>(good.size(), 1), true) == sent);
    return 0;
}
