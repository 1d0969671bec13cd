#include "link/ReplyAssembler.h"

#include "base/RaisedError.h"

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
        QTest::addColumn<std::string>("bytes");
        QTest::addColumn<Bodies>("bodies");
        QTest::newRow("one message") << "0000011[ST]abc[ND]"s << Bodies{"abc"};
        QTest::newRow("nothing in it") << "0000008[ST][ND]"s << Bodies{""};
        QTest::newRow("two replies") << "0000009[ST]A[ND]0000009[ST]B[ND]"s << Bodies{"A", "B"};
        QTest::newRow("two messages under one prefix") << "0000018[ST]A[ND][ST]B[ND]"s << Bodies{"A", "B"};
        QTest::newRow("an empty one between")
            << "0000009[ST]A[ND]0000008[ST][ND]0000009[ST]B[ND]"s << Bodies{"A", "", "B"};
        QTest::newRow("letters for a length") << "length?[ST]A[ND]"s << Bodies{"A"};
        QTest::newRow("no prefix at all") << "[ST]A[ND]"s << Bodies{"A"};
        QTest::newRow("negative length") << "-000009[ST]A[ND]"s << Bodies{"A"};
        QTest::newRow("far too small a length") << "0000000[ST]A[ND]"s << Bodies{"A"};
        QTest::newRow("far too large a length") << "9999999[ST]A[ND]"s << Bodies{"A"};
        QTest::newRow("beginnings of markers inside") << "0000019[ST][N[[ND[S[ST[ND]"s << Bodies{"[N[[ND[S[ST"};
        QTest::newRow("a second start marker ends the body") << "0000014[ST]A[ST]B[ND]"s << Bodies{"A"};
        QTest::newRow("a piece without a start marker") << "0000008junk[ND]0000009[ST]B[ND]"s << Bodies{"B"};
        QTest::newRow("zero bytes") << "0000011[ST]a\0b[ND]"s << Bodies{"a\0b"s};
    }
    void howAReplyIsCutUpMakesNoDifference()
    {
        QFETCH(const std::string, bytes);
        QFETCH(const std::vector<std::string>, bodies);
        for (std::size_t cut = 0; cut <= bytes.size(); ++cut) {
            Receiver receiver;
            receiver.receive(std::string_view(bytes).substr(0, cut));
            receiver.receive(std::string_view(bytes).substr(cut));
            QVERIFY2(receiver.bodies == bodies, qPrintable(QString::number(cut)));
            QCOMPARE(receiver.waiting(), std::size_t{0});
        }
        Receiver byteByByte;
        for (const char byte : bytes)
            byteByByte.receive({&byte, 1});
        QVERIFY(byteByByte.bodies == bodies);
    }

    void whatStandsBehindTheLastMessageBeginsTheNextReply()
    {
        Receiver receiver;
        receiver.receive("0000009[ST]A[ND]000");
        QCOMPARE(receiver.bodies.size(), std::size_t{1});
        QCOMPARE(receiver.waiting(), std::size_t{3});
        receiver.receive("0009[ST]B");
        QCOMPARE(receiver.waiting(), std::size_t{5});
        receiver.receive("[ND]");
        QCOMPARE(receiver.bodies, (std::vector<std::string>{"A", "B"}));
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

    void aReplyThatNeverEndsIsGivenUp()
    {
        ReplyAssembler assembler;
        const std::string chunk(ReplyAssembler::maxReplyBytes / 4, 'x');
        for (int i = 0; i < 4; ++i)
            assembler.add(chunk);
        QCOMPARE(raisedBy([&] { assembler.add("x"); }), numberOf(ErrorNumber::OutOfMemory));
        assembler.add("0000009[ST]A[ND]");
        QCOMPARE(textOf(assembler.take()), "[ST]A[ND]"s);
    }

    void loginRepliesAreRecognisedAnywhere_data()
    {
        QTest::addColumn<std::string>("reply");
        QTest::addColumn<int>("kind");
        QTest::newRow("failure") << "[ST]Login Failed: wrong password.[ND]"s << int(ReplyKind::LoginFailed);
        QTest::newRow("failure far inside") << "[ST]a[ND][ST]b_Login Failed_c[ND]"s << int(ReplyKind::LoginFailed);
        QTest::newRow("failure in front of success")
            << "[ST]Success_a_b_c_1[ND][ST]Login Failed[ND]"s << int(ReplyKind::LoginFailed);
        QTest::newRow("success") << "[ST]Success_a_b_c_1[ND]"s << int(ReplyKind::LoginSucceeded);
        QTest::newRow("success behind another")
            << "[ST]x[ND][ST]Success_a_b_c_1[ND]"s << int(ReplyKind::LoginSucceeded);
        QTest::newRow("success without its marker") << "[ST] Success_a_b_c_1[ND]"s << int(ReplyKind::Messages);
        QTest::newRow("other letter case") << "[ST]login failed[ND]"s << int(ReplyKind::Messages);
        QTest::newRow("two blanks") << "[ST]Login  Failed[ND]"s << int(ReplyKind::Messages);
        QTest::newRow("failure behind the end") << "[ST]x[ND]0000099[ST]Login Failed"s << int(ReplyKind::Messages);
        QTest::newRow("success behind the end") << "[ST]x[ND]0000099[ST]Success_a"s << int(ReplyKind::Messages);
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
        QTest::addColumn<std::string>("reply");
        QTest::addColumn<int>("error");
        QTest::addColumn<std::string>("privileges");
        QTest::addColumn<int>("port");
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        QTest::newRow("as it should be") << "[ST]Success_a_b_U3VwZXI=_8000[ND]"s << 0 << "U3VwZXI="s << 8000;
        QTest::newRow("a field more") << "[ST]Success_a_b_U3VwZXI=_8000_x[ND]"s << 0 << "U3VwZXI="s << 8000;
        QTest::newRow("behind another message")
            << "[ST]a_b_c_d_e[ND]0000099[ST]Success_a_b_U3VwZXI=_1[ND]"s << 0 << "U3VwZXI="s << 1;
        QTest::newRow("no privileges") << "[ST]Success_a_b__8000[ND]"s << 0 << ""s << 8000;
        QTest::newRow("no port") << "[ST]Success_a_b_c[ND]"s << subscript << ""s << 0;
        QTest::newRow("nothing but the word") << "[ST]Success_[ND]"s << subscript << ""s << 0;
        QTest::newRow("empty port") << "[ST]Success_a_b_c_[ND]"s << mismatch << ""s << 0;
        QTest::newRow("letters for a port") << "[ST]Success_a_b_c_80a0[ND]"s << mismatch << ""s << 0;
        QTest::newRow("a port beyond all bounds")
            << "[ST]Success_a_b_c_99999999999[ND]"s << numberOf(ErrorNumber::Overflow) << ""s << 0;
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
