#include "live/support/SupportDesk.h"
#include "live/support/qrvrcSupport.h"
#include "platform/system/CodePage.h"
#include "support/AddRow.h"
#include "support/Desk.h"

#include <QAction>
#include <QComboBox>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStatusBar>
#include <QTextBlock>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;
using practice::SupportSide;

namespace {

/// An administrator at his desk, logged in, with the console.
struct ChatDesk : Desk
{
    ChatDesk() { operatorSide.isThere = false; } // he speaks when a test lets him

    SupportDesk& support() { return frame().supportDesk(); }
    QWidget* console() { return core().windows.existing(u"qrvrcSupport"_s); }
    QPlainTextEdit& said() { return control<QPlainTextEdit>(u"txtMessages"_s); }
    QPlainTextEdit& typed() { return control<QPlainTextEdit>(u"txtNewMessage"_s); }
    std::size_t entries() { return support().talk()->conversation.size(); }
    QString linkText() { return text(u"lblLink"_s); }

    bool openConsole()
    {
        if (!logIn())
            return false;
        support().open();
        return QTest::qWaitForWindowActive(console()) && QTest::qWaitFor([&] { return support().isConnected(); }) &&
               QTest::qWaitFor([&] { return operatorSide.texts().size() == 1; });
    }
    void typeMessage(const QString& text) { typed().insertPlainText(text); }
    void filter(int who, const QString& text)
    {
        click(u"Option1_%1"_s.arg(who));
        type(u"txtFilter"_s, text);
        click(u"cmdFilter"_s);
    }
    QByteArray lastText() const { return operatorSide.texts().isEmpty() ? QByteArray() : operatorSide.texts().last(); }
    /// @param port  the tracker's
    bool logInAgain(const QString& user, quint16 port)
    {
        link().close();
        chooseProfile(u"New Profile"_s);
        typeProfile(u"Again"_s, user, user, port);
        click(u"cmdConnect"_s);
        return QTest::qWaitFor([&] { return link().user() == user.toStdString(); });
    }
    void trigger(const QString& action) { control<QAction>(action).trigger(); }
    void saveAs(const QString& file)
    {
        auto& dialog = control<QFileDialog>({});
        dialog.findChild<QLineEdit*>()->setText(file);
        static_cast<QDialog&>(dialog).accept();
    }
};

} // namespace

class SupportConsoleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theOldestGoAndTheConsoleSaysSo()
    {
        ChatDesk desk;
        desk.bounds.conversationBytes = 1060;
        QVERIFY(desk.openConsole());
        const QByteArray word(1010, 'x');
        desk.operatorSide.sendRaw(SupportSide::messageOf("one") + SupportSide::messageOf(word));
        QTRY_COMPARE(desk.entries(), std::size_t(2));
        QVERIFY(!desk.text(u"lblShown"_s).contains(u"gone"_s));
        desk.control<QLineEdit>(u"txtSearch"_s).setText(QString(1010, u'x'));
        desk.click(u"cmdSearch"_s);
        QCOMPARE(desk.said().textCursor().selectedText().size(), 1011); // with the line that the word is broken over
        desk.operatorSide.sendRaw(SupportSide::messageOf("three") + SupportSide::messageOf("four"));
        QTRY_COMPARE(desk.support().talk()->conversation.first(), std::size_t(1));
        QVERIFY(desk.said().toPlainText().startsWith(u"Host says:\nfour\n\nHost says:\nthree\n\nHost says:\nx"_s));
        QVERIFY(desk.said().toPlainText().endsWith(u"xxx\n\n"_s));
        QVERIFY(desk.text(u"lblShown"_s).contains(u"oldest 1 are gone"_s));
    }

    void aChatGoesBothWays()
    {
        ChatDesk desk;
        QVERIFY(desk.openConsole());
        QCOMPARE(desk.operatorSide.texts(), QList<QByteArray>{"Announce_YWRtaW4=_(Active)"});
        QCOMPARE(desk.console()->windowTitle(), u"Support Console"_s);

        desk.typeMessage(u"Which map?"_s);
        QTest::keyClick(&desk.typed(), Qt::Key_Return, Qt::ControlModifier);
        desk.typeMessage(u"3 % \u20AC \u00E9"_s);
        QTest::keyClick(&desk.typed(), Qt::Key_Return);
        QTRY_COMPARE(desk.operatorSide.texts().size(), 2);
        QCOMPARE(desk.lastText(),
                 "Message_YWRtaW4=_" + "admin says:\r\nWhich map?\r\n3 % \x80 \xE9\r\n\r\n"_ba.toBase64());
        QVERIFY(desk.typed().toPlainText().isEmpty());

        desk.typeMessage(u"half a word"_s);
        desk.operatorSide.sendRaw("Announce_Busy" + SupportSide::messageOf("<b>Map</b> three") + "Announce_Away");
        QTRY_COMPARE(desk.console()->windowTitle(), u"Support Console - Host Status: Away"_s);
        QCOMPARE(desk.said().toPlainText(),
                 u"Host says:\n<b>Map</b> three\n\nadmin says:\nWhich map?\n3 % \u20AC \u00E9\n\n"_s);
        QCOMPARE(desk.typed().toPlainText(), u"half a word"_s);
        QVERIFY(desk.typed().hasFocus());

        auto& status = desk.control<QComboBox>(u"cboStatus"_s);
        QTest::keyClick(&status, Qt::Key_End);
        QTRY_COMPARE(desk.lastText(), "Announce_YWRtaW4=_(Out for Lunch!)");
    }

    void wordsArriveBehindGarbageWhichIsToldOnce()
    {
        ChatDesk desk;
        desk.operatorSide.isThere = true;
        desk.operatorSide.answerAlways("Announce", Fault::garbage());
        desk.limits.pause = 10ms;
        QVERIFY(desk.logIn());
        desk.support().open();
        QTRY_COMPARE(desk.said().toPlainText(),
                     u"Host says:\nHello admin, this is the host's operator. What can I do for you?\n\n"_s);
        QCOMPARE(desk.console()->windowTitle(), u"Support Console - Host Status: Active"_s);
        QTRY_COMPARE(desk.boxes.count(u"QRVRC Error!"_s), 1);
    }

    void theWaitForTheHostsAnswerEnds_data()
    {
        addColumns<QByteArray, QString>("by", "shown");
        QTest::newRow("support link") << QByteArray("text") << u"Connected."_s;
        QTest::newRow("host link") << QByteArray("reply") << u"Connected."_s;
        QTest::newRow("silence") << QByteArray("nothing") << u"Connected. The host has not answered yet."_s;
        QTest::newRow("drop") << QByteArray("drop") << u"The host closed the support link."_s;
    }
    void theWaitForTheHostsAnswerEnds()
    {
        QFETCH(const QByteArray, by);
        QFETCH(const QString, shown);
        ChatDesk desk;
        if (by == "nothing")
            desk.limits.answer = 1ms;
        QVERIFY(desk.logIn());
        desk.support().open();
        QTRY_COMPARE(desk.operatorSide.texts().size(), 1);
        if (by != "nothing") {
            QCOMPARE(desk.linkText(), u"Connected. Waiting for the host to answer..."_s);
            QVERIFY(!desk.link().ReplyReceived());
        }
        if (by == "text")
            desk.operatorSide.setStatus("Busy");
        else if (by == "reply")
            QVERIFY(desk.refreshQuietly());
        else if (by == "drop")
            desk.operatorSide.closeLinks();
        QTRY_COMPARE(desk.linkText(), shown);
        QVERIFY(desk.link().ReplyReceived());
    }

    void theConsoleOpensWhateverTheLinkDoes()
    {
        ChatDesk desk;
        QVERIFY(desk.open());
        desk.support().open();
        QCOMPARE(desk.linkText(), u"Not connected: log in to the host first."_s);
        desk.typeMessage(u"unsent"_s);
        desk.click(u"cmdSend"_s);
        QCOMPARE(desk.typed().toPlainText(), u"unsent"_s);
        QVERIFY(desk.said().toPlainText().isEmpty());

        desk.operatorSide.stopListening();
        QVERIFY(desk.logIn());
        desk.support().open();
        QTRY_COMPARE(desk.boxes.count(u"Winsock Error"_s), 1);
        QCOMPARE(desk.boxes.onlyText(), u"10061: The host refused the connection."_s);
        QVERIFY(desk.support().isClosed());

        QVERIFY(desk.operatorSide.listen(desk.operatorSide.port()));
        desk.click(u"cmdReconnect"_s);
        QTRY_COMPARE(desk.operatorSide.texts().size(), 1);
        QWidget* first = desk.console();
        desk.support().open();
        QCOMPARE(desk.console(), first);
        QCOMPARE(desk.operatorSide.links(), 1);
    }

    void aTalkBelongsToItsAccount_data()
    {
        // isOpen: whether the console stays open
        addColumns<QString, bool, bool>("user", "elsewhere", "isOpen");
        QTest::newRow("another user") << u"moderator"_s << false << true;
        QTest::newRow("another user, console closed") << u"moderator"_s << false << false;
        QTest::newRow("another tracker") << u"admin"_s << true << true;
    }
    void aTalkBelongsToItsAccount()
    {
        QFETCH(const QString, user);
        QFETCH(const bool, elsewhere);
        QFETCH(const bool, isOpen);
        practice::Tracker other(practice::World::small());
        QVERIFY(other.listen());
        ChatDesk desk;
        other.world().supportPort = desk.operatorSide.port();
        QVERIFY(desk.openConsole());
        desk.operatorSide.say("a secret");
        QTRY_COMPARE(desk.entries(), 1U);
        desk.filter(2, u"secret"_s);
        desk.typeMessage(u"unsent"_s);
        const QString file = QDir(QString::fromStdU16String(desk.path("").u16string())).filePath(u"chat.txt"_s);
        desk.trigger(u"mnuSaveAs"_s);
        if (!isOpen)
            desk.trigger(u"mnuClose"_s);

        QVERIFY(desk.logInAgain(user, elsewhere ? other.port() : desk.tracker.port()));
        QVERIFY(desk.support().isClosed()); // it went to the host before
        if (isOpen)
            desk.saveAs(file);
        const auto announced = desk.operatorSide.texts().size();
        desk.support().open();
        QTRY_COMPARE(desk.operatorSide.texts().size(), announced + 1);
        QCOMPARE(desk.lastText(), "Announce_" + user.toLatin1().toBase64() + "_(Active)");
        for (const QString& field : {desk.said().toPlainText(), desk.typed().toPlainText(), desk.text(u"txtFilter"_s)})
            QCOMPARE(field, QString());
        desk.typed().undo();
        QCOMPARE(desk.typed().toPlainText(), QString());
        if (isOpen) // saved is what was shown when it was asked for, and the file is nobody else's
            QCOMPARE(desk.bytesOf("\\chat.txt"), "Host says:\r\na secret\r\n\r\n\r\n");
        desk.trigger(u"mnuSave"_s);
        QVERIFY(desk.console()->findChild<QFileDialog*>());
        static_cast<QDialog&>(desk.control<QFileDialog>({})).reject();

        QVERIFY(desk.logInAgain(u"admin"_s, desk.tracker.port()));
        QCOMPARE(desk.said().toPlainText(), u"Host says:\na secret\n\n"_s);
        QCOMPARE(desk.typed().toPlainText(), u"unsent"_s);
        QCOMPARE(desk.support().talk()->saveFile.empty(), !isOpen);
    }

    void whatIsWrittenUnseenIsToldOnce_data()
    {
        QTest::addColumn<bool>("isMinimised");
        QTest::newRow("closed") << false;
        QTest::newRow("minimised") << true;
    }
    void whatIsWrittenUnseenIsToldOnce()
    {
        QFETCH(const bool, isMinimised);
        ChatDesk desk;
        QVERIFY(desk.openConsole());
        const QSignalSpy told(&desk.support(), &SupportDesk::unseenMessage);
        const auto* note = desk.frame().statusBar()->findChild<QLabel*>(u"lblNote"_s);
        desk.operatorSide.say("seen");
        QTRY_COMPARE(desk.entries(), 1U);
        QCOMPARE(told.size(), 0);
        for (int round = 1; round <= 2; ++round) {
            isMinimised ? desk.console()->showMinimized() : desk.trigger(u"mnuClose"_s);
            desk.frame().activateWindow();
            QVERIFY(QTest::qWaitForWindowActive(&desk.frame()));
            desk.operatorSide.setStatus("Busy");
            desk.operatorSide.say("first");
            desk.operatorSide.say("second");
            QTRY_COMPARE(desk.entries(), 1U + 2 * round);
            QCOMPARE(told.size(), round);
            QCOMPARE(note->text(),
                     u"The operator of 127.0.0.1 has written to you. Open the support console to read it."_s);
            desk.support().open();
            QTRY_COMPARE(note->text(), QString());
        }
    }

    void closingTheConsoleLosesNothing()
    {
        ChatDesk desk;
        QVERIFY(desk.openConsole());
        desk.operatorSide.say("before");
        QTRY_COMPARE(desk.entries(), 1U);
        desk.filter(2, u"nowhere"_s);
        desk.typeMessage(u"unsent"_s);
        desk.trigger(u"mnuClose"_s);
        QVERIFY(!desk.console());
        desk.operatorSide.say("meanwhile");
        QTRY_COMPARE(desk.entries(), 2U);
        QVERIFY(!desk.console());
        desk.support().open();
        QCOMPARE(desk.said().toPlainText(), u"Host says:\nmeanwhile\n\nHost says:\nbefore\n\n"_s);
        QCOMPARE(desk.typed().toPlainText(), u"unsent"_s);
        QCOMPARE(desk.operatorSide.links(), 1);
    }

    void whatCannotBeSentStays()
    {
        ChatDesk desk;
        QVERIFY(desk.openConsole());
        desk.typeMessage(u" \n "_s);
        desk.click(u"cmdSend"_s);
        desk.typed().setPlainText(u"na\u0142"_s);
        desk.click(u"cmdSend"_s);
        QCOMPARE(desk.boxes.onlyText(), u"The character '\u0142' cannot be sent to the host!"_s);
        QCOMPARE(desk.typed().toPlainText(), u"na\u0142"_s);
        desk.typed().setPlainText(u"good"_s);
        desk.click(u"cmdSend"_s);
        QTRY_COMPARE(desk.operatorSide.texts().size(), 2); // the announcement and this
    }

    void filterSearchAndSaveTakeWhatIsShown()
    {
        ChatDesk desk;
        QVERIFY(desk.openConsole());
        for (const char* text : {"map one", "server two", "map three"})
            desk.operatorSide.say(text);
        desk.typeMessage(u"which map?"_s);
        desk.click(u"cmdSend"_s);
        QTRY_COMPARE(desk.entries(), 4U);

        desk.type(u"txtSearch"_s, u"map"_s);
        QStringList order;
        const auto press = [&](const QString& button) {
            desk.click(button);
            const QTextCursor at = desk.said().textCursor();
            order += at.selectedText() + u' ' + at.block().text();
        };
        press(u"cmdSearch"_s);
        QVERIFY(desk.said().hasFocus());
        press(u"cmdNext"_s);
        press(u"cmdPrevious"_s);
        press(u"cmdPrevious"_s);
        QCOMPARE(order[2], order[0]);
        QCOMPARE(order[3], order[0]); // nothing before it: the selection stays
        QVERIFY(order[1] != order[0]);

        desk.filter(0, u"map"_s);
        desk.operatorSide.say("late");
        QTRY_COMPARE(desk.said().toPlainText(),
                     u"Host says:\nlate\n\nHost says:\nmap three\n\nHost says:\nmap one\n\n"_s);
        QCOMPARE(desk.text(u"lblShown"_s), u"Filter on: 3 of 5 messages"_s);

        desk.trigger(u"mnuSave"_s); // nothing saved yet, so it asks
        QVERIFY(desk.exists("\\SupportSaves"));
        const QString file = QDir(QString::fromStdU16String(desk.path("").u16string())).filePath(u"chat.txt"_s);
        desk.saveAs(file);
        QCOMPARE(desk.bytesOf("\\chat.txt"), "Host says:\r\nlate\r\n\r\nHost says:\r\nmap three\r\n\r\n"
                                             "Host says:\r\nmap one\r\n\r\n\r\n");
        QCOMPARE(desk.boxes.onlyText(), u"File: "_s + QDir::toNativeSeparators(file) + u"\r\n\r\nSaved Successfully"_s);
        desk.filter(1, {});
        desk.trigger(u"mnuSave"_s); // at once
        QCOMPARE(desk.bytesOf("\\chat.txt").count("says:"), 5);
    }

    void whatIsBeingReadStaysInPlace()
    {
        ChatDesk desk;
        QVERIFY(desk.openConsole());
        for (int line = 0; line < 100; ++line)
            desk.operatorSide.say("line " + QByteArray::number(line));
        QTRY_COMPARE(desk.entries(), 100U);
        QCOMPARE(desk.said().verticalScrollBar()->value(), 0); // follows the newest
        desk.said().verticalScrollBar()->setValue(30);
        const QString top = desk.said().cursorForPosition({2, 2}).block().text();
        desk.operatorSide.say("more");
        QTRY_COMPARE(desk.entries(), 101U);
        QCOMPARE(desk.said().cursorForPosition({2, 2}).block().text(), top);
    }

    void aHostThatFloodsIsCutOff_data()
    {
        QTest::addColumn<char>("flood");
        QTest::newRow("with Base64") << 'A';
        QTest::newRow("with what is none") << '!';
    }
    void aHostThatFloodsIsCutOff()
    {
        QFETCH(const char, flood);
        ChatDesk desk;
        QVERIFY(desk.openConsole());
        desk.operatorSide.sendRaw("Message_" + QByteArray(1 << 20, flood));
        QTRY_VERIFY(desk.support().isClosed());
        QTRY_COMPARE(desk.boxes.count(u"Failed!"_s), 1);
        QCOMPARE(desk.linkText(), u"The host sent a message larger than 256 KiB. The support link was closed."_s);
        QVERIFY(desk.link().isConnected());
    }
};

QTEST_MAIN(SupportConsoleTest)
#include "SupportConsoleTest.moc"
