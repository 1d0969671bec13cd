#include "support/AddRow.h"
#include "ui/Grid.h"
#include "updates/UpdateHouse.h"
#include "updates/qrvrcPlugins.h"
#include "updates/qrvrcUpdate.h"

#include <QLabel>
#include <QListWidget>
#include <QProgressBar>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::PageFault;

namespace {

const RecordingDialogs::Box noList{u"Failed!"_s, u"Unable to obtain update info!"_s};

const QString update = u"qrvrcUpdate"_s;
const QString plugins = u"qrvrcPlugins"_s;

} // namespace

class UpdateWindowsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theGridShowsWhatThereIs()
    {
        House house;
        house.offer("data.bin", "1.0.0.0", "0123456789+");
        house.offer("new.bin", "1.0.0.0", "new");
        house.offer("qrvv3rc.exe", "3.0.2.0", "program");
        QVERIFY(house.open(update));
        QVERIFY(house.desk.in(update).control(u"cmdUpdateQRV"_s).isVisible());
        QVERIFY(!house.desk.in(update).control(u"cmdGetUpdates"_s).isVisible());
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QCOMPARE(house.rows(update),
                 (QStringList{u"Updated Files Available"_s, u"+qrvv3rc.exe"_s, u"New Files Available"_s, u"+new.bin"_s,
                              u"Changed Files"_s, u"-data.bin"_s}));
        QVERIFY(!house.desk.in(update).control(u"cmdUpdateQRV"_s).isVisible());
        QVERIFY(house.desk.in(update).control(u"cmdGetUpdates"_s).isVisible());

        auto& grid = house.desk.in(update).control<GridView>(u"lstQRV"_s);
        const auto clickRow = [&](int row) { house.desk.in(update).clickRow(u"lstQRV"_s, row); };
        clickRow(2); // a title
        clickRow(3);
        clickRow(5);
        QTest::keyClick(&grid, Qt::Key_Space);
        QTest::keyClick(&grid, Qt::Key_Space);
        QCOMPARE(house.rows(update).mid(3), (QStringList{u"-new.bin"_s, u"Changed Files"_s, u"+data.bin"_s}));
        QCOMPARE(grid.rows().row(5).toolTip, u"About data.bin"_s);
        const QStringList reasons{u"Newer: version 3.0.2.0 is offered, 3.0.1.0 is here."_s, QString(),
                                  u"New: there is no such file here."_s, QString(),
                                  u"Changed: it has no version, 11 bytes are offered, 10 are here."_s};
        for (int row = 1; row <= 5; ++row) {
            clickRow(row);
            QCOMPARE(house.desk.in(update).text(u"lblReason"_s), reasons[row - 1]);
        }
        QVERIFY(house.desk.in(update).text(u"lblProof"_s).contains(u"nothing proves"_s));
        QVERIFY(house.desk.in(update).control(u"lblProof"_s).isVisible());
    }

    void withoutAListThereIsNoGrid_data()
    {
        addColumns<QByteArray, QByteArray>("fault", "settings");
        addRow("not there", "notfound"_ba, "[Settings]\r\nUpdateUrl=\r\n"_ba);
        addRow("no location stored", "none"_ba, QByteArray());
    }
    void withoutAListThereIsNoGrid()
    {
        QFETCH(const QByteArray, fault);
        QFETCH(const QByteArray, settings);
        House house(settings);
        house.pages().misbehave("qrvv3rc_filelist.txt", PageFault::parse(fault).value());
        QVERIFY(house.desk.open());
        house.desk.frame().showWindow(update);
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QVERIFY(house.desk.boxes.boxes == QList{noList});
        QVERIFY(house.rows(update).isEmpty());
        QVERIFY(house.desk.in(update).control(u"cmdUpdateQRV"_s).isEnabled());
        auto& window = static_cast<qrvrcUpdate&>(house.desk.control(update));
        QVERIFY(!window.QRVUpdateAvailable());
    }

    void nothingNewIsSaidInTheGrid()
    {
        House house;
        house.offer("data.bin", "1.0.0.0", "9876543210");
        QVERIFY(house.open(update));
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QCOMPARE(house.rows(update), QStringList{u"No Updates Available!"_s});
        QVERIFY(house.desk.in(update).control(u"cmdUpdateQRV"_s).isEnabled());
        QVERIFY(house.desk.boxes.boxes.isEmpty());
    }

    void whatIsCheckedIsDownloaded()
    {
        House house;
        house.offer("new.bin", "1.0.0.0", QByteArray(300'000, 'n'));
        house.offer("help.chm", "1.0.0.5", "new help");
        house.desk.put("\\config.ini", "[Settings]\r\nhelp=1.0.0.4\r\n");
        QVERIFY(house.open(update));
        house.desk.core().updatesAvailable = true;
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QVERIFY(house.getUpdates(update));
        QCOMPARE(house.desk.boxes.onlyText(), u"Updates downloaded and installed successfully."_s);
        QCOMPARE(house.desk.bytesOf("\\new.bin").size(), 300'000);
        QCOMPARE(house.desk.bytesOf("\\help.chm"), "new help");
        QVERIFY(house.desk.bytesOf("\\config.ini").contains("help=1.0.0.5"));
        QVERIFY(house.desk.bytesOf("\\Replaced\\config.ini").contains("help=1.0.0.4"));
        QCOMPARE(house.desk.in(update).text(u"lblPer"_s), u"100%"_s);
        QVERIFY(!house.desk.core().updatesAvailable);
        QVERIFY(house.rows(update).isEmpty() && house.desk.in(update).control(u"cmdUpdateQRV"_s).isEnabled());
    }

    void aFileThatMustWaitAsksForARestart()
    {
        House house;
        house.pages().offerClientFile({.name = "new.bin", .folder = "\\not\\there\\", .body = "new"});
        QVERIFY(house.open(update));
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QVERIFY(house.getUpdates(update));
        const RecordingDialogs::Box box{
            u"Success"_s, u"Updates downloaded successfully!\r\n\r\n"
                          "A restart of the Quorvane Ravelin RC is \r\nrequired to install the updates."_s};
        QVERIFY(house.desk.boxes.boxes == QList{box});
        QCOMPARE(house.desk.bytesOf("\\Updates\\new.bin"), "new");
        QVERIFY(house.desk.bytesOf("\\Updates\\updates.ini").contains("new.bin=\\not\\there\\"));
    }

    void failuresAreNamedAndNoSuccessIsClaimed()
    {
        House house;
        house.offer("bad.bin", "1", QByteArray(1000, 'x'));
        house.offer("help.chm", "9", "x");
        std::filesystem::remove(house.desk.path("\\help.chm"));
        house.pages().misbehave("bad.bin", {.kind = PageFault::Kind::CutOff, .number = 10});
        house.pages().misbehave("help.chm", {.kind = PageFault::Kind::NotFound});
        house.offer("good.bin", "1", "good");
        QVERIFY(house.open(update));
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QVERIFY(house.getUpdates(update));
        const RecordingDialogs::Box box = house.desk.boxes.boxes.constLast();
        QCOMPARE(box.title, u"Failed!"_s);
        QVERIFY2(box.text.startsWith(u"Failed to obtain update file!"_s) && box.text.contains(u"bad.bin: "_s) &&
                     box.text.contains(u"help.chm: "_s) && !box.text.contains(u"good.bin"_s),
                 qPrintable(box.text));
        QCOMPARE(house.desk.bytesOf("\\good.bin"), "good");
        QVERIFY(house.desk.bytesOf("\\config.ini").contains("help=9")); // noted before it is downloaded
    }

    void nothingCheckedIsNothingToDownload()
    {
        House house;
        house.offer("data.bin", "1", "longer than before");
        house.desk.put("\\Replaced\\data.bin", "kept");
        QVERIFY(house.open(update));
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QVERIFY(house.getUpdates(update));
        const RecordingDialogs::Box box{u"Failed!"_s, u"No Updates Available!"_s};
        QVERIFY(house.desk.boxes.boxes == QList{box});
        QVERIFY(house.rows(update).isEmpty() && house.desk.in(update).control(u"cmdUpdateQRV"_s).isVisible());
        QCOMPARE(house.desk.bytesOf("\\Replaced\\data.bin"), "kept");
        for (const auto& [isAlone, kept] : {std::pair(false, "kept"_ba), std::pair(true, "longer than before"_ba)}) {
            const auto another = isAlone ? nullptr : house.desk.core().updates.downloads; // as its window holds it
            QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
            house.desk.in(update).clickRow(u"lstQRV"_s, 1);
            QVERIFY(house.getUpdates(update));
            QCOMPARE(house.desk.bytesOf("\\Replaced\\data.bin"), kept);
            house.offer("data.bin", "1", "longest of all three");
        }
    }

    void whatWasLookedForWithAnotherKeyIsNotTaken()
    {
        House house;
        house.offer("new.bin", "1", "new");
        QVERIFY(house.open(update));
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        house.desk.core().updates.key = UpdateKey::fromText(practice::UpdateSigner().publicKey().toStdString());
        QVERIFY(house.getUpdates(update));
        QVERIFY(house.desk.boxes.onlyText().contains(u"has been changed"_s) && house.rows(update).isEmpty());
        QVERIFY(!house.pages().requested().contains("new.bin") && !house.desk.exists("\\new.bin"));
    }

    void whatIsNotWantedStaysAvailable()
    {
        House house;
        house.offer("data.bin", "1", "changed, and not wanted");
        house.offer("new.bin", "1", "new");
        QVERIFY(house.open(update));
        house.desk.core().updatesAvailable = true;
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QVERIFY(house.getUpdates(update));
        QVERIFY(house.desk.core().updatesAvailable);
    }

    void aCancelledCheckIsNoFailure()
    {
        House house;
        QVERIFY(house.open(update));
        house.pages().misbehave("qrvv3rc_filelist.txt", {.kind = PageFault::Kind::Never});
        house.desk.in(update).click(u"cmdUpdateQRV"_s);
        QTRY_VERIFY(house.pages().requested().contains("qrvv3rc_filelist.txt"));
        house.desk.in(update).click(u"cmdCancel"_s);
        QTRY_VERIFY(house.desk.in(update).control(u"cmdUpdateQRV"_s).isEnabled());
        QVERIFY(house.desk.boxes.boxes.isEmpty());
        QCOMPARE(house.desk.in(update).control<GridView>(u"lstQRV"_s).emptyText(), u"The check was cancelled."_s);
    }

    void theLastUpdateCanBeUndone()
    {
        House house;
        house.offer("data.bin", "1", "changed data");
        QVERIFY(house.open(update));
        QVERIFY(!house.desk.in(update).control(u"cmdUndo"_s).isVisible());
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        house.desk.in(update).clickRow(u"lstQRV"_s, 1);
        QVERIFY(house.getUpdates(update));
        QCOMPARE(house.desk.bytesOf("\\Replaced\\data.bin"), "0123456789");
        QVERIFY(house.desk.in(update).control(u"cmdUndo"_s).isVisible());
        bool isUndone = false;
        house.desk.core().updates.undoUpdate = [&isUndone] { return isUndone = true; };
        house.desk.boxes.answer = false;
        house.desk.in(update).click(u"cmdUndo"_s);
        QVERIFY(!isUndone);
        house.desk.boxes.answer = true;
        house.desk.in(update).click(u"cmdUndo"_s);
        QVERIFY(isUndone);
    }

    void aDownloadCanBeCancelled()
    {
        House house;
        house.offer("new.bin", "1", QByteArray(100'000, 'n'));
        house.pages().misbehave("new.bin", {.kind = PageFault::Kind::Slow, .number = 500, .pause = 5ms});
        QVERIFY(house.open(update));
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        house.desk.in(update).click(u"cmdGetUpdates"_s);
        QTRY_VERIFY(house.desk.in(update).control<QProgressBar>(u"pbDwnld"_s).value() > 0);
        house.desk.in(update).click(u"cmdCancel"_s);
        QTRY_COMPARE(house.desk.boxes.boxes.size(), 1);
        QVERIFY(house.desk.boxes.onlyText().startsWith(u"The download was cancelled."_s));
        QVERIFY(!house.desk.exists("\\new.bin") && !house.desk.exists("\\Updates"));
    }

    void hostileListsAreToldOf()
    {
        House house;
        house.pages().setPage("qrvv3rc_filelist.txt",
                              "qrvv3rc.exe|\\|executable file|(qrv) main executable|1|1.0.0.0\n"
                              "evil|\\..\\|data file||1|1\n..\\evil|\\|data file||1|1\ngood.bin|\\|data file||1|1\n");
        QVERIFY(house.open(update));
        QVERIFY(house.check(update, u"cmdUpdateQRV"_s));
        QVERIFY(house.rows(update).contains(u"+good.bin"_s));
        QCOMPARE(house.rows(update).mid(2), (QStringList{u"Refused Files"_s, u"-evil"_s, u"-..\\evil"_s}));
        QVERIFY(house.desk.boxes.onlyText().contains(u"\\..\\evil: it would lie outside"_s));
        house.desk.in(update).clickRow(u"lstQRV"_s, 3);
        QVERIFY(house.desk.in(update).text(u"lblReason"_s).startsWith(u"Refused: it would lie outside"_s));
        QVERIFY(!house.rows(update).join(u' ').contains(u"+evil"_s)); // a click does not check it
    }

    void thePluginWindowShowsAndUpdatesPlugins()
    {
        House house;
        house.pages().offerPluginFile({.name = "a.dll", .type = "Plugin", .version = "1.0.0.0", .body = "plugin"});
        std::filesystem::create_directories(house.desk.path("\\Plugins"));
        QVERIFY(house.open(plugins));
        auto& table = house.desk.core().plugins;
        const auto add = [&table](const char* name, bool enabled, bool restricted) {
            Plugin plugin;
            plugin.name = name;
            plugin.enabled = enabled;
            plugin.restricted = restricted;
            plugin.description = std::string("About ") + name;
            table.plugins.push_back(plugin);
        };
        add("Watch", true, false);
        add("Start", false, true);
        add("Admin", true, true);
        auto& window = static_cast<qrvrcPlugins&>(house.desk.control(plugins));
        window.followPlugins();
        auto& list = house.desk.in(plugins).control<QListWidget>(u"lstPlugins"_s);
        const auto& status = house.desk.in(plugins).control<QLabel>(u"lblStatus"_s);
        QCOMPARE(status.text(), u"Status:"_s);
        list.setFocus();
        QTRY_COMPARE(house.desk.in(plugins).text(u"lblName"_s), u"Watch"_s);
        QCOMPARE(house.desk.in(plugins).text(u"lblInfo"_s), u"About Watch"_s);
        QCOMPARE(status.text(), u"Status: Enabled"_s);
        QTest::keyClick(&list, Qt::Key_Down);
        QCOMPARE(status.text(), u"Status: Disabled"_s);
        QTest::keyClick(&list, Qt::Key_Down);
        QCOMPARE(status.text(), u"Status: Restricted"_s);

        QVERIFY(window.PluginsUpdateAvailable());
        QVERIFY(house.check(plugins, u"cmdCheckPlugins"_s));
        QCOMPARE(house.rows(plugins), (QStringList{u"New Files Available"_s, u"+a.dll"_s}));
        QVERIFY(house.getUpdates(plugins));
        QCOMPARE(house.desk.boxes.onlyText(), u"Updates downloaded and installed successfully!"_s);
        QCOMPARE(house.desk.bytesOf("\\Plugins\\a.dll"), "plugin");
    }
};

QTEST_MAIN(UpdateWindowsTest)
#include "UpdateWindowsTest.moc"
