#include "admins/AdminRecords.h"

#include "base/Base64.h"
#include "base/RaisedError.h"
#include "link/PackedReply.h"
#include "support/AddRow.h"

using namespace Qt::StringLiterals;
using namespace std::string_literals;

namespace {

using Kind = ChecklistRow::Kind;

/// The whole checklist of a reply.
Checklist checklistOf(std::string_view body)
{
    Checklist rows;
    for (const std::string_view section : splitChecklist(body, 100)) {
        for (ChecklistRow& row : decodeSection(section, 100))
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
    void howManyRowsAreTaken_data()
    {
        // taken: rows, and "+" where there are more
        addColumns<QByteArray, std::size_t, std::string>("text", "bytes", "taken");
        addRow("as many as may be", "YQ==|YQ==||[-]Yg==|Yg==||[-][-]1[-]2"_ba, std::size_t{99}, "2 2"s);
        addRow("one account more", "YQ==|YQ==||[-]Yg==|Yg==||[-]Yw==|Yw==||[-][-]1"_ba, std::size_t{99}, "2+ 1"s);
        addRow("one line more", "YQ==|YQ==||[-][-]1[-]2[-]3"_ba, std::size_t{99}, "1 2+"s);
        addRow("bytes end in the log", "YQ==|YQ==||[-][-]1[-]2"_ba, std::size_t{20}, "1 1+"s);
        addRow("bytes end in the accounts", "YQ==|YQ==||[-]Yg==|Yg==||[-][-]1"_ba, std::size_t{20}, "1+ 0+"s);
        addRow("an account of bars alone", "YQ==|YQ=="_ba + QByteArray(70, '|'), std::size_t{99}, "1 0"s);
    }
    void howManyRowsAreTaken()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const std::size_t, bytes);
        const std::string data = qCompress(text, 9).mid(4).toStdString();
        const AdminList list =
            readAdmins({static_cast<std::int32_t>(text.size()), data}, {.listBytes = bytes, .listRows = 2});
        const auto sum = [](std::size_t rows, bool isCut) { return std::to_string(rows) + (isCut ? "+" : ""); };
        QVERIFY(!list.damage);
        QTEST(sum(list.accounts.size(), list.areAccountsCut) + ' ' + sum(list.log.size(), list.isLogCut), "taken");
    }

    void aTextIsSplitIntoAccountsAndLog_data()
    {
        addColumns<QByteArray, QByteArrayList, QByteArrayList>("text", "accounts", "log");
        addRow("empty", ""_ba, QByteArrayList(), QByteArrayList());
        addRow("both", "a|b[-]c[-][-]l1[-]l2"_ba, QByteArrayList{"a|b", "c"}, QByteArrayList{"l1", "l2"});
        addRow("no log part", "a[-]c"_ba, QByteArrayList{"a", "c"}, QByteArrayList());
        addRow("no accounts", "[-][-]l1"_ba, QByteArrayList(), QByteArrayList{"l1"});
        addRow("empty log line", "a[-][-]l1[-][-]l2"_ba, QByteArrayList{"a"}, QByteArrayList{"l1", "l2"});
        addRow("cut off separator", "a[-"_ba, QByteArrayList{"a[-"}, QByteArrayList());
    }
    void aTextIsSplitIntoAccountsAndLog()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const QByteArrayList, accounts);
        QFETCH(const QByteArrayList, log);
        const AdminsText parts = splitAdminsText({text.constData(), static_cast<std::size_t>(text.size())}, 3);
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
        addRow("as trackers send it", "Profiles\tProfiles||\tEdit1|\tStop0"_ba,
               "Profiles/Profiles\n" + privilege("Edit", true) + '\n' + privilege("Stop", false) + end);
        addRow("no TABs", "Options||View1"_ba, "Options/Options\n" + privilege("View", true) + end);
        addRow("ends in a letter", "A||\tView"_ba, "A/A\n" + privilege("View", false) + end);
        addRow("only a digit", "A||1"_ba, "A/A\n" + privilege("", true) + end);
        addRow("blank privileges", "A|||\tB1||"_ba, "A/A\n" + privilege("B", true) + end);
        addRow("section begins with a TAB", "\tA||"_ba, "/A" + end);
        addRow("a third cell", "A\tB\tC||\tD\tE1"_ba, "A/B\n" + privilege("D", true) + end);
        addRow("blank sections", "[-]A||[-][-]B||[-]"_ba, "A/A" + end + "\nB/B" + end);
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
        QCOMPARE(raisedBy([] { decodeSection("Profiles|\tEdit1", 100); }), numberOf(ErrorNumber::SubscriptOutOfRange));
    }

    void aRestrictionAndWhatFollowsItExcludeEachOther_data()
    {
        addColumns<QByteArray, int, QByteArray>("before", "row", "after");
        addRow("grant", "Spp-"_ba, 1, "SPp-"_ba);
        addRow("take back", "SPp-"_ba, 1, "Spp-"_ba);
        addRow("a restriction clears what follows", "SPrPpP-"_ba, 2, "SPRppp-"_ba);
        addRow("lifting it, too", "SRPP-"_ba, 1, "Srpp-"_ba);
        addRow("what follows clears the restriction", "SRpp-"_ba, 3, "SrpP-"_ba);
        addRow("only the nearest one", "SRpRp-"_ba, 4, "SRprP-"_ba);
        addRow("what stands before it does not", "SpRp-"_ba, 1, "SPRp-"_ba);
        addRow("downwards it ends with its section", "SrP-SPR-"_ba, 1, "SRp-SPR-"_ba);
        addRow("upwards, too", "SRp-Sp-"_ba, 5, "SRp-SP-"_ba);
        addRow("at the end of the list", "SrP"_ba, 1, "SRp"_ba);
        addRow("no separator between sections", "SRSp"_ba, 3, "SRSP"_ba);
        addRow("a section", "SRp-"_ba, 0, "SRp-"_ba);
        addRow("a separator", "SRp-"_ba, 3, "SRp-"_ba);
        addRow("no row", "SRp-"_ba, 4, "SRp-"_ba);
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

    void fieldsThatCannotBeSentAreNamed_data()
    {
        addColumns<QByteArray, QByteArray, QByteArray>("name", "password", "fault");
        addRow("good", "bob"_ba, "p|w"_ba, ""_ba);
        addRow("nothing", ""_ba, ""_ba, "Username field is empty!"_ba);
        addRow("blank name", " "_ba, "pw"_ba, "Username field is empty!"_ba);
        addRow("no password", "bob"_ba, ""_ba, "Password field is empty!"_ba);
        addRow("bar in a new account's name", "b|ob"_ba, "pw"_ba, ""_ba);
        addRow("the new account's name", "Add New Admin"_ba, "pw"_ba, "Please choose another Username!"_ba);
    }
    void fieldsThatCannotBeSentAreNamed()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, password);
        QFETCH(const QByteArray, fault);
        const auto found = firstFault({name.toStdString(), password.toStdString(), {}});
        QCOMPARE(QByteArray::fromStdString(std::string(found.value_or(""))), fault);
    }

    void aBarIsRefusedWhereItWouldPartTwoNames()
    {
        QVERIFY(firstFault({"b|ob", "pw", "bob"}));
        QVERIFY(!firstFault({"b|ob", "new pw", "b|ob"}) && !firstFault({"bob", "pw", "b|ob"}));
    }
};

QTEST_APPLESS_MAIN(AdminRecordsTest)
#include "AdminRecordsTest.moc"
