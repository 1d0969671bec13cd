#include "profiles/list/ActionRequests.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "support/AddRow.h"

using namespace std::string_literals;

class ActionRequestsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void anOutcomeIsToldFromAProcessList_data()
    {
        addColumns<bool, int>("isOutcome", "elements");
        const auto row = [](const char* body, bool isOutcome, int elements) { addRow(body, isOutcome, elements); };
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
        QTEST(static_cast<int>(splitProcessList(body, 100).size()), "elements");
    }

    void aProcessIsDecoded_data()
    {
        addColumns<std::string, int, std::string, std::string>("element", "error", "id", "name");
        const auto of = [](const char* text) { return base64::encode(text); };
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        addRow("a process", of("2120|dfserver.exe"), 0, "2120"s, "dfserver.exe"s);
        addRow("blanks around it", "  " + of("1|a") + "\t", 0, "1"s, "a"s);
        addRow("bytes beyond ASCII, '_' and blanks", of("1| \x80_\xFF "), 0, "1"s, " \x80_\xFF "s);
        addRow("fields behind", of("1|a|b"), 0, "1"s, "a"s);
        addRow("empty fields", of("|"), 0, ""s, ""s);
        addRow("an id that is no number", of("x_y|a"), 0, "x_y"s, "a"s);
        addRow("one field", of("2120"), subscript, ""s, ""s);
        addRow("nothing", ""s, subscript, ""s, ""s);
        addRow("no Base64", "%%%%"s, mismatch, ""s, ""s);
        addRow("padding inside", "MX==MXxh"s, mismatch, ""s, ""s);
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
