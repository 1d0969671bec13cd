#include "ui/WindowRegistry.h"

#include <QTest>

using namespace Qt::StringLiterals;

class WindowRegistryTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWindowIsMadeAtItsFirstUseAndAgainWhenItIsGone()
    {
        QWidget frame;
        WindowRegistry windows;
        int made = 0;
        windows.add(u"qrvrcModify"_s, [&] {
            ++made;
            return new QWidget(&frame);
        });
        QVERIFY(!windows.isCreated(u"qrvrcModify"_s));
        QWidget* const first = windows.window(u"qrvrcModify"_s);
        QCOMPARE(windows.window(u"qrvrcModify"_s), first);
        QCOMPARE(windows.existing(u"qrvrcModify"_s), first);
        QCOMPARE(made, 1);
        delete first;
        QVERIFY(!windows.isCreated(u"qrvrcModify"_s));
        QVERIFY(windows.window(u"qrvrcModify"_s));
        QCOMPARE(made, 2);
        QVERIFY(!windows.window(u"qrvrcNone"_s));
    }

    void aMakerThatAsksForItsOwnWindowOrAddsOthersEnds()
    {
        QWidget frame;
        WindowRegistry windows;
        QWidget* inside = &frame;
        windows.add(u"qrvrcMenu"_s, [&] {
            for (int i = 0; i < 1000; ++i) // the table grows under the maker
                windows.add(QString::number(i), [] { return nullptr; });
            inside = windows.window(u"qrvrcMenu"_s);
            return new QWidget(&frame);
        });
        QVERIFY(windows.window(u"qrvrcMenu"_s));
        QVERIFY(!inside);
        QVERIFY(windows.isCreated(u"qrvrcMenu"_s));
    }
};

QTEST_MAIN(WindowRegistryTest)
#include "WindowRegistryTest.moc"
