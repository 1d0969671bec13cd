#include "plugins/PluginHost.h"

#include "support/AddRow.h"
#include "support/Desk.h"
#include "support/Registration.h"

#include <QLabel>
#include <QListWidget>
#include <QSignalSpy>
#include <QStatusBar>

using namespace Qt::StringLiterals;

namespace {

/// The two example plugins in the desk's folder, registered, so that the start does not stop at them.
/// @param watchFile  under which name "Match Watch" lies there
void addPlugins(const Desk& desk, const std::string& watchFile = "qrvrcWatch.dll")
{
    const AppFolder folder(desk.path(""));
    folder.makeFolder("\\Plugins");
    const std::filesystem::path built = QRVRC_EXAMPLE_DIR;
    Components components(folder);
    const auto add = [&](const char* source, const std::string& file) {
        const std::filesystem::path target = folder.path("\\Plugins") / file;
        std::filesystem::copy_file(built / source, target);
        if (!isRegistered(components, target))
            qFatal("%s cannot be registered", source);
    };
    add("qrvrcBHDGS.dll", "qrvrcBHDGS.dll");
    add("qrvrcWatch.dll", watchFile);
}

/// Every plugin of the table: its file's base, "+" when it is enabled or "-", and "r" when the account may not use it.
QString tableOf(Desk& desk)
{
    QStringList plugins;
    for (const Plugin& plugin : desk.core().plugins.plugins)
        plugins += QString::fromStdString(plugin.base) + (plugin.enabled ? u'+' : u'-') +
                   (plugin.restricted ? u"r"_s : QString());
    return plugins.join(u' ');
}

/// Versions of the tracker's plugins where they are not the usual ones, or that it does not have them.
using Versions = QMap<QByteArray, QByteArray>;
const QByteArray gone = "gone";

} // namespace

class PluginHostTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatTheTrackerRunsIsEnabled_data()
    {
        // update: files of the warning that are to be updated
        // disabled: plugins that it names
        addColumns<QString, Versions, QString, QString, QString>("user", "versions", "table", "update", "disabled");
        const auto row = [](const char* name, const QString& user, const Versions& versions, const QString& table,
                            const QString& update = {},
                            const QString& disabled = {}) { addRow(name, user, versions, table, update, disabled); };
        const QString super = u"admin"_s;
        const QString watchFile = u"qrvrcWatch.dll\r\n"_s;
        const QString watch = u"Match Watch (qrvrcWatch.dll)\r\n"_s;
        row("both", super, {}, u"qrvrcBHDGS+ qrvrcWatch+"_s);
        row("one", super, {{"Match Watch", gone}}, u"qrvrcBHDGS+ qrvrcWatch-"_s);
        row("none", super, {{"Match Watch", gone}, {"BHD Auto Start", gone}}, u"qrvrcBHDGS- qrvrcWatch-"_s);
        row("no version", super, {{"Match Watch", ""}}, u"qrvrcBHDGS+ qrvrcWatch+"_s);
        row("one is outdated", super, {{"Match Watch", "1001"}}, u"qrvrcBHDGS+ qrvrcWatch-"_s, watchFile, watch);
        row("both are outdated", super, {{"Match Watch", "2"}, {"BHD Auto Start", "1000.1"}},
            u"qrvrcBHDGS- qrvrcWatch-"_s, u"qrvrcBHDGS.dll\r\n"_s + watchFile,
            u"BHD Auto Start (qrvrcBHDGS.dll)\r\n"_s + watch);
        row("restricted for the account", u"guest"_s, {}, u"qrvrcBHDGS+r qrvrcWatch+r"_s);
        row("outdated and restricted", u"guest"_s, {{"Match Watch", "1001"}}, u"qrvrcBHDGS+r qrvrcWatch-r"_s, watchFile,
            watch);
    }
    void whatTheTrackerRunsIsEnabled()
    {
        QFETCH(const QString, user);
        QFETCH(const Versions, versions);
        QFETCH(const QString, update);
        QFETCH(const QString, disabled);
        Desk desk;
        addPlugins(desk);
        for (const auto& [plugin, version] : versions.asKeyValueRange()) {
            if (version == gone)
                desk.tracker.world().removePlugin(plugin);
            else
                desk.tracker.world().setPluginVersion(plugin, version);
        }
        QVERIFY(desk.open());
        QVERIFY(!desk.core().plugins.isEnabled("BHD Auto Start")); // nobody reports it yet
        QVERIFY(desk.logIn(user));
        QTEST(tableOf(desk), "table");
        const PluginTable& table = desk.core().plugins;
        for (int again = 0; again < 2; ++again) { // a new load neither doubles a line nor warns
            QCOMPARE(QString::fromStdString(table.updateNeeded), update);
            QCOMPARE(QString::fromStdString(table.disabled), disabled);
            QCOMPARE(desk.boxes.boxes.size(), disabled.isEmpty() ? 0 : 1);
            desk.core().pluginHost.LoadPlugins();
        }
        if (!disabled.isEmpty()) {
            const QString heading = u"\r\n\r\nThe following files have been disabled: \r\n"_s;
            QCOMPARE(desk.boxes.boxes.constFirst(),
                     (RecordingDialogs::Box{u"Action Required!"_s, update + heading + disabled}));
        }
        QCOMPARE(desk.control(u"cmdStop"_s).isVisible(), table.isEnabled("BHD Auto Start"));
        desk.clickTab(u"tsSection"_s, u"Server Manager"_s);
        const bool isOffered = table.find("Match Watch")->isOffered();
        QCOMPARE(desk.tabs(u"tsSM"_s),
                 isOffered ? QStringList({u"Admin"_s, u"Match Watch"_s}) : QStringList(u"Admin"_s));
    }

    void problemFilesAreSkippedInAnyLetterCase_data()
    {
        // table: nobody has logged in, so everything is restricted
        addColumns<QString, QString, QString>("file", "problem", "table");
        addRow("as it is", u"qrvrcWatch.dll"_s, u"qrvrcWatch.dll"_s, u"qrvrcBHDGS-r"_s);
        addRow("a file in another case", u"qrvrcWatch.DLL"_s, u"qrvrcwatch.dll"_s, u"qrvrcBHDGS-r"_s);
        addRow("ending in another case", u"qrvrcWatch.DLL"_s, u"other.dll"_s, u"qrvrcBHDGS-r qrvrcWatch-r"_s);
    }
    void problemFilesAreSkippedInAnyLetterCase()
    {
        QFETCH(const QString, file);
        QFETCH(const QString, problem);
        Desk desk;
        addPlugins(desk, file.toStdString());
        desk.put("\\Plugins\\readme.txt", "no plugin");
        QVERIFY(desk.open());
        desk.put("\\Plugins\\.dll", "no name"); // the start would stop at it
        desk.core().problems.names = {problem.toStdString()};
        desk.core().pluginHost.LoadPlugins();
        QTEST(tableOf(desk), "table");
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void whatCannotBeLoadedIsLeftOutAndNamedOnce_data()
    {
        QTest::addColumn<QByteArray>("file");
        for (const char* file : {"a.dll", "qrvrcCC.dll", "x y.DLL"})
            QTest::newRow(file) << QByteArray(file);
    }
    void whatCannotBeLoadedIsLeftOutAndNamedOnce()
    {
        QFETCH(const QByteArray, file);
        Desk desk;
        addPlugins(desk);
        QVERIFY(desk.logIn());
        desk.clickTab(u"tsMain"_s, u"Plugins"_s);
        QVERIFY(desk.settles());
        desk.put("\\Plugins\\" + file, "a text");
        QSignalSpy changed(&desk.core().pluginHost, &PluginHost::tableChanged);
        for (int load = 1; load <= 2; ++load) {
            desk.core().pluginHost.LoadPlugins();
            QCOMPARE(tableOf(desk), u"qrvrcBHDGS+ qrvrcWatch+"_s);
            QCOMPARE(changed.size(), load); // windows follow what there is
        }
        QCOMPARE(desk.core().plugins.leftOut.size(), 1U);
        QVERIFY(desk.control<QListWidget>(u"lstLeftOut"_s).item(0)->text().contains(QString::fromLatin1(file)));
        const QString text = desk.boxes.onlyText();
        QVERIFY2(text.contains(u"Error 429: "_s) && text.contains(QString::fromLatin1(file)), qPrintable(text));
        QVERIFY2(text.endsWith(u"Function/Sub: LoadPlugins"_s), qPrintable(text));
        std::filesystem::remove(desk.path("\\Plugins\\" + file));
        desk.core().pluginHost.LoadPlugins();
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS+ qrvrcWatch+"_s);
    }

    void whatIsNewIsTriedBehindTheLoad()
    {
        Desk desk;
        addPlugins(desk);
        QVERIFY(desk.logIn());
        std::vector<std::string> tries;
        std::function<void()> answer;
        const auto start = [&] {
            desk.core().components.setProbe([&](const auto&, const std::string& progId, const auto& done) {
                tries.push_back(progId);
                const bool isBad = progId.starts_with("qrvrcWatch");
                answer = [done, isBad] {
                    using How = Components::Verdict::How;
                    done({isBad ? How::Failed : How::Passed, isBad ? "it fell over" : ""});
                };
            });
        };
        start();
        // A class that has been created in this run counts as tried until it is registered anew.
        desk.core().pluginHost.LoadPlugins();
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS+ qrvrcWatch+"_s);
        const QSignalSpy arrived(&desk.core().pluginHost, &PluginHost::arrived);
        desk.core().pluginHost.takeArrived({"qrvrcWatch.dll", "readme.txt", "gone.dll"});
        QVERIFY(tries.empty()); // never within the call
        QTRY_COMPARE(tries.size(), 1U);
        answer(); // its registration
        QCOMPARE(tries.back(), std::string("qrvrcWatch.clsPlugin"));
        desk.core().pluginHost.LoadPlugins(); // as a reply does meanwhile
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS+"_s);
        answer();
        QTRY_COMPARE(arrived.size(), 1);
        QCOMPARE(tries.size(), 2U);
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS+"_s);
        QVERIFY(desk.core().plugins.leftOut.at(0).why.find("it fell over") != std::string::npos);
        const QString told = desk.boxes.boxes.constLast().text;
        QVERIFY2(told.contains(u"left out until the next start:\r\nqrvrcWatch.dll: "_s), qPrintable(told));
        desk.core().pluginHost.takeArrived({"qrvrcBHDGS.dll"});
        for (std::size_t count = 3; count <= 4; ++count) {
            QTRY_COMPARE(tries.size(), count);
            answer();
        }
        QTRY_COMPARE(arrived.size(), 2);
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS+"_s);
        QVERIFY(desk.boxes.boxes.constLast().text.endsWith(u"can be used now:\r\nqrvrcBHDGS.dll"_s));
    }

    void eachNewPluginIsTriedOnceHoweverOftenTheTableIsBuilt()
    {
        Desk desk;
        addPlugins(desk);
        QVERIFY(desk.logIn());
        std::vector<std::function<void()>> trials;
        desk.core().components.setProbe([&](const auto&, const std::string& progId, const auto& done) {
            return progId.empty() ? done({}) : trials.push_back([done] { done({}); });
        });
        for (const char* file : {"\\Plugins\\qrvrcBHDGS.dll", "\\Plugins\\qrvrcWatch.dll"}) // known no more
            desk.core().components.registerFile(desk.path(file), [](const ComponentFault&) {});
        const QSignalSpy built(&desk.core().pluginHost, &PluginHost::tableChanged);
        for (int load = 0; load < 3; ++load)
            desk.core().pluginHost.LoadPlugins();
        for (std::size_t count = 1; count <= 2; ++count) {
            QTRY_COMPARE(trials.size(), count); // one at a time
            trials.back()();
        }
        QTRY_COMPARE(tableOf(desk), u"qrvrcBHDGS+ qrvrcWatch+"_s);
        QCOMPARE(built.size(), 5);
    }

    void theEndOfAConnectionForgetsWhatTheTrackerRan_data()
    {
        QTest::addColumn<bool>("byUser");
        QTest::newRow("disconnected") << true;
        QTest::newRow("dropped") << false;
    }
    void theEndOfAConnectionForgetsWhatTheTrackerRan()
    {
        QFETCH(const bool, byUser);
        Desk desk;
        addPlugins(desk);
        QVERIFY(desk.logIn());
        desk.clickTab(u"tsMain"_s, u"Plugins"_s);
        const auto& window = desk.control(u"qrvrcPlugins"_s);
        window.findChild<QListWidget*>(u"lstPlugins"_s)->setCurrentRow(1);
        const auto* status = window.findChild<QLabel*>(u"lblStatus"_s);
        QCOMPARE(status->text(), u"Status: Enabled"_s);
        if (byUser) {
            desk.clickTab(u"tsMain"_s, u"Login"_s);
            desk.click(u"cmdDisconnect"_s);
        } else {
            desk.tracker.resetLinks();
        }
        QTRY_COMPARE(status->text(), u"Status: Disabled"_s);
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS-r qrvrcWatch-r"_s); // nobody has rights any more
        QVERIFY(desk.core().plugins.trackerNames.empty());
        // The next tracker's versions count, at their own positions.
        desk.tracker.world().plugins.swapItemsAt(0, 1);
        desk.tracker.world().setPluginVersion("Match Watch", "1001");
        QVERIFY(desk.logIn(u"moderator"_s));
        QVERIFY(desk.core().plugins.isEnabled("BHD Auto Start"));
        QVERIFY(!desk.core().plugins.isEnabled("Match Watch"));
        QCOMPARE(desk.boxes.boxes.size(), 1);
    }

    void aStatusThatWasDamagedIsAskedForAgain_data()
    {
        QTest::addColumn<int>("damaged"); // answers, one after the other
        QTest::addColumn<int>("asked");   // requests of the login
        QTest::newRow("never") << 0 << 1;
        QTest::newRow("once") << 1 << 2;
        QTest::newRow("twice") << 2 << 2;
    }
    void aStatusThatWasDamagedIsAskedForAgain()
    {
        QFETCH(const int, damaged);
        QFETCH(const int, asked);
        Desk desk;
        addPlugins(desk);
        QVERIFY(desk.open());
        for (int answer = 0; answer < damaged; ++answer)
            desk.tracker.answerNextWith("GetStatus", "Status_TWF0Y2ggV2F0Y2g=-1-x-1|%%%%-1-x");
        QVERIFY(desk.logIn());
        QCOMPARE(desk.requestCount("GetStatus"), asked);
        QCOMPARE(desk.core().plugins.isTrackerKnown, damaged < 2);
        for (const QString& tab : {u"Plugins"_s, u"Login"_s, u"Plugins"_s}) {
            desk.clickTab(u"tsMain"_s, tab);
            QTRY_VERIFY(desk.core().plugins.isTrackerKnown);
        }
        desk.clickTab(u"tsMain"_s, u"Profile List"_s); // a request behind all that the window may have sent
        QVERIFY(desk.settles());
        QCOMPARE(desk.requestCount("GetStatus"), damaged + 1);
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS+ qrvrcWatch+"_s);
        QCOMPARE(desk.core().plugins.trackerNames.size(), 2U); // nothing of what was damaged
        QCOMPARE(desk.boxes.boxes.size(), damaged);
    }

    void aStatusThatIsLateIsAskedForOnce()
    {
        Desk desk;
        addPlugins(desk);
        QVERIFY(desk.open());
        desk.beforeAnswer("GetStatus", [&] {
            desk.clickTab(u"tsMain"_s, u"Plugins"_s);
            QCoreApplication::processEvents(); // what the click set off
        });
        QVERIFY(desk.logIn());
        QCOMPARE(desk.requestCount("GetStatus"), 1);
        QCOMPARE(desk.core().plugins.trackerNames.size(), 2U);
    }

    void aMessageReachesItsPlugin()
    {
        Desk desk;
        addPlugins(desk);
        QVERIFY(desk.logIn());
        desk.clickTab(u"tsSection"_s, u"Server Manager"_s);
        desk.clickTab(u"tsSM"_s, u"Match Watch"_s);
        const auto& page = desk.control(u"qrvrcWatch"_s);
        QVERIFY(page.isVisible());
        QCOMPARE(page.findChild<QLabel*>(u"lblProfile"_s)->text(), u"Profile 1"_s);
        QCOMPARE(desk.frame().helpSection(), u"qrvrcWatch.html"_s);
        const auto& messages = desk.control<QListWidget>(u"lstMessages"_s);
        desk.tracker.send("Plugin_qrvWatch_first_\x80");
        desk.tracker.send("Plugin_qrvBHDGS_for the other");
        desk.tracker.send("Plugin_qrvWatch_");
        QTRY_COMPARE(messages.count(), 2);
        QVERIFY(messages.item(0)->text().endsWith(u"  first_\u20AC"_s));
        desk.clickTab(u"tsSection"_s, u"Profile Manager"_s);
        QVERIFY(!page.isVisible());
        desk.tracker.send("Plugin_qrvWatch_while hidden");
        QTRY_COMPARE(messages.count(), 3);
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void aMessageForNobodyIsNotedOnceALogin_data()
    {
        addColumns<QByteArray, QString>("message", "named");
        QTest::newRow("unknown") << "Plugin_qrvNothing_x"_ba << u"qrvrcNothing"_s;
        QTest::newRow("another letter case") << "Plugin_qrvWATCH_x"_ba << u"qrvrcWATCH"_s;
        QTest::newRow("renamed twice") << "Plugin_qrvrcWatch_x"_ba << u"qrvrcrcWatch"_s;
        QTest::newRow("no plugin, but a component") << "Plugin_Odd_x"_ba << u"Odd"_s;
        QTest::newRow("a path") << "Plugin_..\\Plugins\\qrvWatch_x"_ba << u"..\\Plugins\\qrvrcWatch"_s;
        QTest::newRow("no name") << "Plugin__x"_ba << QString();
    }
    void aMessageForNobodyIsNotedOnceALogin()
    {
        QFETCH(const QByteArray, message);
        QFETCH(const QString, named);
        Desk desk;
        addPlugins(desk);
        // Registered, as another program's component would be, but none of the plugins.
        std::filesystem::copy_file(desk.path("\\Plugins\\qrvrcWatch.dll"), desk.path("") / "odd.dll");
        desk.put("\\settings\\components.ini",
                 desk.bytesOf("\\settings\\components.ini") + "[Odd.clsPlugin]\r\nFile=\\odd.dll\r\n");
        QVERIFY(desk.logIn());
        const auto* note = desk.frame().statusBar()->findChild<QLabel*>(u"lblNote"_s);
        const auto noteOf = [](const QString& name) {
            return u"The tracker sent a message for the plugin '%1', which this client does not have."_s.arg(name);
        };
        const QSignalSpy told(&desk.core().pluginHost, &PluginHost::unknownPlugin);
        for (int login = 1; login <= 2; ++login) {
            desk.tracker.send(message);
            QTRY_COMPARE(note->text(), noteOf(named));
            desk.tracker.send(message);
            desk.tracker.send("Plugin_last_x");
            QTRY_COMPARE(note->text(), noteOf(u"last"_s));
            QCOMPARE(told.size(), 2 * login);
            desk.link().close();
            QVERIFY(desk.logIn());
        }
        QVERIFY(desk.boxes.boxes.isEmpty());
        QCOMPARE(tableOf(desk), u"qrvrcBHDGS+ qrvrcWatch+"_s);
    }

    void aMessageThatNamesNothingIsReported()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        desk.tracker.send("Plugin");
        QTRY_COMPARE(desk.boxes.boxes.size(), 1);
        const QString text = desk.boxes.onlyText();
        QVERIFY2(text.contains(u"Error 9: "_s) && text.endsWith(u"Function/Sub: HandleData"_s), qPrintable(text));
        QVERIFY(desk.frame().isEnabled() && desk.control(u"tsMain"_s).isEnabled());
    }
};

QTEST_MAIN(PluginHostTest)
#include "PluginHostTest.moc"
