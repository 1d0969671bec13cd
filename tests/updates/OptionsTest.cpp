#include "support/AddRow.h"
#include "support/Desk.h"

#include <QCheckBox>
#include <QComboBox>
#include <QSpinBox>
#include <QTimer>

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

constexpr const char* settings = "\\settings\\config.ini";
const QString first = u"http://127.0.0.1:1/downloads/QRVV3/rc/"_s;
const QString second = u"http://127.0.0.1:1/Quorvane/qrvrc/"_s;
const QString other = u"Other Location"_s;
const RecordingDialogs::Box saved{u"Success"_s, u"Settings Saved Successfully."_s};

/// The options window of a client that has started with these settings.
struct Options
{
    Desk desk;

    explicit Options(const QByteArray& stored = {})
    {
        if (!stored.isEmpty())
            desk.put(settings, stored);
        if (!desk.open())
            qFatal("the client does not open");
        desk.frame().showWindow(u"qrvrcOptions"_s);
    }
    QComboBox& location() { return desk.control<QComboBox>(u"cboUpdateUrl"_s); }
    QTimer& clock() { return desk.control<QTimer>(u"tmrUpdateCheck"_s); }
};

} // namespace

class OptionsTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatIsStoredIsInForce_data()
    {
        addColumns<QByteArray, QString, QString, bool, bool>("stored", "location", "shown", "isOtherEnabled",
                                                             "isAutomatic");
        const auto section = [](const QString& lines) { return "[Settings]\r\n" + lines.toLatin1(); };
        QTest::newRow("nothing") << QByteArray() << QString() << QString() << false << false;
        QTest::newRow("empty") << section(u"UpdateUrl=\r\n"_s) << first << first << false << false;
        QTest::newRow("first") << section(u"UpdateUrl="_s + first) << first << first << false << false;
        QTest::newRow("second") << section(u"UpdateUrl="_s + second) << second << second << false << false;
        QTest::newRow("other") << section(u"UpdateUrl=http://x/y"_s) << u"http://x/y"_s << other << true << false;
        QTest::newRow("automatic") << section(u"CheckForUpdates=1\r\n"_s) << first << first << false << true;
        QTest::newRow("neither 1 nor 0") << section(u"CheckForUpdates=yes"_s) << first << first << false << false;
    }
    void whatIsStoredIsInForce()
    {
        QFETCH(const QByteArray, stored);
        Options options(stored);
        QTEST(options.desk.core().updates.location, "location");
        QTEST(options.location().currentText(), "shown");
        QTEST(options.desk.control(u"txtUpdatePath"_s).isEnabled(), "isOtherEnabled");
        QTEST(options.desk.control(u"Label31"_s).isEnabled(), "isOtherEnabled");
        QTEST(options.desk.control<QCheckBox>(u"chkCheckForUpdates"_s).isChecked(), "isAutomatic");
        QTEST(options.clock().isActive(), "isAutomatic");
    }

    void savingStoresAndPutsInForce()
    {
        Options options("[Settings]\r\nNewsUpdate=Day\r\n");
        options.location().setCurrentText(other);
        QVERIFY(options.desk.control(u"txtUpdatePath"_s).isEnabled());
        options.desk.type(u"txtUpdatePath"_s, u"http://host/x"_s);
        options.desk.control<QCheckBox>(u"chkCheckForUpdates"_s).click();
        QVERIFY(options.clock().isActive()); // at once, though not stored yet
        QVERIFY(!options.desk.bytesOf(settings).contains("CheckForUpdates"));
        options.desk.control<QSpinBox>(u"txtReplyTimeout"_s).setValue(90);
        auto& page = options.desk.control<QComboBox>(u"cboCodePage"_s);
        page.setCurrentIndex(page.findData("windows-1251"_ba));
        options.desk.control<QComboBox>(u"cboErrorReports"_s).setCurrentText(u"Never"_s);
        QCOMPARE(options.desk.core().reporter.reports, ReportMode::ByThemselves);
        options.desk.click(u"cmdSave"_s);
        QVERIFY(options.desk.boxes.boxes == QList{saved});
        const QByteArray file = options.desk.bytesOf(settings);
        for (const char* line : {"NewsUpdate=Day\r\n", "UpdateUrl=http://host/x\r\n", "CheckForUpdates=1\r\n",
                                 "ReplyTimeout=90\r\n", "CodePage=windows-1251\r\n", "ErrorReports=Never\r\n"})
            QVERIFY2(file.contains(line), file);
        QCOMPARE(options.desk.core().updates.location, u"http://host/x"_s);
        QVERIFY(options.desk.link().replyLimit == 90s);
        QCOMPARE(options.desk.core().reporter.reports, ReportMode::Never);
        QCOMPARE(options.desk.core().codePage.toText("\xCF"), u"\u041F"_s);
        QCOMPARE(options.desk.core().codePage.toBytes(u"\u041F"), std::string("\xCF"));
        QCOMPARE(options.desk.core().codePage.firstForeign(u"a\u00CF"), u"\u00CF"_s);
    }

    void whatTheUserLikesIsStoredAndInForce()
    {
        QVERIFY(Options().desk.core().preferences == Preferences()); // off, all of it
        Options options;
        Desk& desk = options.desk;
        desk.clickTab(u"tsOptions"_s, u"Use"_s);
        for (const char16_t* tick :
             {u"chkReconnect", u"chkAskDetach", u"chkAskStop", u"chkAskKick", u"chkAskDeleteAccount"})
            desk.control<QCheckBox>(QString::fromUtf16(tick)).click();
        desk.control<QComboBox>(u"cboListRefresh"_s).setCurrentText(u"Never"_s);
        desk.control<QComboBox>(u"cboPlayerRefresh"_s).setCurrentText(u"Every 30 seconds"_s);
        desk.click(u"cmdSave"_s);
        const Preferences all{.reconnects = true,
                              .listRefresh = 0s,
                              .playerRefresh = 30s,
                              .asksBefore = {.detach = true, .stopGame = true, .kick = true, .deleteAccount = true}};
        QVERIFY(desk.core().preferences == all);
        QVERIFY(Options(desk.bytesOf(settings)).desk.core().preferences == all);
        Options odd("[Program]\r\nListRefresh=7\r\nPlayerRefresh=x\r\nReconnect=yes\r\n");
        QVERIFY(odd.desk.core().preferences == Preferences());
    }

    void anEmptyOtherLocationMeansTheFirstAtTheNextStart()
    {
        Options options("[Settings]\r\nUpdateUrl=http://x/\r\n");
        options.desk.type(u"txtUpdatePath"_s, {});
        options.desk.click(u"cmdSave"_s);
        QCOMPARE(options.desk.core().updates.location, QString());
        QVERIFY(options.desk.bytesOf(settings).contains("UpdateUrl=\r\n"));
        QCOMPARE(Options(options.desk.bytesOf(settings)).desk.core().updates.location, first);
    }

    void ownSettingsThatMakeNoSenseAreNotStored_data()
    {
        addColumns<QString, QString>("field", "text");
        QTest::newRow("no web host") << u"txtMakerHost"_s << u"ftp://host"_s;
        QTest::newRow("no host at all") << u"txtMakerHost"_s << u"maker"_s;
        QTest::newRow("half a key") << u"txtUpdateKey"_s << u"2Vtr74XT"_s;
    }
    void ownSettingsThatMakeNoSenseAreNotStored()
    {
        QFETCH(const QString, field);
        QFETCH(const QString, text);
        Options options;
        options.desk.type(field, text);
        options.desk.click(u"cmdSave"_s);
        QCOMPARE(options.desk.boxes.count(u"Failed!"_s), 1);
        QVERIFY(!options.desk.exists(settings));
        QCOMPARE(options.desk.text(field), text);
        QVERIFY(options.desk.control(field).hasFocus());
        options.desk.type(field, {});
        options.desk.click(u"cmdSave"_s);
        QVERIFY(options.desk.boxes.boxes.last() == saved);
    }

    void settingsByHandAreBounded()
    {
        Options options("[Program]\r\nReplyTimeout=1\r\nCodePage=utf-8\r\n");
        QVERIFY(options.desk.link().replyLimit == 5s);
        QCOMPARE(options.desk.core().codePage.toText("\x80"), u"\u20AC"_s);
        Options damaged("[Program]\r\nUpdateKey=nonsense\r\nReplyTimeout=90\r\n");
        QCOMPARE(damaged.desk.boxes.boxes.size(), 1);
        QVERIFY(damaged.desk.link().replyLimit == 90s);            // the rest is in force
        QCOMPARE(damaged.desk.core().updates.location, QString()); // rather none than one that is not proven
    }

    void damagedSettingsCanBeReplaced()
    {
        const QByteArray stored("\xff\xfe[\0x\0", 6);
        Options options(stored);
        Desk& desk = options.desk;
        desk.boxes.boxes.clear();
        desk.boxes.answer = false;
        desk.click(u"cmdSave"_s);
        QCOMPARE(desk.boxes.count(u"Confirmation Required!"_s), 1);
        QCOMPARE(desk.boxes.boxes.size(), 1);
        QCOMPARE(desk.bytesOf(settings), stored);
        desk.boxes.answer = true;
        desk.click(u"cmdSave"_s);
        QVERIFY(desk.boxes.boxes.last() == saved);
        QCOMPARE(desk.bytesOf("\\settings\\config.ini.damaged"), stored);
        QVERIFY(desk.bytesOf(settings).startsWith("[Settings]"));
    }

    void everyCodePageKeepsEveryByte()
    {
        Options options;
        const auto& pages = options.desk.control<QComboBox>(u"cboCodePage"_s);
        QVERIFY(pages.count() > 5);
        for (int page = 0; page < pages.count(); ++page) {
            CodePage codePage;
            QVERIFY(codePage.use(pages.itemData(page).toByteArray().toStdString()));
            for (int value = 0; value < 256; ++value) {
                const std::string byte(1, static_cast<char>(value));
                QCOMPARE(codePage.toBytes(codePage.toText(byte)), byte);
            }
        }
    }
};

QTEST_MAIN(OptionsTest)
#include "OptionsTest.moc"
