#include "platform/components/Component.h"

#include "app/ComponentProbe.h"
#include "base/RaisedError.h"
#include "platform/system/FileBytes.h"
#include "plugins/PluginData.h"
#include "store/AppFolder.h"
#include "support/AddRow.h"
#include "support/Registration.h"

#include <QTemporaryDir>
#include <QtTest>

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

using Verdict = Components::Verdict;

constexpr int cannotCreate = numberOf(ErrorNumber::CannotCreateObject);

/// An application folder with plugins copied into it.
struct Desk
{
    QTemporaryDir temporary;
    AppFolder folder{fs::path(temporary.path().toStdString())};
    Components components{folder};

    Desk() { folder.makeFolder("\\Plugins"); }

    /// @param name  without the ending
    fs::path put(const std::string& name)
    {
        const fs::path target = folder.path("\\Plugins\\" + name + ".dll");
        fs::copy_file(fs::path(QRVRC_COMPONENT_DIR) / (name + ".dll"), target, fs::copy_options::overwrite_existing);
        return target;
    }
    ObjectRef sample()
    {
        if (!isRegistered(components, put("good")))
            throw std::runtime_error("not registered");
        return createdObject(components, "sample.clsPlugin");
    }
    /// What an attempt to create the class is refused with; empty when it is not.
    std::string refusal(const std::string& progId)
    {
        try {
            createdObject(components, progId);
            return {};
        } catch (const RuntimeError& error) {
            return error.number() == ErrorNumber::CannotCreateObject ? error.description() : "another number";
        }
    }
    void enter(const std::string& progId, const std::string& layoutName)
    {
        folder.makeFolder("\\settings");
        writeBytes(folder.path("\\settings\\components.ini"), '[' + progId + "]\r\nFile=" + layoutName + "\r\n");
    }
};

std::vector<std::string> textsOf(const ComponentValue& list)
{
    std::vector<std::string> texts;
    for (const ComponentValue& element : *list.toList())
        texts.push_back(element.toString());
    return texts;
}

void cutOff(const fs::path& file, double share)
{
    fs::resize_file(file, static_cast<std::uintmax_t>(static_cast<double>(fs::file_size(file)) * share));
}

} // namespace

class ComponentTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void listsGoThereAndBack()
    {
        Desk desk;
        const ObjectRef plugin = desk.sample();
        plugin->call("setprivis",
                     {ComponentValue::listOf({"Kick=1", "Odd=a=b", "Bare"}), ComponentValue::listOf({"x"}), true});
        const ComponentValue list = ComponentValue::listOf({"first"});
        plugin->call("LoadInterface", {"12", -1, list, std::string("a\0b", 3)});
        QCOMPARE(textsOf(list), (std::vector<std::string>{"Kick is 1", "Odd is a=b", "Bare is ", "1 super",
                                                          std::string("12 -1 first a\0b", 15)}));
        QCOMPARE(textsOf(plugin->call("GetData").toObject()->call("ProfileMenuItems")),
                 (std::vector<std::string>{"One", "Two"}));
    }

    void faultsOfMembersArrive_data()
    {
        addColumns<QString, std::vector<ComponentValue>, int, QString>("member", "arguments", "number", "said");
        using Values = std::vector<ComponentValue>;
        addRow("unknown", u"Fly"_s, Values{}, 438, u"no such member"_s);
        addRow("own number", u"HideInterface"_s, Values{"it"}, 1001, u"cannot hide it"_s);
        addRow("exception", u"RemoteData"_s, Values{"x"}, 51, u"odd payload x"_s);
        addRow("thrown number", u"RemoteData"_s, Values{""}, 51, u"unknown type"_s);
        addRow("number for a text", u"RemoteData"_s, Values{7}, 13, u"text was expected"_s);
        addRow("list for a text", u"HideInterface"_s, Values{ComponentValue::listOf({})}, 13, u""_s);
        addRow("word for a number", u"LoadInterface"_s, Values{"x", 0, ComponentValue::listOf({""}), ""}, 13,
               u"number was"_s);
        addRow("text for a list", u"LoadInterface"_s, Values{1, 0, "x", ""}, 13, u"list was"_s);
        addRow("too few", u"LoadInterface"_s, Values{1}, 5, u"number of arguments"_s);
        addRow("empty list", u"LoadInterface"_s, Values{1, 0, ComponentValue::listOf({}), ""}, 51, u""_s);
    }
    void faultsOfMembersArrive()
    {
        QFETCH(const QString, member);
        QFETCH(const std::vector<ComponentValue>, arguments);
        QFETCH(const int, number);
        QFETCH(const QString, said);
        Desk desk;
        const ObjectRef plugin = desk.sample();
        try {
            plugin->call(member.toStdString(), arguments);
            QFAIL("no error");
        } catch (const RuntimeError& error) {
            QCOMPARE(static_cast<int>(error.number()), number);
            const QString description = QString::fromStdString(error.description());
            QVERIFY2(description.contains(u"good.dll"_s) && description.contains(said), error.what());
        }
        QCOMPARE(plugin->call("GetData").toObject()->call("Name").toString(), std::string("Sample"));
    }

    void filesThatAreNoPluginsAreRefused_data()
    {
        // share: of the library that has been copied; below 0 for a text in its place
        addColumns<QString, double, QString>("library", "share", "said");
        QTest::newRow("no exports") << u"noExports"_s << 1. << u"entry point"_s;
        QTest::newRow("other interface") << u"otherAbi"_s << 1. << u"version 2"_s;
        QTest::newRow("text") << u"good"_s << -1. << u"damaged"_s;
        QTest::newRow("empty") << u"good"_s << 0. << u"damaged"_s;
        QTest::newRow("first bytes") << u"good"_s << 0.001 << u"damaged"_s;
        QTest::newRow("tenth") << u"good"_s << 0.1 << u"damaged"_s;
    }
    void filesThatAreNoPluginsAreRefused()
    {
        QFETCH(const QString, library);
        QFETCH(const double, share);
        QFETCH(const QString, said);
        Desk desk;
        const fs::path file = desk.put(library.toStdString());
        if (share < 0)
            writeBytes(file, std::string(1000, 'x'));
        else if (share < 1)
            cutOff(file, share);
        QVERIFY(!isRegistered(desk.components, file));
        desk.enter("sample.clsPlugin", "\\Plugins\\" + library.toStdString() + ".dll");
        const QString refusal = QString::fromStdString(desk.refusal("sample.clsPlugin"));
        QVERIFY2(refusal.contains(library + u".dll"_s) && refusal.contains(said), qPrintable(refusal));
    }

    void onlyWhatIsRegisteredAndThereIsCreated()
    {
        Desk desk;
        const fs::path file = desk.put("good");
        QVERIFY(desk.refusal("sample.clsPlugin").find("registered") != std::string::npos);
        QVERIFY(desk.refusal("a]\r\n[b").find("registered") != std::string::npos);
        QVERIFY(isRegistered(desk.components, file));
        QCOMPARE(desk.refusal("Sample.CLSplugin"), std::string());
        fs::remove(file);
        QVERIFY(desk.refusal("sample.clsPlugin").find("good.dll") != std::string::npos);
        QVERIFY(!isRegistered(desk.components, file));
    }

    void librariesLieInTheFolder_data()
    {
        QTest::addColumn<QString>("layoutName");
        for (const char* name : {"\\imgs\\good.dll", "\\Plugins\\..\\good.dll", "..\\good.dll", "good.dll",
                                 "\\Plugins\\deep\\good.dll", "/lib/good.dll", "\\Plugins\\good.so", "\\link.dll"})
            QTest::newRow(name) << QString::fromLatin1(name);
    }
    void librariesLieInTheFolder()
    {
        QFETCH(const QString, layoutName);
        Desk desk;
        const fs::path outside = fs::path(QRVRC_COMPONENT_DIR) / "good.dll";
        fs::copy_file(outside, desk.put("good").replace_extension(".so"));
        fs::create_symlink(outside, desk.folder.root() / "link.dll");
        desk.folder.makeFolder("\\imgs");
        fs::copy_file(outside, desk.folder.path("\\imgs\\good.dll"));
        desk.enter("sample.clsPlugin", layoutName.toStdString());
        QVERIFY(!desk.refusal("sample.clsPlugin").empty());
        QVERIFY(!isRegistered(desk.components, outside));
        QVERIFY(!isRegistered(desk.components, desk.folder.root() / "link.dll"));
    }

    void whatRegistrationOrCreationSaysIsKept()
    {
        Desk desk;
        const ComponentFault fault = registrationFault(desk.components, desk.put("refuses"));
        QVERIFY(fault && fault->find("refuses.dll: its registration failed with 5") != std::string::npos);
        QVERIFY(!isRegistered(desk.components, desk.put("registerThrowsInt")));
        QVERIFY(isRegistered(desk.components, desk.put("throws")));
        QVERIFY(
            desk.refusal("sample.clsPlugin").find("throws.dll: creating 'sample.clsPlugin' failed with 77 no room") !=
            std::string::npos);
        for (const char* bare : {"bareThrow", "bareThrowInt", "noObject"}) {
            QVERIFY(isRegistered(desk.components, desk.put(bare)));
            QVERIFY(desk.refusal("bare.clsPlugin").find(bare) != std::string::npos);
        }
    }

    void aDamagedRegistryIsMadeAnew()
    {
        Desk desk;
        desk.folder.makeFolder("\\settings");
        writeBytes(desk.folder.path("\\settings\\components.ini"), std::string_view("\xFF\xFE[\0", 4));
        const fs::path file = desk.put("good");
        QVERIFY(!desk.refusal("sample.clsPlugin").empty());
        QVERIFY(isRegistered(desk.components, file));
        QCOMPARE(desk.refusal("sample.clsPlugin"), std::string());
    }

    void aLibraryIsTriedOnceForEachOfItsStates()
    {
        Desk desk;
        std::vector<std::string> tries;
        auto how = Verdict::How::Passed;
        const auto probe = [&](const fs::path& file, const std::string& progId, const auto& done) {
            tries.push_back(file.filename().string() + ' ' + progId);
            done({how, "it fell\r\nover"});
        };
        const fs::path file = desk.put("good");
        const std::string once = "good.dll sample.clsPlugin";
        desk.components.setProbe(probe);
        QVERIFY(isRegistered(desk.components, file));
        QCOMPARE(std::exchange(tries, {}), std::vector<std::string>{"good.dll "});
        QVERIFY(!desk.components.isTried("sample.clsPlugin"));
        QCOMPARE(raisedBy([&] { desk.components.createObject("sample.clsPlugin"); }), cannotCreate);
        const auto refusalAtNextStart = [&] {
            Components nextStart(desk.folder);
            nextStart.setProbe(probe);
            return raisedBy([&] { createdObject(nextStart, "sample.clsPlugin"); });
        };
        QCOMPARE(refusalAtNextStart(), 0);
        QCOMPARE(refusalAtNextStart(), 0);
        QCOMPARE(std::exchange(tries, {}), std::vector<std::string>{once});

        fs::last_write_time(file, fs::last_write_time(file) + 1s);
        how = Verdict::How::Failed;
        QCOMPARE(refusalAtNextStart(), cannotCreate);
        QCOMPARE(refusalAtNextStart(), cannotCreate);
        QCOMPARE(std::exchange(tries, {}), std::vector<std::string>{once});
        how = Verdict::How::Passed;
        QVERIFY(isRegistered(desk.components, file));
        QCOMPARE(refusalAtNextStart(), 0);
        QCOMPARE(tries.size(), std::size_t{2});
    }

    void aTryThatCannotBeMadeIsKeptForTheRunOnly()
    {
        Desk desk;
        QVERIFY(isRegistered(desk.components, desk.put("good")));
        desk.components.setProbe(childProcessProbe(u"/nowhere/program"_s, desk.folder.root()));
        QVERIFY(desk.refusal("sample.clsPlugin").find("could not be tried") != std::string::npos);
        QVERIFY(desk.components.isTried("sample.clsPlugin"));
        desk.components.setProbe([](const auto&, const auto&, const auto& done) { done({}); });
        QCOMPARE(desk.refusal("sample.clsPlugin"), std::string());
    }

    void whoAsksWhileATrialRunsWaitsForIt()
    {
        Desk desk;
        const fs::path file = desk.put("good");
        QVERIFY(isRegistered(desk.components, file));
        std::vector<std::function<void(const Verdict&)>> running;
        desk.components.setProbe(
            [&](const auto&, const auto&, std::function<void(const Verdict&)> done) { running.push_back(done); });
        int told = 0;
        for (int asker = 0; asker < 2; ++asker)
            desk.components.tryClass("sample.clsPlugin", [&](const ComponentFault& fault) { told += fault ? 0 : 1; });
        QCOMPARE(running.size(), std::size_t{1});
        QCOMPARE(told, 0);
        running[0]({});
        QCOMPARE(told, 2);
        auto components = std::make_unique<Components>(desk.folder);
        components->setProbe([&](const auto&, const auto&, const auto& done) { running.push_back(done); });
        components->registerFile(file, [&](const ComponentFault&) { ++told; });
        components.reset();
        running.back()({}); // comes too late for anybody
        QCOMPARE(told, 2);
    }

    void whatABadPluginDoesStaysInTheOtherProcess_data()
    {
        QTest::addColumn<QString>("library");
        QTest::addColumn<QString>("said"); // why it cannot be created
        QTest::newRow("good") << u"good"_s << u""_s;
        QTest::newRow("throws") << u"throws"_s << u"no room"_s;
        QTest::newRow("throws a number") << u"throwsInt"_s << u"unknown type"_s;
        QTest::newRow("crashes") << u"crashes"_s << u"ends the program"_s;
        QTest::newRow("exits") << u"exits"_s << u"ends the program"_s;
        QTest::newRow("hangs") << u"hangs"_s << u"too long"_s;
        QTest::newRow("crashes in GetData") << u"dataCrashes"_s << u"ends the program"_s;
        QTest::newRow("exits in GetData") << u"dataExits"_s << u"ends the program"_s;
        QTest::newRow("hangs in GetData") << u"dataHangs"_s << u"too long"_s;
        QTest::newRow("throws in GetData") << u"dataThrows"_s << u""_s; // who reads it is told
        QTest::newRow("throws a number past the border") << u"dataThrowsBare"_s << u""_s;
    }
    void whatABadPluginDoesStaysInTheOtherProcess()
    {
        QFETCH(const QString, library);
        QFETCH(const QString, said);
        Desk desk;
        QVERIFY(isRegistered(desk.components, desk.put(library.toStdString())));
        const auto limit = library.endsWith(u"hangs"_s, Qt::CaseInsensitive) ? 1s : componentProbeLimit;
        desk.components.setProbe(childProcessProbe(QStringLiteral(QRVRC_PROGRAM), desk.folder.root(), limit));
        const bool isBare = library == u"dataThrowsBare"_s;
        const QString refusal = QString::fromStdString(desk.refusal(isBare ? "bare.clsPlugin" : "sample.clsPlugin"));
        QCOMPARE(refusal.isEmpty(), said.isEmpty());
        QVERIFY2(refusal.contains(said), qPrintable(refusal));
    }

    void whatAPluginSaysOfItselfIsRead_data()
    {
        addColumns<QString, int, QString>("library", "number", "said");
        QTest::newRow("good") << u"good"_s << 0 << u""_s;
        QTest::newRow("throws a number") << u"dataThrows"_s << 51 << u"GetData, Name"_s;
        QTest::newRow("a number past the border") << u"dataThrowsBare"_s << 51 << u"no exception"_s;
        QTest::newRow("a text for the data object") << u"dataIsText"_s << 13 << u"GetData, Name"_s;
        QTest::newRow("a list for a text") << u"dataNameIsList"_s << 13 << u"GetData, Name"_s;
    }
    void whatAPluginSaysOfItselfIsRead()
    {
        QFETCH(const QString, library);
        QFETCH(const int, number);
        QFETCH(const QString, said);
        Desk desk;
        QVERIFY(isRegistered(desk.components, desk.put(library.toStdString())));
        const bool isBare = library != u"good"_s && library != u"dataThrows"_s;
        const ObjectRef plugin = desk.components.createObject(isBare ? "bare.clsPlugin" : "sample.clsPlugin");
        try {
            const PluginData data = readPluginData(*plugin);
            QCOMPARE(number, 0);
            QCOMPARE(data.name, "Sample");
            QCOMPARE(data.profileMenuItems, (std::vector<std::string>{"One", "Two"}));
            QCOMPARE(data.minModule, "0");
        } catch (const RuntimeError& error) {
            QCOMPARE(static_cast<int>(error.number()), number);
            QVERIFY2(QString::fromLatin1(error.what()).contains(said), error.what());
        }
    }

    void theCodePageOfTheHostReachesPlugins()
    {
        Desk desk;
        const ObjectRef plugin = desk.sample();
        const auto told = [&](const char* codePage, const char* bytes) {
            desk.components.useCodePage(codePage);
            try {
                plugin->call("HideInterface", {bytes});
                return std::string();
            } catch (const RuntimeError& error) {
                return error.description();
            }
        };
        QVERIFY(told("windows-1252", "\xCF").ends_with("cannot hide \xCF (windows-1252: \xC3\x8F)"));
        QVERIFY(told("windows-1251", "\xCF").ends_with("cannot hide \xCF (windows-1251: \xD0\x9F)"));
        QVERIFY(told("nonsense", "\x88").ends_with("cannot hide \x88 (windows-1251: \xE2\x82\xAC)"));
        desk.components.useCodePage("windows-1252");
    }

    void aCrashingRegistrationStaysInTheOtherProcess()
    {
        Desk desk;
        desk.components.setProbe(childProcessProbe(QStringLiteral(QRVRC_PROGRAM), desk.folder.root()));
        const ComponentFault fault = registrationFault(desk.components, desk.put("crashesEarly"));
        QVERIFY(fault && fault->find("crashesEarly.dll: registering it ends the program") != std::string::npos);
        QVERIFY(isRegistered(desk.components, desk.put("good")));
    }

    void registrationByTheCommandLineSaysWhatIsWrong_data()
    {
        // file: what it is called in the folder
        addColumns<QString, QString, QString>("library", "file", "said");
        QTest::newRow("good") << u"good"_s << u"sample"_s << u""_s;
        QTest::newRow("class of another name") << u"good"_s << u"other"_s << u"no library is registered"_s;
        QTest::newRow("refuses") << u"refuses"_s << u"bare"_s << u"its registration failed with 5"_s;
        QTest::newRow("no plugin") << u"noExports"_s << u"bare"_s << u"entry point"_s;
        QTest::newRow("throws in GetData") << u"dataThrows"_s << u"sample"_s << u"GetData, "_s;
        QTest::newRow("crashes in GetData") << u"dataCrashes"_s << u"sample"_s << u"ends the program"_s;
    }
    void registrationByTheCommandLineSaysWhatIsWrong()
    {
        QFETCH(const QString, library);
        QFETCH(const QString, file);
        QFETCH(const QString, said);
        Desk desk;
        const QString path = desk.temporary.filePath(u"Plugins/"_s + file + u".dll"_s);
        fs::rename(desk.put(library.toStdString()), path.toStdString());
        QProcess program;
        program.start(QStringLiteral(QRVRC_PROGRAM),
                      {u"--app-folder"_s, desk.temporary.path(), u"--register-component"_s, path});
        QVERIFY(program.waitForFinished());
        const QString output = QString::fromLocal8Bit(program.readAllStandardError());
        QCOMPARE(program.exitCode(), said.isEmpty() ? 0 : 1);
        QVERIFY2(said.isEmpty() ? output.isEmpty() : output.contains(said), qPrintable(output));
    }
};

QTEST_MAIN(ComponentTest)
#include "ComponentTest.moc"
