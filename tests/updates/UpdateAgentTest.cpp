#include "updates/UpdateAgent.h"
#include "support/AddRow.h"
#include "updates/NewsDesk.h"
#include "updates/UpdateHouse.h"

#include <QComboBox>
#include <QDateTime>
#include <QPlainTextEdit>
#include <QTimer>

using namespace Qt::StringLiterals;
using practice::PageFault;

namespace {

const QString update = u"qrvrcUpdate"_s;

} // namespace

class UpdateAgentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theStartAsksAndTells_data()
    {
        addColumns<bool, bool, QString>("core", "plugin", "sentence");
        addRow("both", true, true,
               u"There is updates available for the QRVRC Core Components and QRVRC Plugins Available."_s);
        addRow("core", true, false, u"There is updates available for the QRVRC Core Components."_s);
        addRow("plugins", false, true, u"There is updates available for the QRVRC Plugins Available."_s);
        addRow("neither", false, false, QString());
    }
    void theStartAsksAndTells()
    {
        QFETCH(const bool, core);
        QFETCH(const bool, plugin);
        QFETCH(const QString, sentence);
        House house;
        if (core)
            std::filesystem::remove(house.desk.path("\\qrvv3rc.exe"));
        if (plugin)
            house.pages().offerPluginFile({.name = "a.dll", .type = "Plugin", .body = "x"});
        QVERIFY(house.desk.open());
        QVERIFY(house.desk.control(u"qrvrcLogin"_s).isVisible()); // nobody has waited
        if (sentence.isEmpty()) {
            QTRY_VERIFY(house.pages().requested().contains("plugins/qrvv3rc_pluginlist.txt"));
            auto& agent = house.desk.control<QTimer>(u"tmrUpdateCheck"_s);
            QVERIFY(!static_cast<UpdateAgent*>(agent.parent())->QRVUpdateAvailable());
            QVERIFY(house.desk.boxes.boxes.isEmpty());
            return;
        }
        QTRY_COMPARE(house.desk.boxes.boxes.size(), 1);
        const RecordingDialogs::Box box{
            u"Action Required!"_s,
            sentence + u"\r\n\r\nPlease update the application before connecting to the host computer."_s};
        QVERIFY(house.desk.boxes.boxes == QList{box});
    }

    void theClockChecksOnEveryThirtyFirstTick()
    {
        House house("[Settings]\r\nUpdateUrl=\r\nCheckForUpdates=1\r\n");
        house.pages().offerPluginFile({.name = "a.html", .type = "Help File", .body = "12345"});
        house.desk.put("\\Plugins\\a.html", "12345");
        QVERIFY(house.open(update));
        auto& clock = house.desk.control<QTimer>(u"tmrUpdateCheck"_s);
        QCOMPARE(clock.interval(), 60'000);
        QVERIFY(clock.isActive());
        int fired = 0;
        connect(&clock, &QTimer::timeout, &clock, [&] {
            if (++fired == 31)
                clock.stop();
        });
        clock.start(0);
        QTRY_COMPARE(fired, 31);
        const auto lists = [&] {
            QList<QByteArray> pages = house.pages().requested();
            pages.removeAll("qrvrcnews.txt"_ba);
            return pages;
        };
        QTRY_COMPARE(lists(), (QList<QByteArray>{"qrvv3_filelist.txt", "plugins/qrvv3_pluginlist.txt"}));
        QVERIFY(!house.desk.core().updatesAvailable);

        house.desk.put("\\Plugins\\a.html", "1234"); // judged by its length
        auto& agent = *static_cast<UpdateAgent*>(clock.parent());
        agent.CheckForPlugins();
        QTRY_VERIFY(house.desk.core().updatesAvailable);
        house.pages().misbehave("*", {.kind = PageFault::Kind::NotFound});
        agent.CheckForPlugins();
        QTRY_VERIFY(!house.desk.core().updatesAvailable);
    }

    void theNewsComeByTheClockAndWhenTheyAreLookedAt()
    {
        House house;
        house.pages().setNews("All is well.\r\nReally.");
        QVERIFY(house.open(update));
        auto& box = house.desk.in(update).control<QPlainTextEdit>(u"txtScripts"_s);
        QTRY_COMPARE(box.toPlainText(), u"All is well.\nReally."_s);
        QVERIFY(box.isReadOnly());
        const QDateTime now = QDateTime::currentDateTime();
        QVERIFY(house.desk.bytesOf("\\settings\\config.ini")
                    .contains("NewsLastUpdate=" + QByteArray::number(now.date().day()) + '-'));
        auto& frequency = house.desk.in(update).control<QComboBox>(u"cboFreq"_s);
        QCOMPARE(frequency.currentText(), u"6 Hours"_s);
        frequency.setCurrentText(u"Day"_s);
        QVERIFY(house.desk.bytesOf("\\settings\\config.ini").contains("NewsUpdate=Day"));
        house.pages().forgetRequests();
        house.desk.frame().showWindow(update); // there are news already
        auto& agent = *static_cast<UpdateAgent*>(house.desk.control<QTimer>(u"tmrUpdateCheck"_s).parent());
        agent.news().fetchIfDue();
        QVERIFY(!agent.QRVUpdateAvailable()); // a way to the host and back
        QVERIFY(house.pages().requested().contains("qrvv3rc_filelist.txt"));
        QVERIFY(!house.pages().requested().contains("qrvrcnews.txt"));
    }

    void newsThatCannotBeHadSaySo()
    {
        House house;
        house.pages().setNews("<h1>404 Not Found</h1>");
        QVERIFY(house.open(update));
        QTRY_COMPARE(house.desk.in(update).text(u"txtScripts"_s), u"Unable to retrieve news!"_s);
        QVERIFY(house.desk.bytesOf("\\settings\\config.ini").contains("NewsLastUpdate="));
    }
};

QTEST_MAIN(UpdateAgentTest)
#include "UpdateAgentTest.moc"
