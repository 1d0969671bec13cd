#include "plugins/PluginRules.h"

#include "plugins/ComponentEntries.h"

#include "base/RaisedError.h"

namespace {

/// A plugin that may be used, unless a member says otherwise.
struct Case
{
    std::vector<std::string> names{"Watch"};
    std::vector<std::string> versions{"1000"};
    std::string file = "1000";
    std::string minClient = "3000";
    std::string minModule = "2000";
    std::string client = "3010";
    std::string module = "2000";
};

const QByteArray on = "on";
const QByteArray off = "off";

} // namespace

Q_DECLARE_METATYPE(Case)

class PluginRulesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPluginIsJudged_data()
    {
        QTest::addColumn<Case>("facts");
        QTest::addColumn<QByteArray>("verdict"); // or the file that must be updated
        const QByteArray old = "watch.dll";
        QTest::newRow("everything fits exactly") << Case{.minClient = "3010"} << on;
        QTest::newRow("newer file than asked for") << Case{.file = "1001"} << on;
        QTest::newRow("older file") << Case{.file = "0999"} << old;
        QTest::newRow("file without version") << Case{.file = "0"} << old;
        QTest::newRow("file's version is empty") << Case{.file = ""} << old;

        QTest::newRow("tracker runs no plugin") << Case{.names = {}, .versions = {}} << off;
        QTest::newRow("tracker runs others, whatever else is wrong")
            << Case{.names = {"Other"}, .file = "0", .minClient = "9", .minModule = "9"} << off;
        QTest::newRow("another letter case") << Case{.names = {"watch"}} << off;
        QTest::newRow("a longer name") << Case{.names = {"Watch 2"}} << off;

        QTest::newRow("second among the tracker's")
            << Case{.names = {"Other", "Watch"}, .versions = {"9999", "1000"}} << on;
        QTest::newRow("reported twice: the first counts")
            << Case{.names = {"Watch", "Watch"}, .versions = {"1001", "1000"}} << old;
        QTest::newRow("fewer versions than names")
            << Case{.names = {"Other", "Watch"}, .versions = {"9999"}, .file = "0", .minClient = "9"} << on;
        QTest::newRow("empty version passes over the file and the client")
            << Case{.versions = {""}, .file = "0", .minClient = "9"} << on;
        QTest::newRow("empty version, older module")
            << Case{.versions = {""}, .minModule = "2001"} << QByteArray("qrvrcGMF.dll");

        QTest::newRow("older module comes first")
            << Case{.file = "0", .minClient = "9", .minModule = "2001"} << QByteArray("qrvrcGMF.dll");
        QTest::newRow("the file comes before the client") << Case{.file = "0", .minClient = "9"} << old;
        QTest::newRow("older client") << Case{.minClient = "3011"} << QByteArray("QRVV3RC.exe");
        QTest::newRow("no minimums, no module") << Case{.minClient = "", .minModule = "", .module = ""} << on;
        QTest::newRow("a minimum, no module") << Case{.minModule = "0", .module = ""} << QByteArray("qrvrcGMF.dll");

        QTest::newRow("file 900 is not below 1000") << Case{.file = "900"} << on;
        QTest::newRow("file 10000 is below 9") << Case{.versions = {"9"}, .file = "10000"} << old;
        QTest::newRow("file 1000 is below 10000") << Case{.versions = {"10000"}} << old;
        QTest::newRow("client 3010 is below 4") << Case{.minClient = "4"} << QByteArray("QRVV3RC.exe");
        QTest::newRow("client 3010 is not below 29999") << Case{.minClient = "29999"} << on;
        QTest::newRow("module 2000 is below 3") << Case{.minModule = "3"} << QByteArray("qrvrcGMF.dll");
        QTest::newRow("module 2000 is not below 19999") << Case{.minModule = "19999"} << on;
    }
    void aPluginIsJudged()
    {
        QFETCH(const Case, facts);
        QFETCH(const QByteArray, verdict);
        const PluginVerdict judged = judgePlugin({.name = "Watch",
                                                  .file = "watch.dll",
                                                  .minClient = facts.minClient,
                                                  .minModule = facts.minModule,
                                                  .fileVersion = facts.file},
                                                 facts.names, facts.versions, {facts.client, facts.module});
        const bool needsUpdate = verdict != on && verdict != off;
        QCOMPARE(judged.updateNeeded, needsUpdate ? verdict.toStdString() : std::string());
        QCOMPARE(judged.enabled, verdict == on);
    }

    void aPluginWithoutNameMatchesOnlyOneWithoutName()
    {
        QVERIFY(!judgePlugin({}, {"Watch"}, {"1000"}, {}).enabled);
        QVERIFY(judgePlugin({}, {"Watch", ""}, {"1000"}, {}).enabled);
    }

    void theBaseIsTheNameWithoutItsEndings_data()
    {
        QTest::addColumn<std::string>("base");
        const auto row = [](const char* file, const char* base) { QTest::newRow(file) << std::string(base); };
        row("qrvrcWatch.dll", "qrvrcWatch");
        row("qrvrcWatch.DLL", "qrvrcWatch");
        row("a.dll.Dll", "a");
        row("a.dll.txt", "a.txt");
        row(".dll.dLL", "");
        row("a.d.dllll", "a.dll"); // one pass: what closes up is not looked at again
        row(" My Plugin .dll", " My Plugin ");
        row("dll", "dll");
        row("a.dl", "a.dl");
    }
    void theBaseIsTheNameWithoutItsEndings() { QTEST(componentBase(QTest::currentDataTag()), "base"); }
};

QTEST_APPLESS_MAIN(PluginRulesTest)
#include "PluginRulesTest.moc"
