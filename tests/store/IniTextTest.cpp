#include "store/IniText.h"

#include "base/RaisedError.h"
#include "support/AddRow.h"

#include <QtTest>

using namespace std::string_literals;

class IniTextTest : public QObject
{
    Q_OBJECT

    static constexpr int damaged = numberOf(ErrorNumber::InvalidFileFormat);
    static constexpr int unfit = numberOf(ErrorNumber::InvalidProcedureCall);

private Q_SLOTS:
    void settingAValueChangesNothingElse_data()
    {
        QTest::addColumn<std::string>("before"); // then [s] k=v is set
        QTest::addColumn<std::string>("after");
        addRow("new file", ""s, "[s]\r\nk=v\r\n"s);
        addRow("new section, LF", "[a]\nx=1\n"s, "[a]\nx=1\n[s]\nk=v\n"s);
        addRow("new section, old line ends", "[a]\rx=1\r"s, "[a]\rx=1\r[s]\rk=v\r"s);
        addRow("new section behind a line without end", "[a]\nx=1"s, "[a]\nx=1\n[s]\nk=v\n"s);
        addRow("new key behind a line without end", "[s]\nx=1"s, "[s]\nx=1\nk=v\n"s);
        addRow("new key before blank lines", "[s]\r\nx=1\r\n\r\n \t\r\n[b]\r\n"s,
               "[s]\r\nx=1\r\nk=v\r\n\r\n \t\r\n[b]\r\n"s);
        addRow("new key before the next section's comment", "[s]\nx=1\n\n; about b\n[b]\ny=2\n"s,
               "[s]\nx=1\nk=v\n\n; about b\n[b]\ny=2\n"s);
        addRow("new key behind comments", "[s]\n; about s\n\n[b]\n"s, "[s]\n; about s\nk=v\n\n[b]\n"s);
        addRow("section without anything", "[s]"s, "[s]\r\nk=v\r\n"s);
        addRow("blanks around", " [ S ] x\n\tK \t=  old \n"s, " [ S ] x\n\tK \t=  v\n"s);
        addRow("empty value without line end", "[s]\nk= "s, "[s]\nk= v"s);
        addRow("quoted value", "[s]\nk=\" old \"\n"s, "[s]\nk=v\n"s);
        addRow("value with more equals signs", "[s]\nk=a=b=c\nkk=1"s, "[s]\nk=v\nkk=1"s);
        addRow("twice the key", "[s]\nk=1\nk=2\n"s, "[s]\nk=v\nk=2\n"s);
        addRow("twice the section, key in the second", "[s]\nx=1\n[s]\nk=2\n"s, "[s]\nx=1\nk=v\n[s]\nk=2\n"s);
        addRow("key of another section", "[a]\nk=1\n[s]\n[b]\nk=2\n"s, "[a]\nk=1\n[s]\nk=v\n[b]\nk=2\n"s);
        addRow("key before all sections", "k=1\n[s]\n"s, "k=1\n[s]\nk=v\n"s);
        addRow("commented out", "[s]\n;k=1\n#k=2\nx=1\n"s, "[s]\n;k=1\n#k=2\nx=1\nk=v\n"s);
        addRow("lines that mean nothing", "junk\n[open\n[s]\nk\nx=1\n"s, "junk\n[open\n[s]\nk\nx=1\nk=v\n"s);
        addRow("byte order mark", "\xEF\xBB\xBF[s]\nk=1\n"s, "\xEF\xBB\xBF[s]\nk=v\n"s);
        addRow("byte order mark only", "\xEF\xBB\xBF"s, "\xEF\xBB\xBF[s]\r\nk=v\r\n"s);
        addRow("a NUL in another line", "[a\0]\nx\0=1\n[s]\nx=\0\nk=1\n"s, "[a\0]\nx\0=1\n[s]\nx=\0\nk=v\n"s);
        addRow("mixed line ends", "[s]\r\nx=1\nk=2\rz=3"s, "[s]\r\nx=1\nk=v\rz=3"s);
    }
    void settingAValueChangesNothingElse()
    {
        QFETCH(const std::string, before);
        IniText text(before);
        text.setValue("s", "k", "v");
        QTEST(text.bytes(), "after");
        QCOMPARE(IniText(text.bytes()).value("S", " K ").value_or("missing"), "v"s);
    }

    void valuesComeBackAsTheyWere()
    {
        IniText text;
        const std::vector<std::string> values = {"",       " ",     "\t",  " both ",   "\"",      "\"\"",
                                                 "\"\"\"", "\"a\"", "\"a", "a\"",      "' a '",   "a=b",
                                                 "=",      ";a",    "[a]", "\x80\xFF", " \"a\" ", "\v"};
        for (std::size_t i = 0; i < values.size(); ++i)
            text.setValue("s", "k" + std::to_string(i), values[i]);
        const IniText again(text.bytes());
        const std::vector<std::string> lines = again.lines("s");
        QCOMPARE(lines.size(), values.size());
        for (std::size_t i = 0; i < values.size(); ++i) {
            const std::string key = "k" + std::to_string(i);
            QCOMPARE(again.value("s", key).value_or("missing"), values[i]);
            QCOMPARE(lines[i], key + "=" + values[i]);
        }
        for (const std::string& value : values) // each over each other one
            for (const std::string& next : values) {
                text.setValue("s", "k0", value);
                text.setValue("s", "k0", next);
                QCOMPARE(text.value("s", "k0").value_or("missing"), next);
            }
    }

