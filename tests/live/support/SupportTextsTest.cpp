#include "live/support/SupportTexts.h"

#include "base/Base64.h"
#include "base/RaisedError.h"

using Kind = SupportText::Kind;
using Texts = std::vector<SupportText>;

namespace {

std::string message(std::string_view text)
{
    return "Message_" + base64::encode(conversationEntry("Host", text));
}

SupportText said(std::string_view text)
{
    return {Kind::Message, conversationEntry("Host", text)};
}

SupportText status(std::string_view text)
{
    return {Kind::Status, std::string(text)};
}

/// What is left on the screen: a text that continues stands for the one before it.
void show(Texts& shown, const Texts& more)
{
    for (SupportText text : more) {
        if (text.continues && !shown.empty())
            shown.pop_back();
        text.continues = false;
        if (!text.value.empty() || text.kind == Kind::Damaged)
            shown.push_back(text);
    }
}

enum class Pauses { AtTheEnd, AfterEachPiece };

Texts shownFor(std::string_view stream, std::size_t piece, Pauses pauses)
{
    SupportTexts texts;
    Texts shown;
    for (; !stream.empty(); stream.remove_prefix(std::min(piece, stream.size()))) {
        texts.add(stream.substr(0, piece));
        show(shown, texts.take());
        if (pauses == Pauses::AfterEachPiece)
            show(shown, texts.takeAfterPause());
    }
    show(shown, texts.takeAfterPause());
    return shown;
}

} // namespace

Q_DECLARE_METATYPE(Texts)

class SupportTextsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void noCutLosesOrGarblesAWord_data()
    {
        QTest::addColumn<QByteArray>("stream");
        QTest::addColumn<Texts>("expected");
        const auto row = [](const char* name, const std::string& stream, const Texts& expected) {
            QTest::newRow(name) << QByteArray::fromStdString(stream) << expected;
        };
        row("a status alone", "Announce_Be Right Back", {status("Be Right Back")});
        row("status, further field", "Announce_Busy_x_y", {status("Busy")});
        row("two statuses", "Announce_BusyAnnounce_Away", {status("Busy"), status("Away")});
        row("a status that ends in a text's word", "Announce_Leave a Message", {status("Leave a Message")});
        row("a status that ends in a part of one", "Announce_In a Mess", {status("In a Mess")});
        row("a status that is nothing but one", "Announce_Message", {status("Message")});
        row("such a status, then others", "Announce_Leave a MessageAnnounce_No AnnounceMessage_SGV5",
            {status("Leave a Message"), status("No Announce"), {Kind::Message, "Hey"}});
        row("an empty status, then a message", "Announce_Message_SGV5", {{Kind::Message, "Hey"}});
        row("no text at all", "Hello\r\nNews_abc_def", {});
        row("nothing behind the word", "Message_Announce_", {});
        for (const char* text : {"a", "ab", "abc", "Announce_Message_"})
            row(text, message(text), {said(text)});
        row("empty lines inside", message("one\r\n\r\ntwo\r\n\r\n\r\n\r\nthree"),
            {said("one\r\n\r\ntwo\r\n\r\n\r\n\r\nthree")});
        row("several in one arrival", message("ab") + "Announce_Busy" + message("abc") + message("Announce_Away"),
            {said("ab"), status("Busy"), said("abc"), said("Announce_Away")});
        row("line ends between texts", "\r\n" + message("abc") + "\r\nAnnounce_Busy\r\n" + message("a") + "\r\n",
            {said("abc"), status("Busy"), said("a")});
        row("garbage around", "\x01_Mess_=_" + message("a") + "garb_age" + message("abc") + "_more",
            {said("a"), said("abc")});
        row("no empty line at its end", "Message_SGV5", {{Kind::Message, "Hey"}});
        row("broken off by the next", "Message_SGVsbG8gd29ybGQAnnounce_Busy",
            {{Kind::Message, "Hello world"}, status("Busy")});
        row("no Base64, then a good one", "Message_!no!" + message("a"), {{Kind::Damaged, {}}, said("a")});
    }
    void noCutLosesOrGarblesAWord()
    {
        QFETCH(const QByteArray, stream);
        QFETCH(const Texts, expected);
        for (std::size_t piece = 1; piece <= std::size_t(stream.size()); ++piece) {
            for (const Pauses pauses : {Pauses::AtTheEnd, Pauses::AfterEachPiece})
                QVERIFY2(shownFor(stream.toStdString(), piece, pauses) == expected, QByteArray::number(qint64(piece)));
        }
    }

    void textsDoNotWaitForAPauseThatTellsNothing()
    {
        SupportTexts texts;
        texts.add("Announce_Busy");
        QCOMPARE(texts.take(), Texts{status("Busy")});
        texts.add(message("abc"));
        QCOMPARE(texts.take(), Texts{said("abc")});
        QVERIFY(!texts.isUnderWay());
    }

    void anIncompleteMessageWaitsAndIsGivenWhenTheLinkEnds()
    {
        SupportTexts texts;
        texts.add("Message_SGVsbG8gd29yb");
        QVERIFY(texts.take().empty());
        QVERIFY(texts.takeAfterPause().empty());
        QVERIFY(texts.isUnderWay());
        const Texts rest{{Kind::Message, "Hello wor"}};
        QCOMPARE(texts.takeRest(), rest);
        texts.add("GQ=");
        QVERIFY(texts.takeAfterPause().empty());
    }

    void theHostCannotFillTheMemory()
    {
        SupportTexts texts;
        texts.add("Announce_" + std::string(2 * SupportTexts::maxMessageBytes, 'x') + message("a"));
        QCOMPARE(texts.take(), (Texts{status(std::string(SupportTexts::maxStatusBytes, 'x')), said("a")}));
        texts.add("Announce_BusyMessage_");
        const auto flood = [&] {
            for (std::size_t fed = 0; fed <= SupportTexts::maxMessageBytes; fed += 4096)
                texts.add(std::string(4096, 'A'));
        };
        QCOMPARE(raisedBy(flood), numberOf(ErrorNumber::OutOfMemory));
        const Texts left = texts.take();
        QCOMPARE(left.size(), 2U);
        QCOMPARE(left[1].value.size(), SupportTexts::maxMessageBytes / 4 * 3);
    }
};

QTEST_APPLESS_MAIN(SupportTextsTest)
#include "SupportTextsTest.moc"
