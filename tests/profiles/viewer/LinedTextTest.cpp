#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextSearch.h"

#include "base/RaisedError.h"

#include <random>

using namespace std::string_literals;

namespace {

/// The lines of a text as one slow and plain pass finds them; long ones are not broken.
std::vector<std::string> plainLines(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '\r' && at + 1 < text.size() && text[at + 1] == '\n')
            continue;
        if (text[at] == '\r' || text[at] == '\n')
            lines.emplace_back();
        else
            lines.back() += text[at];
    }
    return lines;
}

TextSearch::Folding asciiFolding()
{
    TextSearch::Folding folding;
    for (std::size_t byte = 0; byte < folding.size(); ++byte)
        folding[byte] = static_cast<unsigned char>(byte >= 'A' && byte <= 'Z' ? byte + 32 : byte);
    return folding;
}

} // namespace

class LinedTextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyOffsetIsFoundInItsLine_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::newRow("nothing") << ""s;
        QTest::newRow("no line end") << "one"s;
        QTest::newRow("every kind of line end") << "one\r\ntwo\nthree\rfour\r\r\n\n"s;
        QTest::newRow("a lone CR at the end") << "one\r"s;
        QTest::newRow("NUL and the bytes around it") << "a\0b\x01\r\n\xFF"s;
        QTest::newRow("CR LF across a block") << std::string(4095, 'x') + "\r\n" + std::string(4094, 'y') + "\n\r\n";
        std::minstd_rand chance(7);
        std::string mixed;
        while (mixed.size() < 15'000)
            mixed += "ab\r\n"[(chance() >> 8) % 4];
        QTest::newRow("line ends by chance, over many blocks") << mixed;
    }
    void everyOffsetIsFoundInItsLine()
    {
        QFETCH(const std::string, text);
        const LinedText lined(text);
        const std::vector<std::string> lines = plainLines(text);
        QCOMPARE(lined.lineCount(), lines.size());
        std::size_t start = 0;
        for (std::size_t line = 0; line < lines.size(); ++line) {
            QCOMPARE(std::string(lined.line(line)), lines[line]);
            QCOMPARE(lined.lineStart(line), start);
            const std::size_t next = line + 1 < lines.size() ? lined.lineStart(line + 1) : text.size() + 1;
            while (start < next && lined.lineOf(start) == line)
                ++start;
            QCOMPARE(start, next);
        }
    }

    void aLineTooLongToLookAtGoesOnBelow()
    {
        const std::string line(3 * LinedText::maxLineBytes, 'x');
        const LinedText lined(line + "\r\nend");
        QCOMPARE(lined.lineCount(), 4u); // and no empty one before the line end
        QCOMPARE(lined.line(2).size(), LinedText::maxLineBytes);
        QCOMPARE(lined.lineOf(LinedText::maxLineBytes), 1u);
        QCOMPARE(std::string(lined.line(3)), "end"s);
        QCOMPARE(lined.maxColumns(), LinedText::maxLineBytes);
    }

    void tabsReachTheirStops()
    {
        const std::string line = "a\tbc\t";
        QCOMPARE(LinedText(line).maxColumns(), 16u);
        QCOMPARE(columnOf(line, 2), 8u);
        QCOMPARE(columnOf(line, 5), 16u);
        QCOMPARE(byteAtColumn(line, 3), 1u); // nearer to the beginning of the TAB
        QCOMPARE(byteAtColumn(line, 7), 2u);
        QCOMPARE(byteAtColumn(line, 99), 5u);
    }

    void aSearchFindsWhatAPlainOneFinds()
    {
        std::minstd_rand chance(3);
        const auto some = [&chance](std::size_t size) {
            std::string text;
            while (text.size() < size)
                text += "aAbB"[(chance() >> 8) % 4];
            return text;
        };
        const auto lower = [](std::string text) {
            for (char& byte : text)
                byte = static_cast<char>(byte | 32);
            return text;
        };
        for (int round = 0; round < 2000; ++round) {
            const std::string text = some(chance() % 40);
            const std::string wanted = some(1 + chance() % 4);
            const std::size_t from = chance() % 40;
            const std::size_t to = chance() % 40;
            const TextSearch search(wanted, asciiFolding());
            std::optional<std::size_t> first;
            std::optional<std::size_t> last;
            for (std::size_t at = from; at < to && at + wanted.size() <= text.size(); ++at) {
                if (lower(text.substr(at, wanted.size())) == lower(wanted)) {
                    first = first.value_or(at);
                    last = at;
                }
            }
            QVERIFY(search.first(text, from, to) == first);
            QVERIFY(search.last(text, from, to) == last);
        }
    }
};

QTEST_APPLESS_MAIN(LinedTextTest)
#include "LinedTextTest.moc"
