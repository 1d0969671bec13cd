#include "live/support/Conversation.h"

#include "base/LongWords.h"
#include "support/AddRow.h"

using Speaker = Conversation::Speaker;

namespace {

Conversation sample()
{
    Conversation talk;
    for (const char* entry :
         {"Host says:\r\nthe map is on\r\n\r\n", "admin says:\r\nwhich map?\r\n\r\nThe new map?\r\n\r\n",
          "Host says:\r\nMap three\r\n\r\n", "Host says:\r\nlast map\r\n\r\n"})
        talk.add(entry);
    return talk;
}

} // namespace

Q_DECLARE_METATYPE(Speaker)
Q_DECLARE_METATYPE(TextSpan)

class ConversationTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void entriesStandNewestFirstAndNeverTouch()
    {
        Conversation talk;
        talk.add("Host says:\r\none\r\n\r\n");
        talk.add("no line end");
        talk.add("old\rMac\nlines\r\n");
        QCOMPARE(talk.shownText(), "old\nMac\nlines\n\nno line end\n\nHost says:\none\n\n");
    }

    void longWordsAreBrokenForTheWidgetOnly()
    {
        Conversation talk;
        const auto grows = talk.add(std::string(1001, 'x'));
        QCOMPARE(talk.shownText(), std::string(1001, 'x') + "\n\n");
        QCOMPARE(longWords::broken(talk.shownText()), std::string(1000, 'x') + "\nx\n\n");
        QCOMPARE(talk.laidOutSize(), std::size_t(1004));
        QCOMPARE(talk.replace(grows, "y"), TextSpan({0, 1004}));
    }

    void theOldestGo_data()
    {
        // shown: of a filter that fits the first and the last
        addColumns<std::size_t, std::size_t, QByteArray>("bytes", "gone", "shown");
        QTest::newRow("as many as may be") << std::size_t(12) << std::size_t(0) << QByteArray("az\n\na1\n\n");
        QTest::newRow("a byte less") << std::size_t(11) << std::size_t(1) << QByteArray("az\n\n");
        QTest::newRow("less than one has") << std::size_t(1) << std::size_t(2) << QByteArray("az\n\n");
    }
    void theOldestGo()
    {
        QFETCH(const std::size_t, bytes);
        QFETCH(const std::size_t, gone);
        Conversation talk({.conversationBytes = bytes});
        talk.add("a1");
        talk.add("b2");
        QCOMPARE(talk.add("az"), Conversation::Number(2));
        QCOMPARE(talk.first(), gone);
        talk.filter(Speaker::All, "a", "admin");
        QTEST(QByteArray::fromStdString(talk.shownText()), "shown");
        talk.replace(2, "a text of more than twelve bytes");
        QVERIFY(talk.shownText().starts_with("a text") && talk.shownCount() == 1 && talk.first() == 2);
    }

    void aFilterKeepsWhatFits_data()
    {
        addColumns<Speaker, QByteArray, QByteArray>("who", "text", "shown");
        addRow("host", Speaker::Host, QByteArray("map"),
               QByteArray("Host says:\nlast map\n\nHost says:\nthe map is on\n\n"));
        addRow("user", Speaker::User, QByteArray("new"), QByteArray("admin says:\nwhich map?\n\nThe new map?\n\n"));
        addRow("all, letter case", Speaker::All, QByteArray("Map"), QByteArray("Host says:\nMap three\n\n"));
        addRow("nothing fits", Speaker::User, QByteArray("three"), QByteArray());
        addRow("blanks inside count", Speaker::All, QByteArray(" map "), QByteArray("Host says:\nthe map is on\n\n"));
    }
    void aFilterKeepsWhatFits()
    {
        QFETCH(const Speaker, who);
        QFETCH(const QByteArray, text);
        QFETCH(const QByteArray, shown);
        Conversation talk = sample();
        QVERIFY(talk.filter(Speaker::All, "says", "admin"));
        QVERIFY(talk.filter(who, text.toStdString(), "admin")); // looks at everything, not at what the first one left
        QCOMPARE(talk.shownText(), shown.toStdString());
    }

    void clearingTheFilterShowsEverythingAlsoWhatCameMeanwhile()
    {
        Conversation talk = sample();
        const std::string before = talk.shownText();
        QVERIFY(!talk.filter(Speaker::Host, " ", "admin"));
        talk.filter(Speaker::Host, "three", "admin");
        talk.add("Host says:\r\nunrelated\r\n\r\n");
        QCOMPARE(talk.shownText(), "Host says:\nunrelated\n\nHost says:\nMap three\n\n");
        QVERIFY(talk.filter(Speaker::Host, "  ", "admin"));
        QVERIFY(!talk.isFiltered());
        QCOMPARE(talk.shownText(), "Host says:\nunrelated\n\n" + before);
    }

    void anEntryGrowsWhereItStands()
    {
        Conversation talk;
        const auto grows = talk.add("Host says:\r\none");
        talk.add("admin says:\r\nx\r\n\r\n");
        QCOMPARE(talk.replace(grows, "Host says:\r\none two\r\n\r\n"), TextSpan({15, 16}));
        QCOMPARE(talk.shownText(), "admin says:\nx\n\nHost says:\none two\n\n");
        talk.filter(Speaker::All, "x", "admin");
        QVERIFY(!talk.replace(grows, "Host says:\r\nthree\r\n\r\n"));
        talk.filter(Speaker::All, {}, {});
        QVERIFY(talk.shownText().ends_with("three\n\n"));
    }

    void aSearchGoesForthAndBack_data()
    {
        // positions: from 1
        addColumns<QByteArray, QByteArray, QList<int>>("text", "what", "positions");
        QTest::newRow("first character") << QByteArray("Host, Host, host") << QByteArray("Host") << QList<int>{1, 7};
        QTest::newRow("one letter") << QByteArray("aab a") << QByteArray("a") << QList<int>{1, 2, 5};
        QTest::newRow("at the very end") << QByteArray("x map") << QByteArray("map") << QList<int>{3};
        QTest::newRow("not there") << QByteArray("abc") << QByteArray("abcd") << QList<int>{};
        QTest::newRow("nothing wanted") << QByteArray("abc") << QByteArray() << QList<int>{};
        QTest::newRow("no text") << QByteArray() << QByteArray("a") << QList<int>{};
        QList<int> many;
        for (int at = 1; at <= 500; ++at)
            many += 3 * at - 2;
        QTest::newRow("many") << QByteArray("ab ").repeated(500) << QByteArray("ab") << many;
    }
    void aSearchGoesForthAndBack()
    {
        QFETCH(const QByteArray, text);
        QFETCH(const QByteArray, what);
        QFETCH(const QList<int>, positions);
        const std::string_view in(text.constData(), std::size_t(text.size()));
        const std::string wanted = what.toStdString();
        TextSpan selection;
        QList<int> forth;
        for (auto at = findFirst(in, wanted); at; at = findNext(in, wanted, selection)) {
            forth += int(*at);
            selection = {*at - 1, wanted.size()};
        }
        QCOMPARE(forth, positions);
        QList<int> back = positions.mid(qMax(0, int(positions.size()) - 1));
        while (const auto at = findPrevious(in, wanted, selection)) {
            back.prepend(int(*at));
            selection = {*at - 1, wanted.size()};
        }
        QCOMPARE(back, positions);
    }

    void nextBeginsAtTheCaretWhenSomethingElseIsSelected()
    {
        QCOMPARE(findNext("map map", "map", {}), std::optional<std::size_t>(1));
        QCOMPARE(findNext("map map", "map", {1, 2}), std::optional<std::size_t>(5));
        QVERIFY(!findNext("map", "map", {7, 0}));
    }
};

QTEST_APPLESS_MAIN(ConversationTest)
#include "ConversationTest.moc"
