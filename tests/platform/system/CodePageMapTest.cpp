#include "platform/system/CodePageMap.h"

#include <QtTest>

using namespace std::string_literals;

class CodePageMapTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytesAreTheirCharactersThereAndBack_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<QString>("text");
        QTest::newRow("windows-874") << QByteArray("\xA1\xD2") << QStringLiteral(u"กา");
        QTest::newRow("windows-1250") << QByteArray("\xF8") << QStringLiteral(u"ř");
        QTest::newRow("windows-1255") << QByteArray("\xF9\xEC\xE5\xED!") << QStringLiteral(u"שלום!");
        QTest::newRow("windows-1256") << QByteArray("\xD3\xE1\xC7\xE3") << QStringLiteral(u"سلام");
        QTest::newRow("windows-932") << QByteArray("a\x93\xFA\x83\x5C\xB1|")
                                     << QStringLiteral(u"a日ソｱ|"); // a half is "\"
        QTest::newRow("windows-936") << QByteArray("\xD6\xD0\xCE\xC4") << QStringLiteral(u"中文");
        QTest::newRow("windows-949") << QByteArray("\xC7\xD1\xB1\xDB") << QStringLiteral(u"한글");
        QTest::newRow("windows-950") << QByteArray("\xA4\xA4\xA4\xE5") << QStringLiteral(u"中文");
    }
    void bytesAreTheirCharactersThereAndBack()
    {
        QFETCH(const QByteArray, bytes);
        QFETCH(const QString, text);
        const auto map = CodePageMap::named(QTest::currentDataTag());
        QVERIFY(map);
        QCOMPARE(QString::fromStdU16String(map->toText(bytes.toStdString())), text);
        QCOMPARE(map->toBytes(text.toStdU16String()), bytes.toStdString());
        QCOMPARE(map->toBytes(u"\U0001F600"), "?"s);
    }

    void whatStandsForNothingComesBackAsItWas_data() { bytesAreTheirCharactersThereAndBack_data(); }
    void whatStandsForNothingComesBackAsItWas()
    {
        const auto map = CodePageMap::named(QTest::currentDataTag());
        for (int code = 0x8000; code < 0x10000; ++code) {
            const std::string bytes{static_cast<char>(code >> 8), static_cast<char>(code)};
            const std::u16string text = map->toText(bytes);
            if (text.size() == 2) // of two codes for one character one comes back
                QCOMPARE(map->toBytes(text), bytes);
            QCOMPARE(map->toText(map->toBytes(text)), text);
        }
    }

    void aPlaceBetweenTwoBytesBelongsToTheCharacter()
    {
        const auto map = CodePageMap::named("windows-932");
        const std::string text = "\x83\x5C\x83\x83\x83\x5C z\x83";
        const std::vector<std::size_t> starts{0, 0, 2, 2, 4, 4, 6, 7, 8};
        for (std::size_t at = 0; at < text.size(); ++at)
            QCOMPARE(map->startOf(text, at), starts[at]);
        QVERIFY(!CodePageMap::named("windows-1"));
    }
};

QTEST_APPLESS_MAIN(CodePageMapTest)
#include "CodePageMapTest.moc"
