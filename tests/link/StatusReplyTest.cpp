#include "link/StatusReply.h"

#include "base/RaisedError.h"
#include "link/Request.h"
#include "support/AddRow.h"

using namespace std::string_literals;

using Plugins = std::vector<TrackerPlugin>;

class StatusReplyTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aStatusReplyNamesTheTrackersPlugins_data()
    {
        addColumns<std::string, int, Plugins>("body", "error", "plugins");
        constexpr int subscript = numberOf(ErrorNumber::SubscriptOutOfRange);
        constexpr int mismatch = numberOf(ErrorNumber::TypeMismatch);
        addRow("three and four fields", "Status_QUJD-1-REVG|R0hJ-2-SktM-x"s, 0, Plugins{{"ABC", {}}, {"GHI", "x"}});
        addRow("a version with a fifth field", "Status_QUJD-1-REVG-1.0-2"s, 0, Plugins{{"ABC", "1.0"}});
        addRow("a name alone", "Status_QUJD"s, 0, Plugins{{"ABC", {}}});
        addRow("an empty version", "Status_QUJD-1-REVG-"s, 0, Plugins{{"ABC", ""}});
        addRow("no plugins", "Status_"s, 0, Plugins());
        addRow("nothing", ""s, 0, Plugins());
        addRow("blank entries", "Status_ | |QUJD-1-x|"s, 0, Plugins{{"ABC", {}}});
        addRow("words behind the first entry", "Status_QUJD_R0hJ|R0hJ"s, 0, Plugins{{"ABC", {}}, {"GHI", {}}});
        addRow("a blank first entry has no word", " |QUJD-1-x"s, 0, Plugins{{"ABC", {}}});
        addRow("no leading word", "QUJD-1-x"s, subscript, Plugins());
        addRow("the second name is no Base64", "Status_QUJD-1-x|%%%%-1-x"s, mismatch, Plugins{{"ABC", {}}});
    }
    void aStatusReplyNamesTheTrackersPlugins()
    {
        QFETCH(const std::string, body);
        QFETCH(const Plugins, plugins);
        Plugins decoded;
        const int error = raisedBy([&] {
            for (const std::string_view entry : splitStatusReply(body, 100))
                decoded.push_back(decodeStatusEntry(entry));
        });
        QTEST(error, "error");
        QVERIFY(decoded == plugins);
    }

    void aPluginMessageNamesItsComponent_data()
    {
        addColumns<std::string, bool, int, std::string, std::string>("body", "isOne", "error", "component", "payload");
        addRow("payload with separators", "Plugin_qrvStats_a_b"s, true, 0, "qrvrcStats"s, "a_b"s);
        addRow("every occurrence is renamed", "Plugin_qrvXqrvY_p"s, true, 0, "qrvrcXqrvrcY"s, "p"s);
        addRow("other letter case stays", "Plugin_QRVStats_p"s, true, 0, "QRVStats"s, "p"s);
        addRow("a longer first word", "Plugins_qrvStats"s, true, 0, "qrvrcStats"s, ""s);
        addRow("payload of separators", "Plugin_x___"s, true, 0, "x"s, "__"s);
        addRow("no component", "Plugin"s, true, numberOf(ErrorNumber::SubscriptOutOfRange), ""s, ""s);
        addRow("other letter case is none", "plugin_qrvStats"s, false, 0, "qrvrcStats"s, ""s);
        addRow("too short", "Plugi"s, false, numberOf(ErrorNumber::SubscriptOutOfRange), ""s, ""s);
    }
    void aPluginMessageNamesItsComponent()
    {
        QFETCH(const std::string, body);
        QTEST(isPluginMessage(body), "isOne");
        PluginMessage message;
        const int error = raisedBy([&] { message = decodePluginMessage(body); });
        QTEST(error, "error");
        QTEST(message.component, "component");
        QTEST(message.payload, "payload");
    }
};

QTEST_APPLESS_MAIN(StatusReplyTest)
#include "StatusReplyTest.moc"