    void sectionsAreListedReadAndRemoved()
    {
        IniText text("; top\n[One]\nb = 2 \n; no\na=1\nnothing\n=empty\n\n[two]\nc=3\n[]\n[ONE]\nd=4\n[Three]\n"s);
        QCOMPARE(text.sectionNames(), (std::vector<std::string>{"One", "two", "", "Three"}));
        QCOMPARE(text.lines("one"), (std::vector<std::string>{"b=2", "a=1", "=empty"}));
        QCOMPARE(text.lines("none"), std::vector<std::string>());
        QVERIFY(!text.value("one", "d"));
        text.removeSection(" oNe ");
        QCOMPARE(text.bytes(), "; top\n[two]\nc=3\n[]\n[Three]\n"s);
        text.removeSection("one");
        text.removeSection("three");
        QCOMPARE(text.bytes(), "; top\n[two]\nc=3\n[]\n"s);
    }

    void oneRuleTellsSectionsApart_data()
    {
        QTest::addColumn<std::string>("bytes");
        QTest::addColumn<std::string>("name");
        addRow("letter case", "[Home]\nk=1\n"s, "hOME"s);
        addRow("blanks", "[ A\t]\nk=1\n"s, " A "s);
        addRow("brackets inside", "[[a]b]]\nk=1\n"s, "[a]b]"s);
        addRow("behind the last bracket", "[a]b] ; c\nk=1\n"s, "a]b"s);
    }
    void oneRuleTellsSectionsApart()
    {
        QFETCH(const std::string, bytes);
        QFETCH(const std::string, name);
        IniText text(bytes + "[other]\n");
        QVERIFY(isSameSection(text.sectionNames().front(), name));
        QCOMPARE(text.value(name, "k").value_or("missing"), "1"s);
        text.setValues(name, {{"k", "2"}, {"l", "3"}});
        QCOMPARE(text.lines(name), (std::vector<std::string>{"k=2", "l=3"}));
        QCOMPARE(text.sectionNames().size(), std::size_t{2});
        text.removeSection(name);
        QCOMPARE(text.bytes(), "[other]\n"s);
    }

    void lettersOfTheCodePageAreTakenAsTheyStand()
    {
        IniText text("[\xC9t\xE9]\nk=1\n"s);
        QVERIFY(!isSameSection("\xC9t\xE9", "\xE9t\xE9"));
        text.setValue("\xE9t\xE9", "k", "2");
        QCOMPARE(text.sectionNames().size(), std::size_t{2});
        QCOMPARE(text.value("\xC9T\xE9", "k").value_or("missing"), "1"s);
    }

    void severalKeysBeginTheirSectionInOrder_data()
    {
        QTest::addColumn<std::string>("before"); // then [s] a=1 b=2 is set
        QTest::addColumn<std::string>("after");
        addRow("new file", ""s, "[s]\r\na=1\r\nb=2\r\n"s);
        addRow("in place", "[s]\n; c\na=\n\nb=\nx=3\n"s, "[s]\n; c\na=1\n\nb=2\nx=3\n"s);
        addRow("turned round, no line end", "[s]\n; c\nx=3\nb=\na="s, "[s]\na=1\nb=2\n; c\nx=3\n"s);
        addRow("the second one alone", "[s]\nb=\n[t]\na=\n"s, "[s]\na=1\nb=2\n[t]\na=\n"s);
        addRow("others in front", "[s]\nx=3\n\n[t]\n"s, "[s]\na=1\nb=2\nx=3\n\n[t]\n"s);
        addRow("twice a key", "[s]\na=\na=4\nb=\n"s, "[s]\na=1\nb=2\na=4\n"s);
    }
    void severalKeysBeginTheirSectionInOrder()
    {
        QFETCH(const std::string, before);
        IniText text(before);
        text.setValues("s", {{"a", "1"}, {"b", "2"}});
        QTEST(text.bytes(), "after");
    }

    void severalKeysAreSetAllOrNone()
    {
        IniText text;
        QCOMPARE(raisedBy([&] { text.setValues("s", {{"a", "1"}, {"b", "\n"}}); }), unfit);
        QCOMPARE(text.bytes(), ""s);
    }

    void damagedTextsAreRefused_data()
    {
        QTest::addColumn<std::string>("bytes");
        addRow("UTF-16, low byte first", "\xFF\xFE["s);
        addRow("UTF-16, high byte first", "\xFE\xFF["s);
        addRow("too large", std::string(IniText::maxBytes + 1, '\n'));
    }
    void damagedTextsAreRefused()
    {
        QFETCH(const std::string, bytes);
        QCOMPARE(raisedBy([&] { const IniText text(bytes); }), damaged);
    }

    void whatCannotBeReadBackIsRefused()
    {
        IniText text("[s]\nk=1\n"s);
        const auto setting = [&](std::string_view section, std::string_view key, std::string_view value) {
            return raisedBy([&] { text.setValue(section, key, value); });
        };
        for (const std::string& section : {""s, "  "s, "a]"s, "[a"s, "a\nb"s, "a\r"s, "a\0"s})
            QCOMPARE(setting(section, "k", "v"), unfit);
        for (const std::string& key : {""s, "\t"s, "a=b"s, "a\nb"s, ";a"s, "#a"s, " [a"s, "a\0"s})
            QCOMPARE(setting("s", key, "v"), unfit);
        for (const std::string& value : {"a\nb"s, "\r"s, "a\0"s})
            QCOMPARE(setting("s", "k", value), unfit);
        QCOMPARE(setting("s", "k", std::string(IniText::maxBytes, 'x')), damaged);
        QCOMPARE(text.bytes(), "[s]\nk=1\n"s);
    }
};

QTEST_APPLESS_MAIN(IniTextTest)
#include "IniTextTest.moc"
