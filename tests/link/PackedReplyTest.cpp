#include "link/PackedReply.h"

#include "base/RaisedError.h"
#include "support/AddRow.h"

#include <optional>

using namespace std::string_literals;

class PackedReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void lengthAndDataStandAroundTheMarker_data()
    {
        addColumns<std::string, int, int, std::string>("body", "error", "length", "data");
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        addRow("usual", "12[-]Quorvane[-]abc"s, 0, 12, "abc"s);
        addRow("no data", "0[-]Quorvane[-]"s, 0, 0, ""s);
        addRow("marker within the data", "3[-]Quorvane[-]a[-]Quorvane[-]b"s, 0, 3, "a[-]Quorvane[-]b"s);
        addRow("no marker", "True"s, subscript, 0, ""s);
        addRow("half a marker", "3[-]Quorvane"s, subscript, 0, ""s);
        addRow("no length", "[-]Quorvane[-]abc"s, mismatch, 0, ""s);
        addRow("words for a length", "many[-]Quorvane[-]abc"s, mismatch, 0, ""s);
        addRow("a length beyond 32 bits", "4294967297[-]Quorvane[-]abc"s, numberOf(ErrorNumber::Overflow), 0, ""s);
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

    void howManyBytesOfAListAreTaken_data()
    {
        addColumns<std::size_t, std::string, bool>("most", "taken", "isCut");
        QTest::newRow("all") << std::size_t{9} << "aa||b||cc"s << false;
        QTest::newRow("one less") << std::size_t{8} << "aa||b"s << true;
        QTest::newRow("up to a separator") << std::size_t{5} << "aa||b"s << true;
        QTest::newRow("within one") << std::size_t{4} << "aa"s << true;
        QTest::newRow("within the first element") << std::size_t{1} << ""s << true;
    }
    void howManyBytesOfAListAreTaken()
    {
        QFETCH(const std::size_t, most);
        const std::string data = qCompress("aa||b||cc", 9).mid(4).toStdString();
        const ListText list = expandList({9, data}, "||", most);
        QTEST(list.text, "taken");
        QTEST(list.isCut, "isCut");
    }
};

QTEST_APPLESS_MAIN(PackedReplyTest)
#include "PackedReplyTest.moc"
