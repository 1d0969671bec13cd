#include "profiles/ActionRequests.h"

#include "base/Base64.h"
#include "base/RaisedError.h"

using namespace std::string_literals;

class ActionRequestsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void requestsTravelAsTheTrackerReadsThem_data()
    {
        QTest::addColumn<Request>("request");
        QTest::addColumn<std::string>("name");
        QTest::addColumn<std::string>("bytes");
        const std::string user = "b\xF6"
                                 "b_x";
        QTest::newRow("attach") << attachRequest(user, "7") << "Attach"s
                                << "[ST]Attach_b\xF6"
                                   "b_x_VB6_7[ND]"s;
        QTest::newRow("attach to a process") << attachToProcessRequest("bob", "7", "2120") << "Attach"s
                                             << "[ST]Attach_bob_VB6_7_2120[ND]"s;
        QTest::newRow("detach") << detachRequest("bob", "7") << "Detach"s
                                << "[ST]Detach_bob_VB6_7[ND]"s;
        QTest::newRow("stop") << stopGameRequest("bob", "7") << "StopGame"s
                              << "[ST]StopGame_bob_VB6_7[ND]"s;
        QTest::newRow("delete") << deleteProfileRequest("bob", "A & B_\xE9") << "DeleteProfile"s
                                << "[ST]DeleteProfile_bob_A & B_\xE9_VB6_[ND]"s;
        QTest::newRow("delete a profile without name") << deleteProfileRequest("bob", "") << "DeleteProfile"s
                                                       << "[ST]DeleteProfile_bob__VB6_[ND]"s;
    }
    void requestsTravelAsTheTrackerReadsThem()
    {
        QFETCH(const Request, request);
        QTEST(request.name, "name");
        QTEST(framed(request), "bytes");
    }

    void anOutcomeIsToldFromAProcessList_data()
    {
        QTest::addColumn<bool>("isOutcome");
        QTest::addColumn<int>("elements");
        const auto row = [](const char* body, bool isOutcome, int elements) {
            QTest::newRow(body) << isOutcome << elements;
        };
        row("True", true, 1);
        row("False", true, 1);
        row("  False\t", true, 1);
        row("", false, 0);
        row("   ", false, 0);
        row("true", false, 1);
        row("TrueFalse", false, 1);
        row("True_False", false, 2);
        row("MXxh", false, 1);
        row("_MXxh_ _MnxicA==_", false, 2);
    }
    void anOutcomeIsToldFromAProcessList()
    {
        const std::string_view body = QTest::currentDataTag();
        QTEST(isAttachOutcome(body), "isOutcome");
        QTEST(static_cast<int>(splitProcessList(body).size()), "elements");
    }

    void aProcessIsDecoded_data()
    {
        QTest::addColumn<std::string>("element");
        QTest::addColumn<int>("error");
        QTest::addColumn<std::string>("id");
        QTest::addColumn<std::string>("name");
        const auto of = [](const char* text) { return base64::encode(text); };
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        QTest::newRow("a process") << of("2120|dfserver.exe") << 0 << "2120"s
                                   << "dfserver.exe"s;
        QTest::newRow("blanks around it") << "  " + of("1|a") + "\t" << 0 << "1"s
                                          << "a"s;
        QTest::newRow("bytes beyond ASCII, '_' and blanks") << of("1| \x80_\xFF ") << 0 << "1"s
                                                            << " \x80_\xFF "s;
        QTest::newRow("fields behind") << of("1|a|b") << 0 << "1"s
                                       << "a"s;
        QTest::newRow("empty fields") << of("|") << 0 << ""s
                                      << ""s;
        QTest::newRow("an id that is no number") << of("x_y|a") << 0 << "x_y"s
                                                 << "a"s;
        QTest::newRow("one field") << of("2120") << subscript << ""s
                                   << ""s;
        QTest::newRow("nothing") << ""s << subscript << ""s
                                 << ""s;
        QTest::newRow("no Base64") << "%%%%"s << mismatch << ""s
                                   << ""s;
        QTest::newRow("padding inside") << "MX==MXxh"s << mismatch << ""s
                                        << ""s;
    }
    void aProcessIsDecoded()
    {
        QFETCH(const std::string, element);
        ProcessRecord process;
        const int error = raisedBy([&] { process = decodeProcess(element); });
        QTEST(error, "error");
        QTEST(process.id, "id");
        QTEST(process.name, "name");
    }
};

QTEST_APPLESS_MAIN(ActionRequestsTest)
#include "ActionRequestsTest.moc"
