#include "login/ConnectionFields.h"

#include "base/RaisedError.h"
#include "support/AddRow.h"

using namespace std::string_literals;

class ConnectionFieldsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theFirstFaultIsTold_data()
    {
        addColumns<ConnectionFields, std::string>("fields", "fault");
        addRow("all is there", ConnectionFields{"n", "h", "1", "u", "p"}, ""s);
        addRow("nothing is there", ConnectionFields{}, "Profile Name field is empty!"s);
        addRow("blanks are nothing", ConnectionFields{" \t", "h", "1", "u", "p"}, "Profile Name field is empty!"s);
        addRow("no host and nothing behind it", ConnectionFields{"n", " ", "", "", ""}, "Host field is empty!"s);
        addRow("no port", ConnectionFields{"n", "h", "", "", ""}, "Port field is empty!"s);
        addRow("no user name", ConnectionFields{"n", "h", "1", " ", ""}, "Username field is empty!"s);
        addRow("no password", ConnectionFields{"n", "h", "1", "u", ""}, "Password field is empty!"s);
        addRow("a password of blanks", ConnectionFields{"n", "h", "1", "u", "  "}, "Password field is empty!"s);
        addRow("the entry for new profiles", ConnectionFields{"New Profile", "h", "1", "u", "p"},
               "Please choose another Profile Name!"s);
        for (const char character : {'[', ']', '\n', '\r'}) {
            QTest::addRow("a name with character %d", character)
                << ConnectionFields{std::string("a") + character, "h", "1", "u", "p"}
                << "The Profile Name cannot hold brackets or line breaks!"s;
        }
        addRow("the entry for new profiles, spelt otherwise", ConnectionFields{" new profile", "h", "1", "u", "p"},
               "Please choose another Profile Name!"s);
    }
    void theFirstFaultIsTold()
    {
        QFETCH(const ConnectionFields, fields);
        QTEST(std::string(firstFault(fields, ProfileKind::New).value_or("")), "fault");
    }

    void aStoredNameMayHoldBrackets()
    {
        QVERIFY(!firstFault({"[a]b", "h", "1", "u", "p"}, ProfileKind::Stored));
        QVERIFY(firstFault({"a\nb", "h", "1", "u", "p"}, ProfileKind::Stored));
    }

    void aStoredConnectionIsReadByPosition()
    {
        using Lines = std::vector<std::string>;
        QVERIFY(storedConnection("n", Lines{"Host=h", "Port=1", "User=u", "Pass=p=q"}) ==
                (ConnectionFields{"n", "h", "1", "u", "p=q"}));
        QVERIFY(storedConnection("n", Lines{"Pass=h", "x=1", "=u", "Host=p", "more=z"}) ==
                (ConnectionFields{"n", "h", "1", "u", "p"}));
        QVERIFY(storedConnection("n", Lines{"Host=h", "Port"}) == (ConnectionFields{"n", "h", "", "", ""}));
        QVERIFY(storedConnection("n", Lines{"Host=h"}) == (ConnectionFields{"n", "", "", "", ""}));
        QVERIFY(storedConnection("n", {}) == (ConnectionFields{"n", "", "", "", ""}));
    }

    void hostsAreDottedAddressesOrNames_data()
    {
        addColumns<std::string, bool, std::string>("host", "isAddress", "connected");
        QTest::newRow("address") << "10.0.0.7"s << true << "10.0.0.7"s;
        QTest::newRow("values are not looked at") << "999.1.1.1"s << true << "999.1.1.1"s;
        QTest::newRow("three parts") << "10.0.7"s << false << "10.0.7"s;
        QTest::newRow("five parts") << "1.2.3.4.5"s << false << "1.2.3.4.5"s;
        QTest::newRow("four digits") << "10.0.0.0007"s << false << "10.0.0.0007"s;
        QTest::newRow("an empty part") << "10..0.7"s << false << "10..0.7"s;
        QTest::newRow("a negative part") << "10.-1.0.7"s << false << "10.-1.0.7"s;
        QTest::newRow("name") << "host.example"s << false << "host.example"s;
        QTest::newRow("scheme and www") << "http://www.host.example"s << false << "host.example"s;
        QTest::newRow("every www") << "www.www.wwwx.example"s << false << "wwwx.example"s;
        QTest::newRow("another scheme") << "https://host.example"s << false << "https://host.example"s;
        QTest::newRow("empty") << ""s << false << ""s;
    }
    void hostsAreDottedAddressesOrNames()
    {
        QFETCH(const std::string, host);
        QTEST(isDottedAddress(host), "isAddress");
        QTEST(hostToConnect(host), "connected");
        QCOMPARE(hostToConnect(" " + host + " "), hostToConnect(host));
    }

    void portsAreNumbersInRange_data()
    {
        addColumns<std::string, int>("text", "port");
        QTest::newRow("lowest") << "1"s << 1;
        QTest::newRow("highest") << "65535"s << 65535;
        QTest::newRow("blanks around") << " 80 "s << 80;
        QTest::newRow("leading zeros") << "00080"s << 80;
        QTest::newRow("one too high") << "65536"s << -1;
        QTest::newRow("zero") << "0"s << -1;
        QTest::newRow("signs") << "+80"s << -1;
        QTest::newRow("empty") << ""s << -1;
    }
    void portsAreNumbersInRange()
    {
        QFETCH(const std::string, text);
        const auto port = portNumber(text);
        QTEST(port ? int(*port) : -1, "port");
    }
};

QTEST_APPLESS_MAIN(ConnectionFieldsTest)
#include "ConnectionFieldsTest.moc"
