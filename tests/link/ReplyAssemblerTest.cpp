#include "link/ReplyAssembler.h"

#include "base/RaisedError.h"
#include "support/AddRow.h"

using namespace std::string_literals;

namespace {

std::string textOf(const std::optional<Reply>& reply)
{
    return reply ? reply->text : "nothing";
}

/// Collects message bodies from whatever is complete after each chunk.
class Receiver
{
public:
    void receive(std::string_view chunk)
    {
        m_assembler.add(chunk);
        while (const auto reply = m_assembler.take()) {
            for (const std::string_view body : messagesOf(reply->text))
                bodies.emplace_back(body);
        }
    }
    std::size_t waiting() const { return m_assembler.received(); }

    std::vector<std::string> bodies;

private:
    ReplyAssembler m_assembler;
};

} // namespace

class ReplyAssemblerTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void howAReplyIsCutUpMakesNoDifference_data()
    {
        using Bodies = std::vector<std::string>;
        addColumns<std::string, Bodies>("bytes", "bodies");
        addRow("one message", "0000011[ST]abc[ND]"s, Bodies{"abc"});
        addRow("nothing in it", "0000008[ST][ND]"s, Bodies{""});
        addRow("two replies", "0000009[ST]A[ND]0000009[ST]B[ND]"s, Bodies{"A", "B"});
        addRow("two messages under one prefix", "0000018[ST]A[ND][ST]B[ND]"s, Bodies{"A", "B"});
        addRow("an empty one between", "0000009[ST]A[ND]0000008[ST][ND]0000009[ST]B[ND]"s, Bodies{"A", "", "B"});
        addRow("letters for a length", "length?[ST]A[ND]"s, Bodies{"A"});
        addRow("no prefix at all", "[ST]A[ND]"s, Bodies{"A"});
        addRow("negative length", "-000009[ST]A[ND]"s, Bodies{"A"});
        addRow("far too small a length", "0000000[ST]A[ND]"s, Bodies{"A"});
        addRow("far too large a length", "9999999[ST]A[ND]"s, Bodies{"A"});
        addRow("beginnings of markers inside", "0000019[ST][N[[ND[S[ST[ND]"s, Bodies{"[N[[ND[S[ST"});
        addRow("a second start marker ends the body", "0000014[ST]A[ST]B[ND]"s, Bodies{"A"});
        addRow("a piece without a start marker", "0000008junk[ND]0000009[ST]B[ND]"s, Bodies{"B"});
        addRow("eight digits", "10000000[ST]A[ND]"s, Bodies{"A"});
        addRow("nine digits", "268435456[ST]A[ND]"s, Bodies{"A"});
        addRow("eight digits among seven", "0000009[ST]A[ND]10000000[ST]B[ND]99999999[ST]C[ND]0000009[ST]D[ND]"s,
               Bodies{"A", "B", "C", "D"});
        addRow("zero bytes", "0000011[ST]a\0b[ND]"s, Bodies{"a\0b"s});
    }
    void howAReplyIsCutUpMakesNoDifference()
    {
        QFETCH(const std::string, bytes);
        QFETCH(const std::vector<std::string>, bodies);
        for (std::size_t first = 0; first <= bytes.size(); ++first) {
            for (std::size_t second = first; second <= bytes.size(); ++second) {
                Receiver receiver;
                receiver.receive(std::string_view(bytes).substr(0, first));
                receiver.receive(std::string_view(bytes).substr(first, second - first));
                receiver.receive(std::string_view(bytes).substr(second));
                QVERIFY2(receiver.bodies == bodies, qPrintable(QStringLiteral("%1, %2").arg(first).arg(second)));
                QCOMPARE(receiver.waiting(), std::size_t{0});
            }
        }
        Receiver byteByByte;
        for (const char byte : bytes)
            byteByByte.receive({&byte, 1});
        QVERIFY(byteByByte.bodies == bodies);
    }

    void messagesThatArriveTogetherAreOneReply()
    {
        // So a wait for the reply ends behind the last of them.
        ReplyAssembler assembler;
        assembler.add("0000009[ST]A[ND]0000009[ST]B[ND]00");
        QCOMPARE(textOf(assembler.take()), "[ST]A[ND]0000009[ST]B[ND]"s);
        QVERIFY(!assembler.take());
        QCOMPARE(assembler.received(), std::size_t{2});
    }

    void aTextTakenBackGivesItsRoomToTheNextReply()
    {
        ReplyAssembler assembler;
        assembler.add("0000100[ST]" + std::string(92, 'x') + "[ND]0000014[ST]ne");
        std::optional<Reply> first = assembler.take();
        QVERIFY(first);
        const char* const room = first->text.data();
        assembler.reuse(std::move(first->text));
        QCOMPARE(assembler.received(), std::size_t{6});
        assembler.add("xt[ND]");
        const std::optional<Reply> next = assembler.take();
        QCOMPARE(textOf(next), "[ST]next[ND]"s);
        QVERIFY(next->text.data() == room);
    }

    void theLengthIsKnownFromTheSeventhByteToTheEnd()
    {
        ReplyAssembler assembler;
        assembler.add("00005");
        QCOMPARE(assembler.expectedLength(), 0);
        assembler.add("13[ST]");
        QCOMPARE(assembler.expectedLength(), 513);
        QCOMPARE(assembler.received(), std::size_t{4});
        assembler.add("[ND]");
        QVERIFY(assembler.take());
        QCOMPARE(assembler.expectedLength(), 0);
        assembler.add("0000600[ST]half");
        assembler.reset();
        QCOMPARE(assembler.expectedLength(), 0);
        assembler.add("0000009[ST]A[ND]");
        QCOMPARE(textOf(assembler.take()), "[ST]A[ND]"s);
    }

    void loginRepliesAreRecognisedAnywhere_data()
    {
        addColumns<std::string, int>("reply", "kind");
        addRow("failure", "[ST]Login Failed: wrong password.[ND]"s, int(ReplyKind::LoginFailed));
        addRow("failure far inside", "[ST]a[ND][ST]b_Login Failed_c[ND]"s, int(ReplyKind::LoginFailed));
        addRow("failure in front of success", "[ST]Success_a_b_c_1[ND][ST]Login Failed[ND]"s,
               int(ReplyKind::LoginFailed));
        addRow("success", "[ST]Success_a_b_c_1[ND]"s, int(ReplyKind::LoginSucceeded));
        addRow("success behind another", "[ST]x[ND][ST]Success_a_b_c_1[ND]"s, int(ReplyKind::LoginSucceeded));
        addRow("success without its marker", "[ST] Success_a_b_c_1[ND]"s, int(ReplyKind::Messages));
        addRow("other letter case", "[ST]login failed[ND]"s, int(ReplyKind::Messages));
        addRow("two blanks", "[ST]Login  Failed[ND]"s, int(ReplyKind::Messages));
        addRow("failure behind the end", "[ST]x[ND]0000099[ST]Login Failed"s, int(ReplyKind::Messages));
        addRow("success behind the end", "[ST]x[ND]0000099[ST]Success_a"s, int(ReplyKind::Messages));
    }
    void loginRepliesAreRecognisedAnywhere()
    {
        QFETCH(const std::string, reply);
        QFETCH(const int, kind);
        const std::size_t end = reply.rfind("[ND]");
        for (std::size_t cut = 0; cut <= end; ++cut) {
            ReplyAssembler assembler;
            assembler.add("0000099" + reply.substr(0, cut));
            assembler.add(reply.substr(cut));
            const std::optional<Reply> taken = assembler.take();
            QVERIFY(taken);
            QCOMPARE(int(taken->kind), kind);
        }
    }

    void aFailureIsToldInTheTrackersWords()
    {
        QCOMPARE(loginFailureText("[ST]Login Failed: [no] such user[ND][ST]![ND]"), "Login Failed: [no] such user!"s);
    }

    void aSuccessGivesPrivilegesAndPort_data()
    {
        addColumns<std::string, int, std::string, int>("reply", "error", "privileges", "port");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        addRow("as it should be", "[ST]Success_a_b_U3VwZXI=_8000[ND]"s, 0, "U3VwZXI="s, 8000);
        addRow("a field more", "[ST]Success_a_b_U3VwZXI=_8000_x[ND]"s, 0, "U3VwZXI="s, 8000);
        addRow("behind another message", "[ST]a_b_c_d_e[ND]0000099[ST]Success_a_b_U3VwZXI=_1[ND]"s, 0, "U3VwZXI="s, 1);
        addRow("no privileges", "[ST]Success_a_b__8000[ND]"s, 0, ""s, 8000);
        addRow("privileges that are no Base64", "[ST]Success_a_b_?&!x_8000[ND]"s, mismatch, ""s, 0);
        addRow("privileges with an end in them", "[ST]Success_a_b_U3Vw[ND]ZXI=_8000[ND]"s, 0, "U3Vw[ND]ZXI="s, 8000);
        addRow("no port", "[ST]Success_a_b_c[ND]"s, subscript, ""s, 0);
        addRow("nothing but the word", "[ST]Success_[ND]"s, subscript, ""s, 0);
        addRow("empty port", "[ST]Success_a_b_c_[ND]"s, mismatch, ""s, 0);
        addRow("letters for a port", "[ST]Success_a_b_c_80a0[ND]"s, mismatch, ""s, 0);
        addRow("a port beyond all bounds", "[ST]Success_a_b_c_99999999999[ND]"s, numberOf(ErrorNumber::Overflow), ""s,
               0);
    }
    void aSuccessGivesPrivilegesAndPort()
    {
        QFETCH(const std::string, reply);
        LoginSuccess success;
        const int error = raisedBy([&] { success = decodeLoginSuccess(reply); });
        QTEST(error, "error");
        QTEST(success.privileges, "privileges");
        QTEST(int(success.supportPort), "port");
    }
};

QTEST_APPLESS_MAIN(ReplyAssemblerTest)
#include "ReplyAssemblerTest.moc"
