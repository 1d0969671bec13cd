#include "plugins/ComponentEntries.h"

#include "base/RuntimeError.h"
#include "support/AddRow.h"

class ComponentEntriesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theProgramFolderComesFirstAndOnlyLibrariesCount()
    {
        const std::vector<std::string> expected{"b.dll", "qrvZip.dll", "\\Plugins\\A.DLL", "\\Plugins\\x.dll"};
        QCOMPARE(componentEntries({"b.dll", "b.dll.txt", "dll", "qrvZip.dll"}, {"A.DLL", "a.dll", "readme", "x.dll"}),
                 expected);
        QVERIFY(componentEntries({"help.chm"}, {}).empty());
    }

    void anEntryIsTestedByItsClassAndListedByItsType_data()
    {
        addColumns<QByteArray, QByteArray, QByteArray>("entry", "progId", "line");
        const auto row = [](const char* entry, const char* progId, const char* line) {
            QTest::newRow(entry) << QByteArray(entry) << QByteArray(progId) << QByteArray(line);
        };
        row("qrvZip.dll", "", "Unknown File [CAUTION!]: qrvZip.dll");
        row("other.dll", "", "Unknown File [CAUTION!]: other.dll");
        row("qrvrcGMF.dll", "qrvrcGMF.clsMemory", "Unregistered function File: qrvrcGMF.dll");
        row("QRVRCGMF.DLL", "qrvrcGMF.clsMemory", "Unregistered function File: QRVRCGMF.DLL");
        row("qrvrcMFM.dll", "qrvrcMFM.clsMFD", "Unregistered Function File: qrvrcMFM.dll");
        row("\\Plugins\\qrvrcMFM.dll", "qrvrcMFM.clsPlugin", "Unregistered Plugin File: \\Plugins\\qrvrcMFM.dll");
        row("\\Plugins\\ My Plugin .Dll", "My Plugin.clsPlugin",
            "Unregistered Plugin File: \\Plugins\\ My Plugin .Dll");
        row("\\Plugins\\a.dll.DLL", "a.clsPlugin", "Unregistered Plugin File: \\Plugins\\a.dll.DLL");
        row("\\Plugins\\odd: name.dll", "odd: name.clsPlugin", "Unregistered Plugin File: \\Plugins\\odd: name.dll");
    }
    void anEntryIsTestedByItsClassAndListedByItsType()
    {
        QFETCH(const QByteArray, entry);
        QFETCH(const QByteArray, progId);
        QFETCH(const QByteArray, line);
        QCOMPARE(componentClass(entry.toStdString()).progId, progId.toStdString());
        const std::string listed = problemLine(entry.toStdString());
        QCOMPARE(listed, line.toStdString());
        QCOMPARE(entryOfProblem(listed), std::string_view(entry.constData()));
    }

    void aNameBecomesAPathOnlyWhenItIsPlain()
    {
        QCOMPARE(componentLayoutName("a.dll"), std::string("\\a.dll"));
        QCOMPARE(componentLayoutName("\\Plugins\\a.dll"), std::string("\\Plugins\\a.dll"));
        for (const char* entry : {"\\Plugins\\..\\a.dll", "\\Plugins\\sub\\a.dll", "a/b.dll", "\\a.dll", "nul.dll", ""})
            QVERIFY_THROWS_EXCEPTION(RuntimeError, componentLayoutName(entry));
    }

    void problemFilesAreFoundInAnyLetterCase()
    {
        const ProblemFiles problems{.names = {"Alpha.dll", "beta.DLL"}};
        QVERIFY(problems.contains("ALPHA.DLL"));
        QVERIFY(problems.contains("beta.dll"));
        QVERIFY(!problems.contains("Alpha"));
        QVERIFY(!problems.contains(""));
    }

    void theReportNamesTheSystemAndEveryLine_data()
    {
        addColumns<QByteArray, QByteArray, QByteArray>("name", "version", "expected");
        addRow("name with the place of its files", QByteArray(" Windows Vista |C:\\Windows|"), QByteArray("6.0.6002"),
               QByteArray("Windows Vista, 6.0, 6002, 2.1"));
        addRow("more than three parts", QByteArray("Linux"), QByteArray("6.1.0-18-amd64.x"),
               QByteArray("Linux, 6.1, 0-18-amd64, 2.1"));
        addRow("one part", QByteArray("Linux"), QByteArray("6"), QByteArray("Linux, 6, , 2.1"));
        addRow("nothing known", QByteArray(), QByteArray(), QByteArray(", , , 2.1"));
    }
    void theReportNamesTheSystemAndEveryLine()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, version);
        QFETCH(const QByteArray, expected);
        const SystemName system{name.toStdString(), version.toStdString(), 2, 1};
        QCOMPARE(problemReport("2009-11-05", "07:08:09", system, {{"first: a", "why"}, {"second: b", ""}}),
                 "File: Problematic ActiveX Files\r\nDate: 2009-11-05\r\nTime: 07:08:09\r\nOperating System: " +
                     expected.toStdString() + "\r\n\r\nfirst: a\r\n    why\r\nsecond: b");
    }

    void theSystemsReleaseIsReadFromItsName()
    {
        QCOMPARE(platformFlags("Microsoft Windows VISTA Home|C:\\Windows 7"), (PlatformFlags{.isVista = true}));
        QCOMPARE(platformFlags("Windows 7 Version 6.1"), (PlatformFlags{.isWindows7 = true}));
        QCOMPARE(platformFlags("Microsoft Windows 2000 Professional"), (PlatformFlags{.isWindows2000 = true}));
        QCOMPARE(platformFlags("Debian GNU/Linux 12"), PlatformFlags{});
    }
};

QTEST_APPLESS_MAIN(ComponentEntriesTest)
#include "ComponentEntriesTest.moc"
