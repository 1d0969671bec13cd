#include "profiles/viewer/TextPane.h"

#include "platform/system/CodePage.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextFinder.h"
#include "support/AddRow.h"

#include <QAccessible>
#include <QClipboard>
#include <QGuiApplication>
#include <QScrollBar>
#include <QSignalSpy>

using namespace Qt::StringLiterals;
using namespace std::string_literals;

namespace {

const CodePage codePage;

class Pane : public TextPane
{
public:
    explicit Pane(std::string bytes) : TextPane(codePage)
    {
        setText(std::make_shared<const LinedText>(std::move(bytes)));
        resize(400, 200);
        show();
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) { QTest::keyClick(this, key, modifiers); }
};

QString pasted()
{
    return QGuiApplication::clipboard()->text();
}

} // namespace

class TextPaneTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsCopiedIsWhatCame()
    {
        std::string bytes = "one\r\ntwo\nthree\rfour"s;
        for (int value = 0; value < 256; ++value)
            bytes += static_cast<char>(value);
        Pane pane(bytes);
        pane.press(Qt::Key_A, Qt::ControlModifier);
        pane.press(Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(codePage.toBytes(pasted()), bytes);
        pane.press(Qt::Key_X); // changes nothing
        QCOMPARE(pane.text()->bytes(), bytes);
    }

    void keysMoveAndSelect_data()
    {
        QTest::addColumn<QList<int>>("keys"); // with their modifiers
        QTest::addColumn<QString>("selected");
        QTest::addColumn<int>("cursor");
        // 0 "ab cd", CR LF, 7 "longer line", LF, 19 "x", CR, 21 ""
        constexpr int shift = Qt::ShiftModifier;
        constexpr int ctrl = Qt::ControlModifier;
        const QList<int> back{Qt::Key_End | ctrl};
        addRow("over CR LF at once", QList<int>{Qt::Key_End, Qt::Key_Right}, QString(), 7);
        addRow("and back", QList<int>{Qt::Key_Down, Qt::Key_Left}, QString(), 5);
        addRow("down keeps the column", QList<int>{Qt::Key_Down, Qt::Key_End, Qt::Key_Down, Qt::Key_Up}, QString(), 18);
        addRow("a word", QList<int>{Qt::Key_Right | ctrl | shift}, u"ab"_s, 2);
        addRow("two words", QList<int>{Qt::Key_Right | ctrl, Qt::Key_Right | ctrl | shift}, u" cd"_s, 5);
        addRow("lines with their ends", QList<int>{Qt::Key_Down | shift, Qt::Key_Down | shift},
               u"ab cd\r\nlonger line\n"_s, 19);
        addRow("from the end", back + QList<int>{Qt::Key_Left | shift, Qt::Key_Home | shift}, u"x\r"_s, 19);
        addRow("beyond the end", back + QList<int>{Qt::Key_Right, Qt::Key_Down, Qt::Key_PageDown}, QString(), 21);
        addRow("beyond the beginning", QList<int>{Qt::Key_Left, Qt::Key_Up, Qt::Key_PageUp}, QString(), 0);
        addRow("everything", back + QList<int>{Qt::Key_Home | ctrl | shift}, u"ab cd\r\nlonger line\nx\r"_s, 0);
    }
    void keysMoveAndSelect()
    {
        QFETCH(const QList<int>, keys);
        Pane pane("ab cd\r\nlonger line\nx\r");
        for (const int key : keys) {
            const int modifiers = key & static_cast<int>(Qt::KeyboardModifierMask);
            pane.press(static_cast<Qt::Key>(key & ~modifiers), Qt::KeyboardModifiers(modifiers));
        }
        QTEST(pane.selectedText(), "selected");
        QTEST(static_cast<int>(pane.cursor()), "cursor");
    }

    void theMouseSelects()
    {
        Pane pane("first line\r\nsecond line");
        const auto at = [&pane](std::size_t offset) { return pane.characterRect(offset).topLeft() + QPoint(1, 3); };
        QTest::mousePress(pane.viewport(), Qt::LeftButton, {}, at(6));
        QTest::mouseMove(pane.viewport(), at(18));
        QMouseEvent drag(QEvent::MouseMove, at(18), pane.viewport()->mapToGlobal(at(18)), Qt::NoButton, Qt::LeftButton,
                         {});
        QCoreApplication::sendEvent(pane.viewport(), &drag);
        QTest::mouseRelease(pane.viewport(), Qt::LeftButton, {}, at(18));
        QCOMPARE(pane.selectedText(), u"line\r\nsecond"_s);
        QTest::mouseDClick(pane.viewport(), Qt::LeftButton, {}, at(14));
        QCOMPARE(pane.selectedText(), u"second"_s);
        QTest::mouseClick(pane.viewport(), Qt::LeftButton, Qt::ShiftModifier, {390, 190});
        QCOMPARE(pane.selectedText(), u"second line"_s);
    }

    void farPlacesComeIntoSight()
    {
        std::string bytes;
        for (int line = 0; line < 100'000; ++line)
            bytes += "line " + std::to_string(line) + "\n";
        bytes += std::string(200'000, 'w') + "\tend";
        Pane pane(bytes);
        for (const std::size_t place : {bytes.size(), bytes.size() / 2, bytes.size() - 100'000, std::size_t{3}}) {
            pane.select(place, place);
            const QRect shown = pane.characterRect(place);
            QVERIFY(pane.viewport()->rect().contains(shown.topLeft()));
            QVERIFY(pane.viewport()->rect().contains(shown.bottomLeft()));
        }
        pane.press(Qt::Key_End, Qt::ControlModifier);
        QVERIFY(pane.verticalScrollBar()->value() > 100'000);
        pane.setText(std::make_shared<const LinedText>("short"s));
        QCOMPARE(pane.verticalScrollBar()->maximum(), 0);
        QCOMPARE(pane.characterRect(0).top(), pane.characterRect(5).top());
    }

    void aSearchOfALargeTextGoesOnBetweenEvents()
    {
        std::string bytes(40 << 20, 'a');
        bytes.replace(10, 6,
                      "N\xC4"
                      "DEL "); // folds like the letter with its dots in lower case
        const auto text = std::make_shared<const LinedText>(bytes);
        TextFinder finder(codePage, nullptr);
        QSignalSpy found(&finder, &TextFinder::found);
        QSignalSpy notFound(&finder, &TextFinder::notFound);
        finder.start(text,
                     "n\xE4"
                     "del",
                     20, TextFinder::Way::Forward);
        QVERIFY(finder.isSearching());
        QTRY_COMPARE(found.size(), 1);
        QCOMPARE(found[0][0].value<std::size_t>(), 10u);
        QVERIFY(found[0][2].toBool());
        finder.start(text,
                     "n\xE4"
                     "del",
                     bytes.size(), TextFinder::Way::Backward);
        QTRY_COMPARE(found.size(), 2);
        QVERIFY(!found[1][2].toBool());
        finder.start(text, "aab", 0, TextFinder::Way::Backward);
        QTRY_COMPARE(notFound.size(), 1);
        finder.start(text, "aab", 0, TextFinder::Way::Forward);
        finder.stop();
        QVERIFY(!finder.isSearching());
        QCOMPARE(found.size(), 2);
    }

    void screenReadersReadItLineByLine()
    {
        Pane pane("first\r\nsecond\r\n");
        QAccessibleInterface* accessible = QAccessible::queryAccessibleInterface(&pane);
        QVERIFY(accessible && accessible->textInterface() && accessible->state().readOnly);
        QAccessibleTextInterface& text = *accessible->textInterface();
        int start = 0;
        int end = 0;
        QCOMPARE(text.textAtOffset(9, QAccessible::LineBoundary, &start, &end), u"second\r\n"_s);
        QCOMPARE(start, 7);
        QCOMPARE(text.textBeforeOffset(9, QAccessible::LineBoundary, &start, &end), u"first\r\n"_s);
        QCOMPARE(text.textAfterOffset(15, QAccessible::LineBoundary, &start, &end), QString());
        text.setSelection(0, 2, 99);
        QCOMPARE(pane.selectedText(), u"rst\r\nsecond\r\n"_s);
        QCOMPARE(text.text(-5, 99), u"first\r\nsecond\r\n"_s);
    }
};

QTEST_MAIN(TextPaneTest)
#include "TextPaneTest.moc"
