#include "platform/components/Component.h"

#include "app/ComponentProbe.h"
#include "base/RaisedError.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"

#include <QTemporaryDir>
#include <QtTest>

#include <fstream>

namespace fs = std::filesystem;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

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
        if (!components.registerFile(put("good")))
            throw std::runtime_error("not registered");
        return components.createObject("sample.clsPlugin");
    }
    /// What an attempt to create the class is refused with; empty when it is not.
    std::string refusal(const std::string& progId)
    {
        try {
            components.createObject(progId);
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
        QTest::addColumn<QString>("member");
        QTest::addColumn<std::vector<ComponentValue>>("arguments");
        QTest::addColumn<int>("number");
        QTest::addColumn<QString>("said");
        using Values = std::vector<ComponentValue>;
        QTest::newRow("unknown") << u"Fly"_s << Values{} << 438 << u"no such member"_s;
        QTest::newRow("own number") << u"HideInterface"_s << Values{"it"} << 1001 << u"cannot hide it"_s;
        QTest::newRow("exception") << u"RemoteData"_s << Values{"x"} << 51 << u"odd payload x"_s;
        QTest::newRow("thrown number") << u"RemoteData"_s << Values{""} << 51 << u"unknown type"_s;
        QTest::newRow("number for a text") << u"RemoteData"_s << Values{7} << 13 << u"text was expected"_s;
        QTest::newRow("list for a text") << u"HideInterface"_s << Values{ComponentValue::listOf({})} << 13 << u""_s;
        QTest::newRow("word for a number")
            << u"LoadInterface"_s << Values{"x", 0, ComponentValue::listOf({""}), ""} << 13 << u"number was"_s;
        QTest::newRow("text for a list") << u"LoadInterface"_s << Values{1, 0, "x", ""} << 13 << u"list was"_s;
        QTest::newRow("too few") << u"LoadInterface"_s << Values{1} << 5 << u"number of arguments"_s;
        QTest::newRow("empty list") << u"LoadInterface"_s << Values{1, 0, ComponentValue::listOf({}), ""} << 51
                                    << u""_s;
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
        QTest::addColumn<QString>("library");
        QTest::addColumn<double>("share"); // of the library that has been copied
        QTest::addColumn<QString>("said");
        QTest::newRow("no exports") << u"noExports"_s << 1. << u"entry point"_s;
        QTest::newRow("other interface") << u"otherAbi"_s << 1. << u"version 2"_s;
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
        if (share < 1)
            cutOff(file, share);
        QVERIFY(!desk.components.registerFile(file));
        desk.enter("sample.clsPlugin", "\\Plugins\\" + library.toStdString() + ".dll");
        const QString refusal = QString::fromStdString(desk.refusal("sample.clsPlugin"));
        QVERIFY2(refusal.contains(library + u".dll"_s) && refusal.contains(said), qPrintable(refusal));
    }

    void textIsNoLibrary()
    {
        Desk desk;
        const fs::path file = desk.folder.path("\\Plugins\\x.dll");
        std::ofstream(file) << std::string(1000, 'x');
        QVERIFY(!desk.components.registerFile(file));
        desk.enter("x.clsPlugin", "\\plugins\\X.dll");
        QVERIFY(desk.refusal("x.clsPlugin").find("X.dll") != std::string::npos);
    }

    void onlyWhatIsRegisteredAndThereIsCreated()
    {
        Desk desk;
        const fs::path file = desk.put("good");
        QVERIFY(desk.refusal("sample.clsPlugin").find("registered") != std::string::npos);
        QVERIFY(desk.refusal("a]\r\n[b").find("registered") != std::string::npos);
        QVERIFY(desk.components.registerFile(file));
        QCOMPARE(desk.refusal("Sample.CLSplugin"), std::string());
        fs::remove(file);
        QVERIFY(desk.refusal("sample.clsPlugin").find("good.dll") != std::string::npos);
        QVERIFY(!desk.components.registerFile(file));
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
        QVERIFY(!desk.components.registerFile(outside));
        QVERIFY(!desk.components.registerFile(desk.folder.root() / "link.dll"));
    }

    void whatRegistrationOrCreationSaysIsKept()
    {
        Desk desk;
        QVERIFY(!desk.components.registerFile(desk.put("refuses")));
        QVERIFY(desk.components.registerFile(desk.put("throws")));
        QVERIFY(
            desk.refusal("sample.clsPlugin").find("throws.dll: creating 'sample.clsPlugin' failed with 77 no room") !=
            std::string::npos);
        for (const char* bare : {"bareThrow", "noObject"}) {
            QVERIFY(desk.components.registerFile(desk.put(bare)));
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
        QVERIFY(desk.components.registerFile(file));
        QCOMPARE(desk.refusal("sample.clsPlugin"), std::string());
    }

    void aLibraryIsTriedOnceForEachOfItsStates()
    {
        Desk desk;
        std::vector<std::string> tries;
        bool answer = true;
        const auto probe = [&](const fs::path& file, const std::string& progId, std::string& why) {
            tries.push_back(file.filename().string() + ' ' + progId);
            why = "it fell\r\nover";
            return answer;
        };
        const fs::path file = desk.put("good");
        const std::string once = "good.dll sample.clsPlugin";
        desk.components.setProbe(probe);
        QVERIFY(desk.components.registerFile(file));
        QCOMPARE(std::exchange(tries, {}), std::vector<std::string>{"good.dll "});
        const auto refusalAtNextStart = [&] {
            Components nextStart(desk.folder);
            nextStart.setProbe(probe);
            return raisedBy([&] { nextStart.createObject("sample.clsPlugin"); });
        };
        QCOMPARE(refusalAtNextStart(), 0);
        QCOMPARE(refusalAtNextStart(), 0);
        QCOMPARE(std::exchange(tries, {}), std::vector<std::string>{once});

        fs::last_write_time(file, fs::last_write_time(file) + 1s);
        answer = false;
        QCOMPARE(refusalAtNextStart(), cannotCreate);
        QCOMPARE(refusalAtNextStart(), cannotCreate);
        QCOMPARE(std::exchange(tries, {}), std::vector<std::string>{once});
        answer = true;
        QVERIFY(desk.components.registerFile(file));
        QCOMPARE(refusalAtNextStart(), 0);
        QCOMPARE(tries.size(), std::size_t{2});
    }

    void aTryThatCannotBeMadeIsNotKept()
    {
        Desk desk;
        QVERIFY(desk.components.registerFile(desk.put("good")));
        desk.components.setProbe(childProcessProbe(u"/nowhere/program"_s, desk.folder.root()));
        QVERIFY(desk.refusal("sample.clsPlugin").find("could not be tried") != std::string::npos);
        desk.components.setProbe([&](const fs::path&, const std::string&, std::string&) {
            return desk.refusal("sample.clsPlugin").find("being tried") != std::string::npos; // from within its events
        });
        QCOMPARE(desk.refusal("sample.clsPlugin"), std::string());
    }

    void aCrashStaysInTheOtherProcess_data()
    {
        QTest::addColumn<QString>("library");
        QTest::addColumn<QString>("said");
        QTest::newRow("good") << u"good"_s << u""_s;
        QTest::newRow("throws") << u"throws"_s << u"no room"_s;
        QTest::newRow("crashes") << u"crashes"_s << u"ends the program"_s;
        QTest::newRow("exits") << u"exits"_s << u"ends the program"_s;
        QTest::newRow("hangs") << u"hangs"_s << u"too long"_s;
    }
    void aCrashStaysInTheOtherProcess()
    {
        QFETCH(const QString, library);
        QFETCH(const QString, said);
        Desk desk;
        QVERIFY(desk.components.registerFile(desk.put(library.toStdString())));
        const auto limit = library == u"hangs" ? 200ms : componentProbeLimit;
        desk.components.setProbe(childProcessProbe(QStringLiteral(QRVRC_PROGRAM), desk.folder.root(), limit));
        const QString refusal = QString::fromStdString(desk.refusal("sample.clsPlugin"));
        QCOMPARE(refusal.isEmpty(), said.isEmpty());
        QVERIFY2(refusal.contains(said), qPrintable(refusal));
    }

    void aCrashingRegistrationStaysInTheOtherProcess()
    {
        Desk desk;
        desk.components.setProbe(childProcessProbe(QStringLiteral(QRVRC_PROGRAM), desk.folder.root()));
        QVERIFY(!desk.components.registerFile(desk.put("crashesEarly")));
        QVERIFY(desk.components.registerFile(desk.put("good")));
    }
};

QTEST_MAIN(ComponentTest)
#include "ComponentTest.moc"
