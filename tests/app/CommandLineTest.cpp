#include "app/CommandLine.h"

#include "base/RaisedError.h"

using namespace std::string_literals;

using Arguments = std::vector<std::string>;
using Wish = CommandLine::Wish;

class CommandLineTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void argumentsAreTakenOrRefused_data()
    {
        QTest::addColumn<Arguments>("arguments");
        QTest::addColumn<CommandLine>("line");
        const auto complaint = [](const std::string& what) {
            CommandLine line;
            line.wish = Wish::Complain;
            line.complaint = what + " (see --help)";
            return line;
        };
        const auto folder = [](const std::string& name) {
            CommandLine line;
            line.appFolder = name;
            return line;
        };
        const auto wish = [](Wish what) {
            CommandLine line;
            line.wish = what;
            return line;
        };
        CommandLine all;
        all.appFolder = "a b";
        all.connectProfile = "Home";
        all.makerHost = "http://x";
        const CommandLine noValue = complaint("the option '--app-folder' needs a value");

        QTest::newRow("none") << Arguments{} << wish(Wish::Run);
        QTest::newRow("all, in both forms")
            << Arguments{"--app-folder", "a b", "--connect=Home", "--maker-host", "http://x"} << all;
        QTest::newRow("the last one counts") << Arguments{"--app-folder=a", "--app-folder=b"} << folder("b");
        QTest::newRow("a value with =") << Arguments{"--app-folder=a=b"} << folder("a=b");
        QTest::newRow("a value that looks like an option") << Arguments{"--app-folder", "--help"} << folder("--help");
        QTest::newRow("version") << Arguments{"--version"} << wish(Wish::ShowVersion);
        QTest::newRow("help behind others") << Arguments{"--app-folder=a", "--help", "stray"} << [&] {
            CommandLine line = folder("a");
            line.wish = Wish::ShowHelp;
            return line;
        }();
        QTest::newRow("no value") << Arguments{"--app-folder"} << noValue;
        QTest::newRow("empty value") << Arguments{"--app-folder="} << noValue;
        QTest::newRow("empty value of its own") << Arguments{"--app-folder", ""} << noValue;
        QTest::newRow("unknown option") << Arguments{"--nothing"} << complaint("unknown argument '--nothing'");
        QTest::newRow("beginning of an option") << Arguments{"--app"} << complaint("unknown argument '--app'");
        QTest::newRow("help with a value") << Arguments{"--help=x"} << complaint("unknown argument '--help=x'");
        QTest::newRow("stray word") << Arguments{"stray"} << complaint("unknown argument 'stray'");
        QTest::newRow("empty word") << Arguments{""} << complaint("unknown argument ''");
    }
    void argumentsAreTakenOrRefused()
    {
        QFETCH(const Arguments, arguments);
        QFETCH(const CommandLine, line);
        const CommandLine parsed = parseCommandLine(arguments);
        QCOMPARE(parsed.complaint, line.complaint);
        QVERIFY(parsed == line);
    }
};

QTEST_APPLESS_MAIN(CommandLineTest)
#include "CommandLineTest.moc"
