#include "live/support/SupportDesk.h"
#include "support/AddRow.h"
#include "support/Desk.h"
#include "ui/WindowRegistry.h"

#include <QAbstractButton>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QDateEdit>
#include <QEventLoop>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTabBar>
#include <QTimer>

#include <algorithm>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

/// Presses a control as a screen reader does, which no box in front keeps from it.
void press(QAccessibleInterface* control)
{
    control->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
}
void pressTab(QTabBar& strip, int index)
{
    press(QAccessible::queryAccessibleInterface(&strip)->child(index));
}

using Step = std::function<void(Desk& desk, const Pane& window)>;

Step pressing(const QString& control)
{
    return [control](Desk&, const Pane& window) {
        press(QAccessible::queryAccessibleInterface(&window.control(control)));
    };
}

/// Such a press lasts a moment.
bool isPressed(const QWidget* window)
{
    const auto buttons = window ? window->findChildren<QAbstractButton*>() : QList<QAbstractButton*>();
    return std::any_of(buttons.begin(), buttons.end(), [](const QAbstractButton* button) { return button->isDown(); });
}

/// The first main tab, behind which the login window is.
void pressLogin(Desk& desk, const Pane&)
{
    pressTab(desk.in(u"qrvrcMenu"_s).control<QTabBar>(u"tsMain"_s), 0);
}

} // namespace

Q_DECLARE_METATYPE(Step)

class UnloadTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aWindowOutlivesItsBox_data()
    {
        addColumns<QString, Step, Step, bool>("name", "openBox", "close", "staysBehindBox");
        const Step openWeapons = [](Desk&, const Pane& window) { pressTab(window.control<QTabBar>(u"tsMain"_s), 1); };
        const Step getFiles = [](Desk& desk, const Pane& window) {
            auto& from = window.control<QDateEdit>(u"dtpFrom"_s);
            from.setDate(from.date().addDays(1));
            pressing(u"cmdGetFiles"_s)(desk, window);
        };
        const Step save = [](Desk& desk, const Pane& window) {
            window.control<QComboBox>(u"cboStats"_s).setCurrentIndex(0);
            pressing(u"cmdModify"_s)(desk, window);
        };
        const Step say = [](Desk& desk, const Pane& window) {
            window.control<QPlainTextEdit>(u"txtNewMessage"_s).setPlainText(QString(QChar(0x3A9)));
            pressing(u"cmdSend"_s)(desk, window);
        };
        const Step command = [](Desk& desk, const Pane& window) {
            window.control<QComboBox>(u"cboProfile"_s).setCurrentIndex(1);
            window.control<QLineEdit>(u"txtPort"_s).setText(u"x"_s);
            pressing(u"cmdSendCmd"_s)(desk, window);
        };
        const Step closeIt = [](Desk&, const Pane& window) { window.window().close(); };
        QTest::newRow("statistics") << u"qrvrcPlayerStats"_s << openWeapons << pressing(u"cmdClose"_s) << true;
        QTest::newRow("statistics, left") << u"qrvrcPlayerStats"_s << openWeapons << Step(pressLogin) << false;
        QTest::newRow("files, left") << u"qrvrcFileManager"_s << getFiles << Step(pressLogin) << false;
        QTest::newRow("editor") << u"qrvrcModify"_s << save << pressing(u"cmdCancel"_s) << true;
        QTest::newRow("support") << u"qrvrcSupport"_s << say << closeIt << false;
        QTest::newRow("recovery") << u"qrvrcRecovery"_s << command << pressing(u"cmdClose"_s) << false;
    }
    void aWindowOutlivesItsBox()
    {
        QFETCH(const QString, name);
        QFETCH(const Step, openBox);
        QFETCH(const Step, close);
        QFETCH(const bool, staysBehindBox);
        Desk desk;
        desk.hasRealBoxes = true;
        QVERIFY(desk.logIn());
        if (name == u"qrvrcSupport"_s)
            desk.frame().supportDesk().open();
        else if (name == u"qrvrcRecovery"_s)
            desk.core().windows.window(name)->show();
        else
            desk.frame().showWindowFor(name, {.id = 1, .name = "Alpha", .gameVersion = {}});
        const QPointer<QWidget> window = desk.core().windows.existing(name);
        QVERIFY(window);
        QVERIFY(QTest::qWaitFor([&] { return window->isVisible() && window->isEnabled(); }));
        if (auto* save = window->findChild<QWidget*>(u"cmdModify"_s))
            QVERIFY(QTest::qWaitFor([&] { return save->isEnabled(); })); // the profile has been read
        QVERIFY(desk.settles());

        QEventLoop program; // as the program's own, below which no box runs
        QTimer watch;
        int turns = 0;
        connect(&watch, &QTimer::timeout, &program, [&] {
            auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
            if (!box || isPressed(window) || ++turns > 3)
                return;
            QVERIFY2(window, "deleted with its box on the stack");
            if (turns == 1)
                return close(desk, Pane(*window));
            QCOMPARE(window->isVisible(), staysBehindBox);
            if (turns == 3) // time enough for what is deleted too early
                box->accept();
        });
        connect(window, &QObject::destroyed, &program, &QEventLoop::quit);
        QTimer::singleShot(0, window, [&] { openBox(desk, Pane(*window)); });
        QTimer::singleShot(30s, &program, [&] { // only a fault lets it come to that
            if (QWidget* const box = QApplication::activeModalWidget())
                box->close();
            program.quit();
        });
        watch.start(1ms);
        program.exec();
        QCOMPARE(turns, 3);
        QVERIFY(!window);
        QVERIFY(!desk.core().windows.isCreated(name));
    }
};

QTEST_MAIN(UnloadTest)
#include "UnloadTest.moc"
