#include "plugins/ComponentCheck.h"

#include "base/RuntimeError.h"
#include "platform/components/Component.h"
#include "platform/system/FileBytes.h"
#include "plugins/ComponentEntries.h"
#include "support/ClientRig.h"
#include "support/Pane.h"

#include <QAction>
#include <QApplication>
#include <QLabel>
#include <QListWidget>
#include <QProgressBar>
#include <QRegularExpression>
#include <QTimer>

#include <set>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr int patience = 30'000; // milliseconds; only a fault makes anybody wait that long

/// A check over a folder of its own. What the window is to be driven by runs once the check waits for its user, or,
/// with `whileTesting`, as soon as there is a window.
struct CheckRig : ClientRig
{
    ProblemFiles problems;
    std::set<std::string> broken;      ///< classes that cannot be created
    std::set<std::string> registrable; ///< files whose registration succeeds
    QStringList created;
    QStringList caption; ///< of the exported text, and the text
    QPointer<qrvrcDllProgress> window;
    bool listWasShown = false;
    std::chrono::milliseconds showsAfter = std::chrono::hours(1);

    ComponentServices services()
    {
        return {
            .test = [this](const std::string& progId) -> ComponentFault {
                created += codePage.toText(progId);
                return broken.contains(progId) ? ComponentFault(progId + " is broken") : std::nullopt;
            },
            .registerFile = [this](const std::filesystem::path& file) -> ComponentFault {
                if (file.filename() == "raises.dll")
                    throw RuntimeError(ErrorNumber::PermissionDenied, "raises.dll");
                if (std::filesystem::exists(file) && registrable.contains(file.filename().string()))
                    return std::nullopt;
                return "it refuses";
            },
            .showText =
                [this](const QString& title, const QString& text) {
                    caption = {title, text};
                },
        };
    }

    void put(const char* layoutName)
    {
        folder.makeFolder("\\Plugins");
        writeBytes(folder.path(layoutName), "no library");
    }

    bool run(const std::function<void()>& user = {}, bool whileTesting = false)
    {
        return run(services(), user, whileTesting);
    }

    bool run(ComponentServices access, const std::function<void()>& user = {}, bool whileTesting = false)
    {
        QTimer look;
        bool isUsed = false;
        QObject::connect(&look, &QTimer::timeout, &look, [&] {
            for (QWidget* widget : QApplication::topLevelWidgets()) {
                if (widget->isVisible() && widget->objectName() == u"qrvrcDllProgress"_s)
                    window = static_cast<qrvrcDllProgress*>(widget);
            }
            if (!window || isUsed || (!whileTesting && !(list().isVisible() && window->isActiveWindow())))
                return;
            isUsed = true;
            listWasShown = list().isVisible();
            if (user)
                user();
        });
        look.start(1);
        ComponentCheck check(client, std::move(access), problems);
        check.showsAfter = showsAfter;
        return check.run(nullptr);
    }

    template <typename Part>
    Part& part(const char* name)
    {
        return Pane(*window).control<Part>(QLatin1String(name));
    }
    QListWidget& list() { return part<QListWidget>("List1"); }
    QStringList lines() { return Pane(*window).column(u"List1"_s); }
    void press(const char* button) { Pane(*window).click(QLatin1String(button)); }
    void tickAll() { list().selectAll(); }
    QStringList boxTexts() const
    {
        QStringList texts;
        for (const RecordingDialogs::Box& box : boxes.boxes)
            texts += box.title + u'|' + box.text;
        return texts;
    }
};

} // namespace

class ComponentCheckTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void withoutComponentsThereIsNoWindow()
    {
        CheckRig rig;
        QVERIFY(rig.run());
        QVERIFY(!rig.window);
        QCOMPARE(std::filesystem::current_path(), std::filesystem::canonical(rig.folder.root()));
    }

    void goodComponentsPassWithoutAWindow()
    {
        CheckRig rig;
        rig.put("\\Plugins\\one.dll");
        writeBytes(rig.folder.root() / "Plugins" / "ONE.dll", "x");
        QVERIFY(rig.run());
        QVERIFY(!rig.window);
        QCOMPARE(rig.created, QStringList(u"ONE.clsPlugin"_s)); // one name, one class
    }

    void aTestThatLastsHasAWindowButNoList()
    {
        CheckRig rig;
        rig.showsAfter = 0ms;
        for (const char* file : {"\\qrvZip.dll", "\\qrvrcGMF.dll", "\\qrvrcMFM.dll", "\\Plugins\\one.dll"})
            rig.put(file);
        bool proceedWasOffered = true;
        ComponentServices services = rig.services();
        services.test = [&](const std::string& progId) {
            while (!rig.window && !rig.created.isEmpty()) // the second one lasts
                QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
            return rig.services().test(progId);
        };
        QVERIFY(rig.run(
            services,
            [&] {
                rig.window->close(); // must not end a test that is under way
                proceedWasOffered = rig.part<QWidget>("cmdProceed").isEnabled();
            },
            true));
        QVERIFY(!proceedWasOffered);
        QVERIFY(!rig.listWasShown);
        QCOMPARE(rig.created, QStringList({u"qrvrcGMF.clsMemory"_s, u"qrvrcMFM.clsMFD"_s, u"one.clsPlugin"_s}));
        QVERIFY(rig.boxes.boxes.isEmpty());
        QVERIFY(rig.problems.names.empty());
    }

    void whatFailsIsListedAndTheRestIsStillTested()
    {
        CheckRig rig;
        for (const char* file : {"\\qrvrcGMF.dll", "\\Plugins\\bad.dll", "\\Plugins\\good.dll"})
            rig.put(file);
        writeBytes(rig.folder.root() / "Plugins" / "..\\up.dll", "x"); // a plain name here, a path elsewhere
        rig.broken = {"qrvrcGMF.clsMemory", "bad.clsPlugin"};
        QStringList lines;
        QVERIFY(rig.run([&] {
            lines = rig.lines();
            QCOMPARE(rig.window->windowTitle(), u"Problematic ActiveX Files"_s);
            QVERIFY(rig.part<QProgressBar>("ProgressBar1").isHidden());
            QVERIFY(rig.part<QLabel>("Label1").isHidden());
            QVERIFY(rig.part<QLabel>("Label2").isVisible());
            QVERIFY(rig.list().item(2)->toolTip().contains(u"bad.clsPlugin is broken"_s));
            rig.press("cmdProceed");
        }));
        QCOMPARE(lines, QStringList({u"Unregistered function File: qrvrcGMF.dll"_s,
                                     u"Unregistered Plugin File: \\Plugins\\..\\up.dll"_s,
                                     u"Unregistered Plugin File: \\Plugins\\bad.dll"_s}));
        QCOMPARE(rig.created.last(), u"good.clsPlugin"_s);
        QCOMPARE(rig.boxes.count(u"Caution!!!"_s), 1);
        const std::vector<std::string> left{"qrvrcGMF.dll", "..\\up.dll", "bad.dll"};
        QCOMPARE(rig.problems.names, left);
        QCOMPARE(rig.problems.reasonFor("BAD.dll"), std::string("bad.clsPlugin is broken"));
    }

    void noMeansStayHoweverTheWindowIsClosed_data()
    {
        QTest::addColumn<int>("way");
        QTest::newRow("Proceed") << 0;
        QTest::newRow("the window's close button") << 1;
        QTest::newRow("Escape") << 2;
    }
    void noMeansStayHoweverTheWindowIsClosed()
    {
        QFETCH(const int, way);
        CheckRig rig;
        rig.put("\\Plugins\\bad.dll");
        rig.broken = {"bad.clsPlugin"};
        bool stayed = false;
        QVERIFY(rig.run([&] {
            const auto leave = [&] {
                if (way == 0)
                    rig.press("cmdProceed");
                else if (way == 1)
                    rig.window->close();
                else
                    QTest::keyClick(&rig.list(), Qt::Key_Escape);
            };
            rig.boxes.answer = false;
            leave();
            stayed = rig.window->isVisible() && rig.problems.names.empty();
            rig.boxes.answer = true;
            rig.boxes.whileOpen = [&] { rig.window->close(); }; // asked once, however often it is closed meanwhile
            leave();
        }));
        QVERIFY(stayed);
        QCOMPARE(rig.boxes.count(u"Caution!!!"_s), 2);
        QCOMPARE(rig.problems.names, std::vector<std::string>{"bad.dll"});
    }

    void selectedFilesAreRegistered()
    {
        CheckRig rig;
        for (const char* file : {"\\Plugins\\ok.dll", "\\Plugins\\poor.dll", "\\Plugins\\raises.dll", "\\qrvrcMFM.dll"})
            rig.put(file);
        rig.broken = {"ok.clsPlugin", "poor.clsPlugin", "raises.clsPlugin", "qrvrcMFM.clsMFD"};
        rig.registrable = {"ok.dll", "qrvrcMFM.dll"};
        QStringList remaining;
        ComponentServices services = rig.services();
        services.registerFile = [&](const std::filesystem::path& file) {
            rig.window->close(); // events run meanwhile: nothing of this may begin anything
            for (const char* action : {"mnuDelete", "mnuRegister"})
                rig.part<QAction>(action).trigger();
            return rig.services().registerFile(file);
        };
        QVERIFY(rig.run(services, [&] {
            rig.part<QAction>("mnuRegister").trigger();
            rig.tickAll();
            rig.part<QAction>("mnuRegister").trigger();
            remaining = rig.lines();
            QVERIFY(rig.list().item(0)->toolTip().contains(u"it refuses"_s)); // now known better
            rig.press("cmdProceed");
        }));
        QCOMPARE(remaining, QStringList({u"Unregistered Plugin File: \\Plugins\\poor.dll"_s,
                                         u"Unregistered Plugin File: \\Plugins\\raises.dll"_s}));
        const QStringList texts = rig.boxTexts();
        QCOMPARE(texts.size(), 7);
        QCOMPARE(texts[0], u"Failed!|You have not selected any items from the list to register!"_s);
        QCOMPARE(texts[1], u"Success|ActiveX File qrvrcMFM.dll Registered Successfully."_s);
        QCOMPARE(texts[2], u"Success|ActiveX File \\Plugins\\ok.dll Registered Successfully."_s);
        QCOMPARE(texts[3], u"Failed!|Failed to Register ActiveX File \\Plugins\\poor.dll"_s);
        QVERIFY(texts[4].contains(u"RegisterFile"_s));
        QCOMPARE(texts[5], u"Failed!|Failed to Register ActiveX File \\Plugins\\raises.dll"_s);
    }

    void selectedFilesAreDeletedWhenTheUserIsSure()
    {
        CheckRig rig;
        rig.put("\\Plugins\\gone.dll");
        rig.put("\\Plugins\\kept.dll");
        writeBytes(rig.folder.root() / "Plugins" / "sub\\odd.dll", "x");
        rig.folder.makeFolder("\\Plugins\\sub");
        writeBytes(rig.folder.root() / "Plugins" / "sub" / "odd.dll", "another file");
        rig.broken = {"gone.clsPlugin", "kept.clsPlugin"};
        QStringList remaining;
        QVERIFY(rig.run([&] {
            QTest::keyClick(&rig.list(), Qt::Key_Delete);
            QTest::keyClick(&rig.list(), Qt::Key_Space); // ticks gone.dll
            QTest::keyClick(&rig.list(), Qt::Key_End);
            QTest::keyClick(&rig.list(), Qt::Key_Space); // and the odd one, but not what lies between
            rig.boxes.answer = false;
            QTest::keyClick(&rig.list(), Qt::Key_Delete);
            QVERIFY(rig.folder.fileExists("\\Plugins\\gone.dll"));
            rig.boxes.answer = true;
            QTest::keyClick(&rig.list(), Qt::Key_Delete);
            remaining = rig.lines();
            rig.press("cmdProceed");
        }));
        QVERIFY(!rig.folder.fileExists("\\Plugins\\gone.dll"));
        QVERIFY(rig.folder.fileExists("\\Plugins\\kept.dll"));
        QVERIFY(std::filesystem::exists(rig.folder.root() / "Plugins" / "sub" / "odd.dll"));
        QCOMPARE(remaining, QStringList({u"Unregistered Plugin File: \\Plugins\\kept.dll"_s,
                                         u"Unregistered Plugin File: \\Plugins\\sub\\odd.dll"_s}));
        QCOMPARE(rig.boxTexts().mid(0, 5),
                 QStringList({u"Failed!|You have not selected any items from the list to delete!"_s,
                              u"Confirmation Required|Are you sure you wish to delete the selected items?"_s,
                              u"Confirmation Required|Are you sure you wish to delete the selected items?"_s,
                              u"Success|ActiveX File \\Plugins\\gone.dll Deleted Successfully."_s,
                              u"Failed!|Failed to Delete ActiveX File \\Plugins\\sub\\odd.dll"_s}));
    }

    void theExportHoldsWhatIsStillListed()
    {
        CheckRig rig;
        rig.put("\\Plugins\\bad \xE4.dll");
        rig.broken = {"bad \xE4.clsPlugin"};
        QVERIFY(rig.run([&] {
            rig.press("cmdExport");
            rig.press("cmdProceed");
        }));
        std::filesystem::remove(rig.folder.path("\\Plugins\\bad \xE4.dll")); // a name that Qt does not remove
        QCOMPARE(rig.caption.value(0), u"NotePad - Problematic ActiveX Files"_s);
        static const QRegularExpression head(
            uR"(^File: Problematic ActiveX Files\r\nDate: \d{4}-\d\d-\d\d\r\nTime: \d\d:\d\d:\d\d\r\n)"
            uR"(Operating System: [^\r\n]+, \d+\.\d+, [^\r\n]*, \d+\.\d+\r\n)"_s);
        QVERIFY2(head.match(rig.caption.value(1)).hasMatch(), qPrintable(rig.caption.value(1)));
        QVERIFY(rig.caption.value(1).endsWith(
            u"\r\nUnregistered Plugin File: \\Plugins\\bad ä.dll\r\n    bad ä.clsPlugin is broken"_s));
    }

    void quittingUnwindsTheCheck_data()
    {
        QTest::addColumn<bool>("whileTesting");
        QTest::newRow("during the tests") << true;
        QTest::newRow("while the user decides") << false;
    }
    void quittingUnwindsTheCheck()
    {
        QFETCH(const bool, whileTesting);
        CheckRig rig;
        for (const char* file : {"\\Plugins\\a.dll", "\\Plugins\\b.dll", "\\Plugins\\c.dll"})
            rig.put(file);
        rig.broken = {"a.clsPlugin"};
        bool goesOn = true;
        ComponentServices services = rig.services();
        if (whileTesting) {
            services.test = [&](const std::string&) {
                rig.created += u"tried"_s;
                QCoreApplication::exit();
                return ComponentFault();
            };
        }
        QTimer::singleShot(0, qApp, [&] {
            goesOn = rig.run(services, [&] { QCoreApplication::exit(); });
            QCoreApplication::exit();
        });
        QTimer::singleShot(patience, qApp, [] { QCoreApplication::exit(1); });
        QCOMPARE(QCoreApplication::exec(), 0);
        QVERIFY(!goesOn);
        QCOMPARE(rig.created.size(), whileTesting ? 1 : 3);
        QVERIFY(rig.boxes.boxes.isEmpty());
        QVERIFY(rig.problems.names.empty());
    }
};

QTEST_MAIN(ComponentCheckTest)
#include "ComponentCheckTest.moc"
