#include "link/PackedReply.h"

#include "base/RaisedError.h"

#include <optional>

using namespace std::string_literals;

class PackedReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthAndDataStandAroundTheMarker_data()
    {
        QTest::addColumn<std::string>("body");
        QTest::addColumn<int>("error");
        QTest::addColumn<int>("length");
        QTest::addColumn<std::string>("data");
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        QTest::newRow("usual") << "12[-]Quorvane[-]abc"s << 0 << 12 << "abc"s;
        QTest::newRow("no data") << "0[-]Quorvane[-]"s << 0 << 0 << ""s;
        QTest::newRow("marker within the data") << "3[-]Quorvane[-]a[-]Quorvane[-]b"s << 0 << 3 << "a[-]Quorvane[-]b"s;
        QTest::newRow("no marker") << "True"s << subscript << 0 << ""s;
        QTest::newRow("half a marker") << "3[-]Quorvane"s << subscript << 0 << ""s;
        QTest::newRow("no length") << "[-]Quorvane[-]abc"s << mismatch << 0 << ""s;
        QTest::newRow("words for a length") << "many[-]Quorvane[-]abc"s << mismatch << 0 << ""s;
        QTest::newRow("a length beyond 32 bits")
            << "4294967297[-]Quorvane[-]abc"s << numberOf(ErrorNumber::Overflow) << 0 << ""s;
    }
    void lengthAndDataStandAroundTheMarker()
    {
        QFETCH(const std::string, body);
        QFETCH(const std::string, data);
        std::optional<PackedReply> reply;
        QTEST(raisedBy([&] { reply = splitPackedReply(body); }), "error");
        QTEST(reply ? reply->length : 0, "length");
        QCOMPARE(std::string(reply ? reply->data : std::string_view()), data);
    }
};

QTEST_APPLESS_MAIN(PackedReplyTest)
#include "PackedReplyTest.moc"
