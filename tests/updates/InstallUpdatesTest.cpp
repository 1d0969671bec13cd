#include "updates/InstallUpdates.h"
#include "base/RaisedError.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "updates/UpdateState.h"
#include "updates/UpdateTargets.h"
#include "updates/UpdatesIni.h"

#include <QTemporaryDir>
#include <QTest>

#include <sys/wait.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

/// A program folder in which updates wait: for the program, for a plugin in a folder that is not there yet, and for a
/// data file.
struct House
{
    QTemporaryDir home;
    AppFolder folder{home.path().toStdU16String()};
    UpdateTargets targets{folder, folder.path("\\qrvv3rc"), {}};

    House()
    {
        put("\\qrvv3rc", "old program");
        fs::permissions(folder.path("\\qrvv3rc"), fs::perms::owner_all);
        put("\\data.bin", "old data");
        wait("QRVV3RC.exe", "\\", "new program");
        wait("new.dll", "\\Plugins\\Deep\\", "new plugin");
        wait("data.bin", "\\", "new data");
    }
    void put(std::string_view name, std::string_view bytes) const { writeBytes(folder.path(name), bytes); }
    std::string get(std::string_view name) const { return readBytesIfPresent(folder.path(name)).value_or("nothing"); }
    void wait(const std::string& name, const std::string& target, std::string_view bytes) const
    {
        put("\\arrived", bytes);
        divert(folder, folder.path("\\arrived"), {.name = name, .folder = target});
    }
    bool isInstalled() const
    {
        return get("\\qrvv3rc") == "new program" && get("\\Plugins\\Deep\\new.dll") == "new plugin" &&
               get("\\data.bin") == "new data" && !folder.folderExists("\\Updates");
    }
    bool isUntouched() const
    {
        return get("\\qrvv3rc") == "old program" && !folder.fileExists("\\Plugins\\Deep\\new.dll") &&
               get("\\data.bin") == "old data" && folder.folderExists("\\Updates");
    }
    bool keepsTheOld() const
    {
        return get("\\Replaced\\QRVV3RC.exe") == "old program" && get("\\Replaced\\data.bin") == "old data" &&
               !folder.folderExists("\\Replaced\\Plugins\\Deep\\new.dll");
    }
};

/// Runs the installation in a process that ends at once before its step `last`.
/// @return whether it got that far
bool endsBeforeStep(const UpdateTargets& targets, int last)
{
    const pid_t process = ::fork();
    if (process == 0) {
        int steps = 0;
        installWaiting(targets, [&](std::string_view) {
            if (steps++ == last)
                ::_exit(1);
        });
        ::_exit(0);
    }
    int status = 0;
    ::waitpid(process, &status, 0);
    return WEXITSTATUS(status) == 1;
}

} // namespace

class InstallUpdatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void whatWaitsComesToItsPlaceAndTheOldIsKept()
    {
        const House house;
        QCOMPARE(waitingFiles(house.folder).size(), std::size_t{3});
        QVERIFY(installWaiting(house.targets).empty());
        QVERIFY(house.isInstalled() && house.keepsTheOld());
        QVERIFY((fs::status(house.folder.path("\\qrvv3rc")).permissions() & fs::perms::owner_exec) != fs::perms::none);
        QVERIFY(installWaiting(house.targets).empty()); // nothing waits any more

        QVERIFY(restoreReplaced(house.targets).empty());
        QCOMPARE(house.get("\\qrvv3rc"), std::string("old program"));
        QCOMPARE(house.get("\\data.bin"), std::string("old data"));
        QVERIFY(!house.folder.folderExists("\\Replaced"));
    }

    void anInstallationThatIsEndedAnywhereIsCompletedByTheNext()
    {
        int step = 0;
        for (bool wasEnded = true; wasEnded; ++step) {
            const House house;
            wasEnded = endsBeforeStep(house.targets, step);
            for (const auto& [file, older, newer] : {std::array{"\\qrvv3rc", "old program", "new program"},
                                                     std::array{"\\data.bin", "old data", "new data"}}) {
                const std::string bytes = house.get(file);
                QVERIFY2(bytes == older || bytes == newer, bytes.c_str());
            }
            QVERIFY(!wasEnded || !endsBeforeStep(house.targets, 100));
            QVERIFY2(house.isInstalled() && house.keepsTheOld(), std::to_string(step).c_str());
        }
        QCOMPARE(step, 8); // two steps a file, the removal, and the run that was not ended
    }

    void anUpdateOverOneThatNeverStartedKeepsTheOldestFile()
    {
        const House house;
        installWaiting(house.targets);
        house.wait("data.bin", "\\", "newest data");
        QVERIFY(installWaiting(house.targets).empty());
        QCOMPARE(house.get("\\data.bin"), std::string("newest data"));
        QCOMPARE(house.get("\\Replaced\\data.bin"), std::string("old data"));
        forgetReplaced(house.folder);
        QVERIFY(!house.folder.folderExists("\\Replaced"));
    }

    void aSetIsInstalledWholeOrNotAtAll()
    {
        const House house;
        const UpdateState state(house.folder);
        house.put("\\Updates\\evil", "evil");
        house.put("\\Updates\\state", "evil");
        house.put("\\Updates\\bad", "not what came");
        state.noteDigest("bad", std::string(64, '0'));
        house.put("\\Updates\\updates.ini",
                  house.get("\\Updates\\updates.ini") +
                      "evil=\\..\\\r\n..\\..\\up=\\\r\nx.ocx={System}\r\nstate=\\settings\\\r\nbad=\\\r\n");
        QCOMPARE(installWaiting(house.targets).size(), std::size_t{5});
        QVERIFY(house.isUntouched() && house.get("\\Updates\\bad") == "nothing");
        QVERIFY(!fs::exists(house.folder.root().parent_path() / "evil") &&
                !house.folder.fileExists("\\settings\\state"));
        const std::string told = house.get(problemsFile);
        for (const char* name : {"evil: ", "up: ", "x.ocx: ", "state: ", "bad: "})
            QVERIFY2(told.find(name) != std::string::npos, told.c_str());
        QVERIFY2(told.ends_with("been downloaded again.\r\n"), told.c_str());
        QVERIFY(state.handOver() == UpdateState::HandOver::Told); // until another download
        QVERIFY(installWaiting(house.targets).empty());           // what never could be installed is off the list
        QVERIFY(house.isInstalled());
    }

    void whatHasBeenMovedIsTakenBackWhenTheRestCannotBe()
    {
        const House house;
        house.wait("taken", "\\", "x");
        fs::create_directories(house.folder.path("\\taken"));
        QCOMPARE(installWaiting(house.targets).size(), std::size_t{1});
        QVERIFY(house.isUntouched());
        QCOMPARE(house.get("\\Updates\\QRVV3RC.exe"), std::string("new program"));
        QVERIFY(UpdateState(house.folder).handOver() == UpdateState::HandOver::None); // may do the next time
        fs::remove(house.folder.path("\\taken"));
        QVERIFY(installWaiting(house.targets).empty());
        QVERIFY(house.isInstalled() && house.keepsTheOld());
    }

    void undoingTakesAwayWhatWasAdded()
    {
        const House house;
        installWaiting(house.targets);
        QVERIFY(isReplacedKept(house.folder));
        beginUpdate(house.folder); // not started yet: still kept
        QVERIFY(isReplacedKept(house.folder) && UpdateState(house.folder).isOnTrial());
        for (const char* place : {"\\Plugins\\", "\\"}) { // two of one name
            const fs::path target = house.folder.path(std::string(place) + "same");
            keepReplaced(house.folder, target, {.name = "same", .folder = place});
            writeBytes(target, "x");
        }
        house.wait("data.bin", "\\", "of the same update, and late");
        UpdateState(house.folder).noteDigest("data.bin", "x");
        QVERIFY(restoreReplaced(house.targets).empty());
        QVERIFY(!house.folder.folderExists("\\Updates") && UpdateState(house.folder).digests().empty());
        QVERIFY(!house.folder.fileExists("\\same") && !house.folder.fileExists("\\Plugins\\same"));
        QVERIFY(!house.folder.fileExists("\\Plugins\\Deep\\new.dll") && !isReplacedKept(house.folder));
        QVERIFY(!UpdateState(house.folder).isOnTrial());
        house.wait("data.bin", "\\", "newest");
        installWaiting(house.targets);
        UpdateState(house.folder).noteTrial(false);
        beginUpdate(house.folder);
        QVERIFY(!isReplacedKept(house.folder));
    }

    void aListThatCannotBeReadIsToldToo()
    {
        const House house;
        house.put("\\Updates\\updates.ini", std::string("\xFF\xFE[\0", 4)); // UTF-16
        QCOMPARE(installWaiting(house.targets).size(), std::size_t{1});
        QVERIFY(!house.folder.folderExists("\\Updates"));
        QCOMPARE(house.get("\\qrvv3rc"), std::string("old program"));
    }

    void namesThatTheListCannotHoldDoNotWait()
    {
        const House house;
        for (const char* name : {"updates.ini", "Updates.INI", "[x]", "a=b", "..\\x"}) {
            house.put("\\arrived", "x");
            QVERIFY(raisedBy([&] { divert(house.folder, house.folder.path("\\arrived"), {name, "\\"}); }) != 0);
        }
        QCOMPARE(waitingFiles(house.folder).size(), std::size_t{3});
        QCOMPARE(house.folder.fileNames("\\Updates").size(), std::size_t{4});
    }

    void theOrderToStartAgainSurvives()
    {
        const House house;
        const RestartOrder order{house.folder.path("\\qrvv3rc"), {"--connect", " My \"Home\" ", ""}};
        writeRestartOrder(house.folder, order);
        QVERIFY(readRestartOrder(house.folder) == order);
        fs::remove(house.folder.path("\\settings\\restart.ini"));
        QVERIFY(readRestartOrder(house.folder) == RestartOrder());
    }
};

QTEST_APPLESS_MAIN(InstallUpdatesTest)
#include "InstallUpdatesTest.moc"
