#include "base/Text.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "support/AddRow.h"

#include <QtTest>

using namespace std::string_literals;

class TextTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void numbersAreReadOrRefused_data()
    {
        addColumns<std::string, bool, int, int>("text", "numeric", "error", "value");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        constexpr int overflow = numberOf(ErrorNumber::Overflow);
        QTest::newRow("blanks around") << " \t42 "s << true << 0 << 42;
        QTest::newRow("plus") << "+7"s << false << 0 << 7;
        QTest::newRow("lowest") << "-2147483648"s << false << 0 << std::numeric_limits<int>::min();
        QTest::newRow("one too many") << "2147483648"s << true << overflow << 0;
        QTest::newRow("far too many") << std::string(40, '9') << true << overflow << 0;
        QTest::newRow("empty") << ""s << false << mismatch << 0;
        QTest::newRow("blanks only") << "  "s << false << mismatch << 0;
        QTest::newRow("sign only") << "-"s << false << mismatch << 0;
        QTest::newRow("two signs") << "+-5"s << false << mismatch << 0;
        QTest::newRow("sign and blank") << "- 5"s << false << mismatch << 0;
        QTest::newRow("tail") << "5x"s << false << mismatch << 0;
        QTest::newRow("fraction") << "5.0"s << false << mismatch << 0;
        QTest::newRow("NUL") << "5\0"s << false << mismatch << 0;
    }
    void numbersAreReadOrRefused()
    {
        QFETCH(const std::string, text);
        QFETCH(const int, error);
        QTEST(isNumeric(text), "numeric");
        int value = 0;
        QCOMPARE(raisedBy([&] { value = toInt32(text); }), error);
        QTEST(value, "value");
        QCOMPARE(parseInt32(text).has_value(), error == 0);
    }

    void replacingGoesOnceFromTheLeft()
    {
        QCOMPARE(replaced("aaaa", "aa", "a"), "aa"s);
        QCOMPARE(without("www.wwww..x", "www."), "w.x"s);
        QCOMPARE(without("", "x"), ""s);
    }

    void fieldsKeepTheirPlaces()
    {
        const FieldList fields("a||c|", '|');
        QCOMPARE(fields.size(), std::size_t{4});
        QCOMPARE(std::string(fields.at(1)), ""s);
        QCOMPARE(std::string(fields.from(1)), "|c|"s);
        QCOMPARE(std::string(fields.from(3)), ""s);
        QCOMPARE(std::string(fields.from(4)), ""s);
        QCOMPARE(FieldList("", '|').size(), std::size_t{1});
    }

    void aBoundedListMayBeFullAndNoFuller()
    {
        QCOMPARE(splitBounded("a||c", '|', 3, "things").size(), std::size_t{3});
        QCOMPARE(raisedBy([] { splitBounded("a||c|", '|', 3, "things"); }), numberOf(ErrorNumber::Overflow));
    }

    void anErrorTellsTheLineOfItsCaller()
    {
        const FieldList fields("a", '|');
        const int here = __LINE__ + 2;
        try {
            fields.at(1);
            QFAIL("a field that is not there was found");
        } catch (const RuntimeError& error) {
            QCOMPARE(error.line(), here);
            QCOMPARE(error.description(), "Subscript out of range"s);
        }
        QCOMPARE(RuntimeError(ErrorNumber::FileNotFound, "a.txt").description(), "File not found: a.txt"s);
    }

    void base64IsDecodedOrRefused_data()
    {
        addColumns<std::string, int, std::string>("text", "error", "bytes");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        QTest::newRow("empty") << ""s << 0 << ""s;
        QTest::newRow("two missing") << "QQ=="s << 0 << "A"s;
        QTest::newRow("one missing") << "QUI="s << 0 << "AB"s;
        QTest::newRow("last characters of the alphabet") << "+/+/"s << 0 << "\xFB\xFF\xBF"s;
        QTest::newRow("bits beyond the last byte") << "QR=="s << 0 << "A"s;
        QTest::newRow("less than a group") << "QQ="s << 0 << ""s;
        QTest::newRow("broken group behind") << "QUJDQ="s << 0 << "ABC"s;
        QTest::newRow("bad characters behind") << "QUJD\n*"s << 0 << "ABC"s;
        QTest::newRow("padding of three") << "Q==="s << mismatch << ""s;
        QTest::newRow("padding only") << "===="s << mismatch << ""s;
        QTest::newRow("padding before the end") << "QQ=A"s << mismatch << ""s;
        QTest::newRow("padding inside") << "QQ==QUJD"s << mismatch << ""s;
        QTest::newRow("line break") << "QU\r\nJDQU"s << mismatch << ""s;
        QTest::newRow("alphabet of web addresses") << "-_-_"s << mismatch << ""s;
        QTest::newRow("beyond ASCII") << "QUJ\xE4"s << mismatch << ""s;
    }
    void base64IsDecodedOrRefused()
    {
        QFETCH(const std::string, text);
        std::string bytes;
        QTEST(raisedBy([&] { bytes = base64::decode(text); }), "error");
        QTEST(bytes, "bytes");
    }

    void base64AgreesWithAnotherCodec()
    {
        QByteArray bytes;
        for (int length = 0; length < 600; ++length) {
            const QByteArray text = bytes.toBase64();
            QCOMPARE(base64::encode(bytes.toStdString()), text.toStdString());
            QCOMPARE(base64::decode(text.toStdString()), bytes.toStdString());
            std::string room(static_cast<std::size_t>(length) + 1, '~');
            QCOMPARE(base64::decode(text.toStdString(), room), std::string_view(room).substr(0, room.size() - 1));
            QCOMPARE(room, bytes.toStdString() + '~');
            bytes.append(static_cast<char>(length * 7 + length / 256));
        }
    }

    void aFaultIsSeenInEveryPlace()
    {
        for (std::size_t place = 0; place < 12; ++place) {
            std::string text = "QUJDREVGR0hJ";
            text[place] = '*';
            QCOMPARE(raisedBy([&] { base64::decode(text); }), numberOf(ErrorNumber::TypeMismatch));
        }
    }
};

QTEST_APPLESS_MAIN(TextTest)
#include "TextTest.moc"
