#include "admins/AdminRecords.h"
#include "base/RuntimeError.h"
#include "diagnostics/help/HelpBounds.h"
#include "diagnostics/report/ErrorBrake.h"
#include "link/PackedReply.h"
#include "link/ReplyAssembler.h"
#include "live/support/Conversation.h"
#include "profiles/files/RemoteFiles.h"
#include "profiles/list/ProfileRecord.h"
#include "store/Expansion.h"

#include <QTest>

#include <functional>

using namespace std::chrono_literals;

namespace {

/// Whether so much more than a bound allows is taken whole.
using IsTaken = std::function<bool(std::size_t more)>;

std::string repeated(std::string_view text, std::size_t times)
{
    std::string all;
    while (times-- > 0)
        all += text;
    return all;
}

bool isRefused(const std::function<void()>& action)
{
    try {
        action();
        return false;
    } catch (const RuntimeError& error) {
        return error.number() == ErrorNumber::OutOfMemory;
    }
}

PackedReply packed(const std::string& text, QByteArray& keeper)
{
    keeper = qCompress(QByteArray::fromStdString(text)).mid(4);
    return {static_cast<std::int32_t>(text.size()),
            std::string_view(keeper.constData(), static_cast<std::size_t>(keeper.size()))};
}

RemoteFileList filesOf(const std::string& text, const Bounds& bounds)
{
    QByteArray keeper;
    return readFileList(packed(text, keeper), remoteFileTypes[0], bounds);
}

bool isShown(const std::string& page)
{
    return canBeLaidOut(page, Bounds());
}

bool allStay(const Bounds& bounds, const std::string& entry, int entries)
{
    Conversation talk(bounds);
    for (int number = 0; number < entries; ++number)
        talk.add(entry);
    return talk.first() == 0;
}

} // namespace

class BoundsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsBeyondABoundIsNotTaken_data()
    {
        QTest::addColumn<IsTaken>("isTaken");
        const Bounds bounds;
        const auto row = [](const char* name, const IsTaken& isTaken) { QTest::newRow(name) << isTaken; };
        row("bytes of a reply", [bounds](std::size_t more) {
            ReplyAssembler assembler;
            const std::string quarter(bounds.replyBytes / 4, 'x');
            for (int part = 0; part < 4; ++part)
                assembler.add(quarter);
            const bool isWhole = !isRefused([&] { assembler.add(std::string(more, 'x')); });
            if (!isWhole) // nothing of it is left
                assembler.add("0000009[ST]A[ND]");
            return isWhole || !assembler.take();
        });
        row("bytes of a list",
            [](std::size_t more) { return !filesOf(std::string(100 + more, 'x') + "|a|1", {.listBytes = 104}).isCut; });
        row("rows of the files",
            [](std::size_t more) { return !filesOf(repeated("n|d|1||", 3 + more), {.listRows = 3}).isCut; });
        row("rows of the accounts", [](std::size_t more) {
            QByteArray keeper;
            return !readAdmins(packed(repeated("YQ==|YQ==|h|s[-]", 3 + more), keeper), {.listRows = 3}).areAccountsCut;
        });
        row("rows of the profiles", [](std::size_t more) {
            return !splitProfilesReply("Profiles_A_B_" + repeated("C_", more) + "1/|2/", 2).isCut;
        });
        row("bytes of a log text", [](std::size_t more) {
            return !isRefused([more] {
                QByteArray keeper;
                const PackedReply reply = packed(std::string(50 + more, 'x'), keeper);
                expand(reply.data, static_cast<std::uint32_t>(reply.length), {.logTextBytes = 50});
            });
        });
        row("expansion of a text", [](std::size_t more) {
            QByteArray keeper;
            const PackedReply reply = packed(std::string(12 * 20, 'x'), keeper);
            const std::size_t factor = (12 * 20 - 1) / reply.data.size() + 1 - more;
            try {
                return !expand(reply.data, 12 * 20, {.expansionFactor = factor}).empty();
            } catch (const RuntimeError&) {
                return false;
            }
        });
        row("equal errors", [bounds](std::size_t more) {
            ErrorBrake brake(bounds);
            const ErrorBrake::Time start;
            brake.admitError({"p", 1, "x"}, start);
            return brake.admitError({"p", 1, "x"}, start + bounds.equalErrorsPeriod - more * 1s).has_value();
        });
        row("different errors", [](std::size_t more) {
            ErrorBrake brake({.differentErrors = 3});
            bool isLogged = false;
            for (std::size_t error = 0; error < 3 + more; ++error)
                isLogged = brake.admitError({"p", static_cast<std::int32_t>(error), "x"}, {}).has_value();
            return isLogged;
        });
        row("reports of a minute", [bounds](std::size_t more) {
            ErrorBrake brake(bounds);
            bool isSent = false;
            for (int report = 0; report < bounds.reportsPerMinute + static_cast<int>(more); ++report)
                isSent = brake.admitReport({}).has_value();
            return isSent;
        });
        row("bytes of a description", [bounds](std::size_t more) {
            const std::size_t before = RuntimeError(ErrorNumber::Overflow, "x").description().size() - 1;
            const std::string detail(bounds.descriptionBytes - before + more, 'x');
            return RuntimeError(ErrorNumber::Overflow, detail).description().ends_with(detail);
        });
        row("bytes of a help page",
            [bounds](std::size_t more) { return isShown(repeated("x ", bounds.helpPageBytes / 2 + more)); });
        row("tags", [bounds](std::size_t more) { return isShown(repeated("<br>", bounds.helpTags + more)); });
        row("lines of a text",
            [bounds](std::size_t more) { return isShown("<pre>" + repeated("\n", bounds.helpTags - 1 + more)); });
        row("elements in elements",
            [bounds](std::size_t more) { return isShown(repeated("<div></b>", bounds.helpNesting + more)); });
        row("tables in tables", [](std::size_t more) { return isShown(repeated("<table><tr><TD>", 8 + more)); });
        row("cells", [](std::size_t more) {
            return isShown("<table><tr>" + repeated("<td>", 99 + more) + repeated("<tr>", 99));
        });
        row("pictures", [bounds](std::size_t more) { return isShown(repeated("<img> ", bounds.helpPictures + more)); });
        row("style rules",
            [bounds](std::size_t more) { return isShown("<style>" + repeated("p{}", bounds.helpStyleRules + more)); });
        row("a word",
            [](std::size_t more) { return isShown(repeated("<b>a</b>&amp;", 500) + repeated("<x>a", more)); });
        row("bytes of the conversation",
            [](std::size_t more) { return allStay({.conversationBytes = 12 - more}, "ab", 3); });
        row("lines of the conversation",
            [](std::size_t more) { return allStay({.conversationLines = 6 - more}, "a\r\nb", 2); });
        row("lines of a message", [](std::size_t more) {
            Conversation talk({.messageLines = 4});
            talk.add(repeated("a\r\n", 4 + more));
            return talk.shownText() == "a\na\na\na\n\n";
        });
    }
    void whatIsBeyondABoundIsNotTaken()
    {
        QFETCH(const IsTaken, isTaken);
        QVERIFY(isTaken(0));
        QVERIFY(!isTaken(1));
    }
};

QTEST_APPLESS_MAIN(BoundsTest)
#include "BoundsTest.moc"
