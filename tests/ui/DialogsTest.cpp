#include "ui/Dialogs.h"

#include "diagnostics/report/TrappedError.h"
#include "support/AddRow.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTimer>

#include <memory>
#include <optional>

using namespace Qt::StringLiterals;

namespace {

QMessageBox* openBox()
{
    return qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
}

/// Runs `act` once the next box is open, then closes the box should it still be there.
template <typename Act>
void whenOpen(Act act)
{
    QTimer::singleShot(std::chrono::milliseconds(0), qApp, [act] {
        const QPointer<QMessageBox> box = openBox();
        QVERIFY(box);
        act(*box);
        if (box && box->isVisible())
            box->close();
    });
}

} // namespace

class DialogsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aMessageIsPlainSelectableTextWithOneButton()
    {
        Dialogs dialogs;
        int seen = 0;
        whenOpen([&seen](QMessageBox& box) {
            ++seen;
            QCOMPARE(box.objectName(), u"msgBox"_s);
            QCOMPARE(box.windowTitle(), u"Failed!"_s);
            QCOMPARE(box.text(), u"<b>one</b>\n\ntwo"_s);
            QCOMPARE(box.textFormat(), Qt::PlainText);
            QCOMPARE(box.icon(), QMessageBox::NoIcon);
            QCOMPARE(box.standardButtons(), QMessageBox::StandardButtons(QMessageBox::Ok));
            auto* text = box.findChild<QPlainTextEdit*>();
            QVERIFY(text->isVisible() && text->isReadOnly());
            QVERIFY(!text->hasFocus());
        });
        dialogs.show(u"Failed!"_s, u"<b>one</b>\r\n\r\ntwo"_s);
        QCOMPARE(seen, 1);
    }

    void aTextOfAnySizeFitsItsBoxAndTheScreen_data()
    {
        QTest::addColumn<QString>("text");
        QTest::newRow("one word") << QString(100'000, u'x');
        QTest::newRow("many lines") << u"line\r\n"_s.repeated(10'000);
        QTest::newRow("many words") << u"word "_s.repeated(10'000);
    }
    void aTextOfAnySizeFitsItsBoxAndTheScreen()
    {
        QFETCH(const QString, text);
        Dialogs dialogs;
        QSize size;
        whenOpen([&](QMessageBox& box) {
            size = box.size();
            auto* shown = box.findChild<QPlainTextEdit*>();
            QVERIFY(shown->document()->idealWidth() <= shown->width()); // nothing is cut off at its side
            const qreal height = shown->document()->size().height() * shown->fontMetrics().lineSpacing();
            QVERIFY(height <= shown->height() && height > shown->height() - shown->fontMetrics().lineSpacing());
            shown->selectAll();
            shown->copy();
            QString copied = QApplication::clipboard()->text();
            const bool isCut = copied.endsWith(u'…');
            copied.chop(isCut ? 1 : 0);
            QVERIFY(isCut && QString(text).remove(u'\r').startsWith(copied)); // as it was
        });
        dialogs.show(u"Error!"_s, text);
        QVERIFY(!size.isEmpty());
        QVERIFY2(size.width() < 1000 && size.height() < 1000, QTest::toString(size));
    }

    void aQuestionIsAnsweredYesOnlyByYes_data()
    {
        addColumns<int, bool>("key", "answer");
        QTest::newRow("Enter takes the default") << int(Qt::Key_Return) << false;
        QTest::newRow("Escape") << int(Qt::Key_Escape) << false;
        QTest::newRow("closed") << 0 << false;
        QTest::newRow("Yes") << int(Qt::Key_Y) << true;
    }
    void aQuestionIsAnsweredYesOnlyByYes()
    {
        QFETCH(const int, key);
        QFETCH(const bool, answer);
        Dialogs dialogs;
        whenOpen([key](QMessageBox& box) {
            if (key == Qt::Key_Y)
                box.button(QMessageBox::Yes)->click();
            else if (key != 0)
                QTest::keyClick(&box, Qt::Key(key));
        });
        QCOMPARE(dialogs.confirm(u"Quit"_s, u"Are you sure you want to quit?"_s), answer);
    }

    void aBoxCanBeUsedWhileTheMainWindowIsLocked_data()
    {
        QTest::addColumn<bool>("lockedBefore");
        QTest::newRow("locked before it opens") << true;
        QTest::newRow("locked while it is open") << false;
    }
    void aBoxCanBeUsedWhileTheMainWindowIsLocked()
    {
        QFETCH(const bool, lockedBefore);
        QWidget mainWindow;
        mainWindow.show();
        mainWindow.setEnabled(!lockedBefore);
        Dialogs dialogs(&mainWindow);
        std::optional<bool> closedByButton;
        whenOpen([&](QMessageBox& box) {
            QCOMPARE(box.parentWidget(), &mainWindow);
            mainWindow.setEnabled(false);
            QTest::mouseClick(box.button(QMessageBox::Ok), Qt::LeftButton);
            closedByButton = !box.isVisible();
        });
        dialogs.show(u"Success"_s, u"done"_s);
        QCOMPARE(closedByButton, std::optional(true));
        QVERIFY(!mainWindow.isEnabled());
    }

    void aTrappedErrorShowsTheOutcomeOfItsReport_data()
    {
        addColumns<bool, bool, QString>("atOnce", "delivered", "line");
        QTest::newRow("at once") << true << true << u"Error Report Sent: Yes"_s;
        QTest::newRow("later") << false << true << u"Error Report Sent: Yes"_s;
        QTest::newRow("failed") << false << false << u"Error Report Sent: Failed!"_s;
    }
    void aTrappedErrorShowsTheOutcomeOfItsReport()
    {
        QFETCH(const bool, atOnce);
        QFETCH(const bool, delivered);
        QFETCH(const QString, line);
        const QString error = u"Error Line: 410\r\nError 91: x\r\nFunction/Sub: HandleData"_s;
        const QString shownError = u"Error Line: 410\nError 91: x\nFunction/Sub: HandleData\n\n"_s;
        Dialogs dialogs;
        const auto trapped = std::make_shared<TrappedError>(error);
        QStringList texts;
        const auto finish = [&] {
            trapped->setReport(delivered ? TrappedError::Report::Delivered : TrappedError::Report::Failed);
        };
        if (atOnce)
            finish();
        whenOpen([&](QMessageBox& box) {
            texts += box.text();
            if (!atOnce)
                finish();
            trapped->happenAgain();
            texts += box.findChild<QPlainTextEdit*>()->toPlainText();
        });
        dialogs.showTrapped(u"QRVRC Error!"_s, trapped);
        QCOMPARE(texts, QStringList({shownError + (atOnce ? line : u"Sending the error report..."_s),
                                     shownError + u"2 times\n"_s + line}));
        finish(); // long after the box: nothing left to write to
    }

    void anOfferedReportIsSentFromItsBoxOnce()
    {
        Dialogs dialogs;
        const auto trapped = std::make_shared<TrappedError>(u"x"_s);
        int sent = 0;
        trapped->offerReport([&sent] { ++sent; });
        whenOpen([&](QMessageBox& box) {
            auto* send = box.findChild<QPushButton*>(u"cmdSendReport"_s);
            QVERIFY(send && box.text().endsWith(u"Error Report Sent: Not yet"_s));
            for (int click = 0; click < 2; ++click)
                QTest::mouseClick(send, Qt::LeftButton);
            QVERIFY(box.isVisible());
            QVERIFY(box.text().endsWith(u"Sending the error report..."_s));
            QTest::keyClick(&box, Qt::Key_Return);
            QVERIFY(!box.isVisible());
        });
        dialogs.showTrapped(u"QRVRC Error!"_s, trapped);
        QCOMPARE(sent, 1);
    }

    void aBoxGoesWithItsWindow()
    {
        auto mainWindow = std::make_unique<QWidget>();
        mainWindow->show();
        Dialogs dialogs(mainWindow.get());
        bool gone = false;
        whenOpen([&](QMessageBox&) {
            mainWindow.reset();
            gone = openBox() == nullptr;
        });
        dialogs.show(u"t"_s, u"x"_s);
        QVERIFY(gone);
    }
};

QTEST_MAIN(DialogsTest)
#include "DialogsTest.moc"
