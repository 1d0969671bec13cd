#include "store/Expansion.h"

#include "base/RaisedError.h"

#include <QtTest>

using namespace std::string_literals;

namespace {

/// zlib's form, without the length that stands before it and also for an empty text.
std::string zlib(const std::string& text)
{
    if (text.empty())
        return "\x78\x9C\x03\0\0\0\0\x01"s;
    return qCompress(QByteArray::fromStdString(text), 9).mid(4).toStdString();
}

std::string rawDeflate(const std::string& text)
{
    const std::string whole = zlib(text);
    return whole.substr(2, whole.size() - 6);
}

std::string littleEndian(quint32 value)
{
    std::string bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes += static_cast<char>(value >> shift & 0xFFu);
    return bytes;
}

std::string gzip(const std::string& text)
{
    quint32 check = 0xFFFFFFFFu;
    for (const char c : text) {
        check ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            check = check >> 1 ^ (check & 1u ? 0xEDB88320u : 0u);
    }
    return "\x1F\x8B\x08\0\0\0\0\0\0\x03"s + rawDeflate(text) + littleEndian(~check) +
           littleEndian(static_cast<quint32>(text.size()));
}

} // namespace

class ExpansionTest : public QObject
{
    Q_OBJECT

    static constexpr int damaged = numberOf(ErrorNumber::InvalidFileFormat);

private Q_SLOTS:
    void everyFormIsExpanded_data()
    {
        QTest::addColumn<std::string>("text");
        QTest::newRow("empty") << ""s;
        QTest::newRow("one byte") << "A"s;
        QTest::newRow("bytes beyond ASCII") << "a\0b\xE4\xFF"s;
        QTest::newRow("as dense as can be") << std::string(3'000'000, ' ');
    }
    void everyFormIsExpanded()
    {
        QFETCH(const std::string, text);
        const auto length = static_cast<std::uint32_t>(text.size());
        QCOMPARE(expand(zlib(text), length), text);
        QCOMPARE(expand(gzip(text), length), text);
        QCOMPARE(expand(rawDeflate(text), length), text);
        QCOMPARE(expand(zlib(text) + "\r\nbehind", length), text);
    }

    void faultsAreRefused_data()
    {
        QTest::addColumn<std::string>("data");
        QTest::addColumn<quint32>("length");
        QTest::addColumn<int>("error");
        const std::string text = "Not hosting, not hosting, loading, hosting";
        const auto length = static_cast<quint32>(text.size());
        const auto allowed = static_cast<quint32>(Bounds().logTextBytes);
        std::string changed = zlib(text);
        changed[10] = static_cast<char>(changed[10] ^ 0x10);
        QTest::newRow("one byte less declared") << zlib(text) << length - 1 << damaged;
        QTest::newRow("one byte more declared") << zlib(text) << length + 1 << damaged;
        QTest::newRow("nothing declared") << zlib(text) << 0u << damaged;
        QTest::newRow("cut off in the check sum") << zlib(text).substr(0, zlib(text).size() - 1) << length << damaged;
        QTest::newRow("cut off in the text") << gzip(text).substr(0, 20) << length << damaged;
        QTest::newRow("changed on the way") << changed << length << damaged;
        QTest::newRow("not compressed") << text << length << damaged;
        QTest::newRow("one byte") << "x"s << 1u << damaged;
        QTest::newRow("nothing sent") << ""s << 1u << damaged;
        QTest::newRow("more than it can hold") << zlib(text) << allowed << damaged;
        QTest::newRow("much more than declared") << zlib(std::string(3'000'000, ' ')) << 1000u << damaged;
    }
    void faultsAreRefused()
    {
        QFETCH(const std::string, data);
        QFETCH(const quint32, length);
        QTEST(raisedBy([&] { expand(data, length); }), "error");
    }

    void ofALongTextTheBeginningIsExpanded()
    {
        std::string text(1'000'000, '\0');
        std::generate(text.begin(), text.end(), [at = 0u]() mutable {
            ++at;
            return static_cast<char>(at * at >> 7);
        });
        const auto length = static_cast<std::uint32_t>(text.size());
        for (const std::string& packed : {zlib(text), gzip(text), rawDeflate(text)}) {
            QVERIFY(expandBeginning(packed, length, 300'000) == text.substr(0, 300'000));
            QVERIFY(expandBeginning(packed, length, length - 1) == text); // it is hardly longer
            QCOMPARE(raisedBy([&] { expandBeginning(packed, 2 * length, 999'000); }), damaged);
        }
    }

    void nothingSentAndNothingDeclaredIsEmpty() { QCOMPARE(expand({}, 0), ""s); }
};

QTEST_APPLESS_MAIN(ExpansionTest)
#include "ExpansionTest.moc"
