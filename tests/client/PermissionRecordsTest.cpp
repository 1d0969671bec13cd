#include "client/PermissionRecords.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "support/AddRow.h"

using namespace std::string_literals;

using Records = std::vector<PermissionRecord>;

class PermissionRecordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPrivilegeStringBecomesRecords_data()
    {
        addColumns<std::string, bool, Records>("text", "isSuper", "records");
        addRow("super", "Super"s, true, Records());
        addRow("super with a tail is not super", "Super|Profiles|Edit Profiles=1"s, false,
               Records{{"Profiles", {{"Edit Profiles", "1"}}, {}}});
        addRow("other letter case is not super", "super"s, false, Records());
        addRow("empty", ""s, false, Records());
        addRow("the first item is not used", "Profiles"s, false, Records());
        addRow("three sections, one without entries",
               "User|Profiles|Edit Profiles=1|Attach Profiles to Games=0|Options|Profile Admins|Kick User=1"s, false,
               Records{{"Profiles", {{"Edit Profiles", "1"}, {"Attach Profiles to Games", "0"}}, {}},
                       {"Options", {}, {}},
                       {"Profile Admins", {{"Kick User", "1"}}, {}}});
        addRow("an unknown section marked by its first entry", "User|Chat Relay|Restrict Access=0|Start Server=1"s,
               false, Records{{"Chat Relay", {{"Restrict Access", "0"}, {"Start Server", "1"}}, {}}});
        addRow("an unknown section without its mark", "User|Chat Relay|Restrict Access=1"s, false,
               Records{{"", {{"Restrict Access", "1"}}, {}}});
        addRow("an unnamed record is used again", "User|Chat Relay|Restrict Access=1|Options|View Options=1"s, false,
               Records{{"Options", {{"Restrict Access", "1"}, {"View Options", "1"}}, {}}});
        addRow("an unknown section at the very end", "User|Options|Chat Relay"s, false,
               Records{{"Options", {}, {}}, {"", {}, {}}});
        addRow("an entry whose value is no number is a section", "User|Options|View=yes|Change=1"s, false,
               Records{{"Options", {}, {}}, {"", {{"Change", "1"}}, {}}});
        addRow("an entry in front of all sections", "User|View=1"s, false, Records{{"", {{"View", "1"}}, {}}});
        addRow("nothing but separators", "||||"s, false, Records{{"", {}, {}}});
    }
    void aPrivilegeStringBecomesRecords()
    {
        QFETCH(const std::string, text);
        QFETCH(const Records, records);
        std::string encoded = base64::encode(text);
        const Permissions permissions = decodePermissions(encoded, 100);
        QTEST(permissions.isSuper, "isSuper");
        QVERIFY(permissions.records == records);
        QVERIFY(decodePermissions(encoded.insert(encoded.size() / 2, "[ND]"), 100) == permissions);
    }

    void whatIsNoBase64IsATypeMismatch()
    {
        QCOMPARE(raisedBy([] { decodePermissions("Su!er===", 100); }), numberOf(ErrorNumber::TypeMismatch));
    }

    void privilegesAreFoundBySectionAndName()
    {
        const Permissions permissions =
            decodePermissions(base64::encode("User|Profiles|Edit Profiles=1|Options|Edit Profiles=0"), 100);
        QVERIFY(permissions.value("Profiles", "Edit Profiles") == "1");
        QVERIFY(permissions.value("Options", "Edit Profiles") == "0");
        QVERIFY(!permissions.value("Profiles", "Edit"));
        QVERIFY(!permissions.value("Profile", "Edit Profiles"));
        QVERIFY(!permissions.find("Profile Admins"));
    }

    void aPluginIsRestrictedUnlessARecordNamesIt_data()
    {
        addColumns<std::string, std::string, bool>("text", "plugin", "restricted");
        const auto named = "User|BHD Auto Start|Restrict Access=0"s;
        addRow("super", "Super"s, "Anything"s, false);
        addRow("no records", "User"s, "Chat Relay"s, true);
        addRow("its own record", named, "BHD Auto Start"s, false);
        addRow("a part of a record's name", named, "Auto"s, false);
        addRow("more than a record's name", named, "BHD Auto Start 2"s, true);
        addRow("other letter case", named, "bhd auto start"s, true);
        addRow("restricted, so its record has no name", "User|BHD Auto Start|Restrict Access=1"s, "BHD Auto Start"s,
               true);
    }
    void aPluginIsRestrictedUnlessARecordNamesIt()
    {
        QFETCH(const std::string, text);
        QFETCH(const std::string, plugin);
        QTEST(decodePermissions(base64::encode(text), 100).isPluginRestricted(plugin), "restricted");
    }
};

QTEST_APPLESS_MAIN(PermissionRecordsTest)
#include "PermissionRecordsTest.moc"
