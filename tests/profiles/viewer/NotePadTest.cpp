#include "profiles/viewer/qrvrcNotePad.h"

#include "platform/system/FileBytes.h"
#include "profiles/viewer/LinedText.h"
#include "profiles/viewer/TextPane.h"
#include "support/ClientRig.h"

#include <QAction>
#include <QClipboard>
#include <QDir>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>

using namespace Qt::StringLiterals;

namespace {

struct PadRig : ClientRig
{
    qrvrcNotePad pad{client};
    TextPane& text = *pad.findChild<TextPane*>(u"Text1"_s);
    QLineEdit& wanted = *pad.findChild<QLineEdit*>(u"txtFind"_s);
    QLabel& found = *pad.findChild<QLabel*>(u"lblFound"_s);

    void show(const QString& shown)
    {
        pad.showText(u"Some file"_s, shown);
        QVERIFY(QTest::qWaitForWindowActive(&pad));
    }
    void saveAs(const QString& file)
    {
        pad.findChild<QAction*>(u"mnuSaveAs"_s)->trigger();
        auto* dialog = pad.findChild<QFileDialog*>();
        pad.showText(u"Another file"_s, u"not what was meant"_s);
        dialog->selectFile(file);
        static_cast<QDialog*>(dialog)->accept();
    }
};

} // namespace

class NotePadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aSavedFileHoldsTheVeryBytes()
    {
        PadRig rig;
        std::string bytes = "one\r\ntwo\nthree\rfour\r\n\r\n\t";
        for (int value = 1; value < 256; ++value)
            bytes += static_cast<char>(value);
        rig.show(rig.codePage.toText(bytes));
        QTest::keyClick(&rig.text, Qt::Key_X); // the text is not to be changed
        const QString file = rig.directory.filePath(u"saved.txt"_s);
        rig.saveAs(file);
        QTRY_VERIFY(rig.pad.findChild<QAction*>(u"mnuSaveAs"_s)->isEnabled());
        QCOMPARE(readBytes(file.toStdU16String()), bytes);
        QVERIFY(rig.boxes.boxes.isEmpty());
    }

    void aFileThatCannotBeWrittenIsReported()
    {
        PadRig rig;
        rig.show(u"text"_s);
        const QString folder = rig.directory.filePath(u"gone"_s);
        QDir().mkdir(folder);
        rig.pad.findChild<QAction*>(u"mnuSaveAs"_s)->trigger();
        auto* dialog = rig.pad.findChild<QFileDialog*>();
        dialog->selectFile(folder + u"/saved.txt"_s);
        QDir().rmdir(folder);
        Q_EMIT dialog->fileSelected(folder + u"/saved.txt"_s);
        QTRY_COMPARE(rig.boxes.boxes.size(), 1);
        QVERIFY(rig.boxes.boxes[0].text.contains(u"mnuSaveAs_Click"_s));
    }

    void aSearchGoesRoundInBothDirectionsAndEscapeLeavesStepByStep()
    {
        PadRig rig;
        rig.show(u"alpha\r\nbeta\r\nALPHA\r\n"_s);
        QTest::keyClick(&rig.text, Qt::Key_F, Qt::ControlModifier);
        QVERIFY(rig.wanted.hasFocus());
        QTest::keyClicks(&rig.wanted, u"alpha"_s);
        const auto step = [&](Qt::KeyboardModifier modifier) {
            QTest::keyClick(&rig.wanted, Qt::Key_F3, modifier);
            return static_cast<int>(rig.text.text()->lineOf(rig.text.selection().begin));
        };
        QCOMPARE(step(Qt::NoModifier), 0);
        QCOMPARE(rig.text.selectedText(), u"alpha"_s);
        QCOMPARE(step(Qt::NoModifier), 2);
        QCOMPARE(step(Qt::NoModifier), 0);
        QCOMPARE(rig.found.text(), u"Continued from the beginning."_s);
        QCOMPARE(step(Qt::ShiftModifier), 2);
        QTest::keyClicks(&rig.wanted, u"?"_s);
        QCOMPARE(step(Qt::NoModifier), 2);
        QCOMPARE(rig.found.text(), u"Not found."_s);
        QTest::keyClick(&rig.wanted, Qt::Key_Escape);
        QVERIFY(rig.pad.isVisible());
        QVERIFY(rig.text.hasFocus());
        rig.text.copy();
        const std::weak_ptr<const LinedText> shown = rig.text.text();
        QTest::keyClick(&rig.text, Qt::Key_Escape);
        QVERIFY(!rig.pad.isVisible());
        QVERIFY(shown.expired()); // nobody keeps a large text that is not seen
        QCOMPARE(QGuiApplication::clipboard()->text(), u"ALPHA"_s);
    }
};

QTEST_MAIN(NotePadTest)
#include "NotePadTest.moc"
