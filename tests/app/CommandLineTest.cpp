#include "app/CommandLine.h"

#include "support/AddRow.h"

using namespace Qt::StringLiterals;
using Wish = CommandLine::Wish;

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void argumentsAreTakenOrRefused_data()
    {
        addColumns<QStringList, CommandLine>("arguments", "line");
        const CommandLine all{.appFolder = u"a b"_s, .connectProfile = u"Home"_s, .makerHost = u"http://x"_s};
        const CommandLine probe{
            .wish = Wish::ProbeComponent, .appFolder = u"f"_s, .componentFile = u"x.dll"_s, .componentClass = u"x"_s};
        QTest::newRow("none") << QStringList{} << CommandLine{};
        QTest::newRow("all, in both forms")
            << QStringList{u"--app-folder"_s, u"a b"_s, u"--connect=Home"_s, u"--maker-host"_s, u"http://x"_s} << all;
        QTest::newRow("the last one counts")
            << QStringList{u"--app-folder=a"_s, u"--app-folder=b"_s} << CommandLine{.appFolder = u"b"_s};
        QTest::newRow("a value with =") << QStringList{u"--app-folder=a=b"_s} << CommandLine{.appFolder = u"a=b"_s};
        QTest::newRow("a value that looks like an option")
            << QStringList{u"--app-folder"_s, u"--help"_s} << CommandLine{.appFolder = u"--help"_s};
        QTest::newRow("a component to try")
            << QStringList{u"--app-folder=f"_s, u"--probe-component=x.dll"_s, u"--component-class=x"_s} << probe;
        QTest::newRow("version") << QStringList{u"--version"_s} << CommandLine{.wish = Wish::ShowVersion};
        QTest::newRow("help behind what is wrong")
            << QStringList{u"stray"_s, u"--app-folder="_s, u"--help"_s} << CommandLine{.wish = Wish::ShowHelp};
        for (const char* wrong : {"--app-folder", "--app-folder=", "--nothing", "--app", "--help=x", "stray", ""})
            QTest::addRow("'%s'", wrong) << QStringList{QString::fromLatin1(wrong)}
                                         << CommandLine{.wish = Wish::Complain};
    }
    void argumentsAreTakenOrRefused()
    {
        QFETCH(const QStringList, arguments);
        QFETCH(const CommandLine, line);
        CommandLine parsed = parseCommandLine(QStringList{u"qrvv3rc"_s} + arguments);
        QCOMPARE(parsed.complaint.endsWith(u"(see --help)"_s), line.wish == Wish::Complain);
        QVERIFY(!parsed.complaint.contains(u'\n'));
        parsed.complaint.clear();
        QVERIFY(parsed == line);
    }
};

QTEST_APPLESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
