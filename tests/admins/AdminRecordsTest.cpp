#include "admins/AdminRecords.h"

#include "base/Base64.h"
#include "base/RaisedError.h"

#include <QTest>

using namespace Qt::StringLiterals;

namespace {

using Kind = ChecklistRow::Kind;

/// The whole checklist of a reply.
Checklist checklistOf(std::string_view body)
{
    Checklist rows;
    for (const std::string_view section : splitChecklist(body)) {
        for (ChecklistRow& row : decodeSection(section))
            rows.push_back(std::move(row));
    }
    return rows;
}

/// One character a row: "S" section, "-" separator, "R" and "r" a restriction, "P" and "p" any other privilege, capital
/// when granted.
std::string sketched(const Checklist& rows)
{
    std::string sketch;
    for (const ChecklistRow& row : rows) {
        if (row.kind != Kind::Privilege) {
            sketch += row.kind == Kind::Section ? 'S' : '-';
            continue;
        }
        const bool isRestriction = row.name.starts_with("Restrict");
        sketch += isRestriction ? (row.granted ? 'R' : 'r') : (row.granted ? 'P' : 'p');
    }
    return sketch;
}

Checklist drawn(std::string_view sketch)
{
    Checklist rows;
    for (const char letter : sketch) {
        const std::string number = std::to_string(rows.size());
        switch (letter) {
        case 'S':
            rows.push_back({Kind::Section, "Section " + number, "Section " + number});
            break;
        case '-':
            rows.emplace_back();
            break;
        default:
            rows.push_back({Kind::Privilege,
                            {},
                            (letter == 'R' || letter == 'r' ? "Restrict " : "May ") + number,
                            letter == 'R' || letter == 'P'});
        }
    }
    return rows;
}

} // namespace

class AdminRecordsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aTextIsSplitIntoAccountsAndLog_data()
    {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QByteArrayList>("accounts");
        QTest::addColumn<QByteArrayList>("log");
        QTest::newRow("empty") << ""_ba << QByteArrayList() << QByteArrayList();
        QTest::newRow("both") << "a|b[-]c[-][-]l1[-]l2"_ba << QByteArrayList{"a|b", "c"} << QByteArrayList{"l1", "l2"};
        QTest::newRow("no log part") << "a[-]c"_ba << QByteArrayList{"a", "c"} << QByteArrayList();
        QTest::newRow("no accounts") << "[-][-]l1"_ba << QByteArrayList() << QByteArrayList{"l1"};
        QTest::newRow("empty log line") << "a[-][-]l1[-][-]l2"_ba << QByteArrayList{"a"} << QByteArrayList{"l1", "l2"};
        QTest::newRow("cut off separator") << "a[-"_ba << QByteArrayList{"a[-"} << QByteArrayList();
    }
    void aTextIsSplitIntoAccountsAndLog()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const QByteArrayList, accounts);
        QFETCH(const QByteArrayList, log);
        const AdminsText parts = splitAdminsText({text.constData(), static_cast<std::size_t>(text.size())});
        const auto asList = [](const std::vector<std::string_view>& views) {
            QByteArrayList list;
            for (const std::string_view view : views)
                list += QByteArray(view.data(), static_cast<qsizetype>(view.size()));
            return list;
        };
        QCOMPARE(asList(parts.accounts), accounts);
        QCOMPARE(asList(parts.log), log);
    }

    void anAccountIsDecodedWholeOrNotAtAll()
    {
        const AdminAccount bob{"b|ob", "\xe4 pw", "127.0.0.1", "Connected"};
        const std::string good = base64::encode(bob.name) + '|' + base64::encode(bob.password);
        QVERIFY(decodeAdminAccount(good + "|127.0.0.1|Connected") == bob);
        QVERIFY(decodeAdminAccount(good + "|127.0.0.1|Connected|more") == bob);
        QVERIFY(decodeAdminAccount("|||") == AdminAccount());
        QCOMPARE(raisedBy([&] { decodeAdminAccount(good + "|127.0.0.1"); }),
                 numberOf(ErrorNumber::SubscriptOutOfRange));
        QCOMPARE(raisedBy([&] { decodeAdminAccount("%%%%|||"); }), numberOf(ErrorNumber::TypeMismatch));
    }

    void aSectionBecomesRows_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<QByteArray>("rows"); // kind, heading and name, one row a line
        const auto privilege = [](const char* name, bool granted) { return QByteArray(granted ? "+" : ".") + name; };
        const QByteArray end = "\n-";
        QTest::newRow("as trackers send it")
            << "Profiles\tProfiles||\tEdit1|\tStop0"_ba
            << "Profiles/Profiles\n" + privilege("Edit", true) + '\n' + privilege("Stop", false) + end;
        QTest::newRow("no TABs") << "Options||View1"_ba
                                 << "Options/Options\n" + privilege("View", true) + end;
        QTest::newRow("ends in a letter") << "A||\tView"_ba
                                          << "A/A\n" + privilege("View", false) + end;
        QTest::newRow("only a digit") << "A||1"_ba
                                      << "A/A\n" + privilege("", true) + end;
        QTest::newRow("blank privileges") << "A|||\tB1||"_ba
                                          << "A/A\n" + privilege("B", true) + end;
        QTest::newRow("section begins with a TAB") << "\tA||"_ba
                                                   << "/A" + end;
        QTest::newRow("a third cell") << "A\tB\tC||\tD\tE1"_ba
                                      << "A/B\n" + privilege("D", true) + end;
        QTest::newRow("blank sections") << "[-]A||[-][-]B||[-]"_ba
                                        << "A/A" + end + "\nB/B" + end;
    }
    void aSectionBecomesRows()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QByteArray, rows);
        std::string text;
        for (const ChecklistRow& row : checklistOf(body.toStdString())) {
            text += text.empty() ? "" : "\n";
            if (row.kind == Kind::Section)
                text += row.heading + '/' + row.name;
            else
                text += row.kind == Kind::Separator ? "-" : (row.granted ? "+" : ".") + row.name;
        }
        QCOMPARE(QByteArray::fromStdString(text), rows);
        QCOMPARE(raisedBy([] { decodeSection("Profiles|\tEdit1"); }), numberOf(ErrorNumber::SubscriptOutOfRange));
    }

    void aRestrictionAndWhatFollowsItExcludeEachOther_data()
    {
        QTest::addColumn<QByteArray>("before");
        QTest::addColumn<int>("row");
        QTest::addColumn<QByteArray>("after");
        QTest::newRow("grant") << "Spp-"_ba << 1 << "SPp-"_ba;
        QTest::newRow("take back") << "SPp-"_ba << 1 << "Spp-"_ba;
        QTest::newRow("a restriction clears what follows") << "SPrPpP-"_ba << 2 << "SPRppp-"_ba;
        QTest::newRow("lifting it, too") << "SRPP-"_ba << 1 << "Srpp-"_ba;
        QTest::newRow("what follows clears the restriction") << "SRpp-"_ba << 3 << "SrpP-"_ba;
        QTest::newRow("only the nearest one") << "SRpRp-"_ba << 4 << "SRprP-"_ba;
        QTest::newRow("what stands before it does not") << "SpRp-"_ba << 1 << "SPRp-"_ba;
        QTest::newRow("downwards it ends with its section") << "SrP-SPR-"_ba << 1 << "SRp-SPR-"_ba;
        QTest::newRow("upwards, too") << "SRp-Sp-"_ba << 5 << "SRp-SP-"_ba;
        QTest::newRow("at the end of the list") << "SrP"_ba << 1 << "SRp"_ba;
        QTest::newRow("no separator between sections") << "SRSp"_ba << 3 << "SRSP"_ba;
        QTest::newRow("a section") << "SRp-"_ba << 0 << "SRp-"_ba;
        QTest::newRow("a separator") << "SRp-"_ba << 3 << "SRp-"_ba;
        QTest::newRow("no row") << "SRp-"_ba << 4 << "SRp-"_ba;
    }
    void aRestrictionAndWhatFollowsItExcludeEachOther()
    {
        QFETCH(const QByteArray, before);
        QFETCH(const int, row);
        QFETCH(const QByteArray, after);
        const Checklist rows = toggled(drawn(before.toStdString()), static_cast<std::size_t>(row));
        QCOMPARE(QByteArray::fromStdString(sketched(rows)), after);
    }

    void editsAreFoundAgainInANewList()
    {
        const Checklist received = checklistOf("A||\tx0|\ty1[-]B||\tx0|\tz0");
        Checklist edited = toggled(received, 2); // A's y
        edited = toggled(edited, 6);             // B's z
        const Checklist fresh = checklistOf("B||\tz0|\tx1[-]C||\ty1[-]A||\ty1|\tnew1");
        QVERIFY(withEdits(fresh, received, edited) == checklistOf("B||\tz1|\tx1[-]C||\ty1[-]A||\ty0|\tnew1"));
        QVERIFY(withEdits(fresh, received, received) == fresh);
        QVERIFY(withEdits(fresh, {}, edited) == fresh);
    }

    void theAccountTextIsExact()
    {
        const Checklist rows = checklistOf("Profiles\tProfiles||\tEdit Profiles1|\tDelete User0[-]\tHidden||\tA1");
        const std::string behind = "[-]LgnPss|" + base64::encode("pw") +
                                   "||SelProfiles|[3]||Profiles|Profiles||Edit Profiles|1||Delete User|0||A|1";
        QCOMPARE(accountText({"bob", "pw", {}}, 3, rows), base64::encode("bob") + behind);
        QCOMPARE(accountText({"bobby", "pw", "bob"}, 3, rows), base64::encode("bobby|bob") + behind);
        QCOMPARE(accountText({"bob", "pw", {}}, 3, {}),
                 base64::encode("bob") + "[-]LgnPss|" + base64::encode("pw") + "||SelProfiles|[3]");
    }

    void requestsAreExact()
    {
        const std::string bob = base64::encode("bob");
        QVERIFY((getProfileAdminsRequest("me", 12) == Request{"GetProfileAdmins", "GetProfileAdmins_me", "12"}));
        QVERIFY(
            (getProfileAdminPrivisRequest("me", 12, newAdmin) ==
             Request{"GetProfileAdminPrivis", "GetProfileAdminPrivis_me", "12_" + base64::encode("Add New Admin")}));
        QVERIFY((deleteProfileAdminRequest("me", 12, "bob") ==
                 Request{"DeleteProfileAdmin", "DeleteProfileAdmin_me", "12_" + bob}));
        QVERIFY((kickProfileAdminRequest("me", 12, "bob") ==
                 Request{"KickProfileAdmin", "KickProfileAdmin_me", "12_" + bob}));
        const AccountFields added{"bob", "pw", {}};
        QVERIFY((saveProfileAdminRequest("me", 12, added, {}) ==
                 Request{"AddProfileAdmin", "AddProfileAdmin_me", "12_" + base64::encode(accountText(added, 12, {}))}));
        const AccountFields modified{"bob", "pw", "rob"};
        QCOMPARE(saveProfileAdminRequest("me", 12, modified, {}).name, std::string("ModifyProfileAdmin"));
    }

    void fieldsThatCannotBeSentAreNamed_data()
    {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("password");
        QTest::addColumn<QByteArray>("fault");
        QTest::newRow("good") << "bob"_ba
                              << "p|w"_ba
                              << ""_ba;
        QTest::newRow("nothing") << ""_ba
                                 << ""_ba
                                 << "Username field is empty!"_ba;
        QTest::newRow("blank name") << " "_ba
                                    << "pw"_ba
                                    << "Username field is empty!"_ba;
        QTest::newRow("no password") << "bob"_ba
                                     << ""_ba
                                     << "Password field is empty!"_ba;
        QTest::newRow("bar in the name") << "b|ob"_ba
                                         << "pw"_ba
                                         << "The Username cannot hold the character '|'!"_ba;
        QTest::newRow("the new account's name") << "Add New Admin"_ba
                                                << "pw"_ba
                                                << "Please choose another Username!"_ba;
    }
    void fieldsThatCannotBeSentAreNamed()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, password);
        QFETCH(const QByteArray, fault);
        const auto found = firstFault({name.toStdString(), password.toStdString(), {}});
        QCOMPARE(QByteArray::fromStdString(std::string(found.value_or(""))), fault);
    }
};

QTEST_APPLESS_MAIN(AdminRecordsTest)
#include "AdminRecordsTest.moc"
