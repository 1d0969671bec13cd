#include "base/RaisedError.h"
#include "platform/components/Component.h"
#include "platform/system/CodePage.h"
#include "platform/system/FileBytes.h"
#include "platform/system/FileVersion.h"
#include "platform/system/PathText.h"
#include "store/AppFolder.h"
#include "ui/PluginFrame.h"

#include <QHBoxLayout>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QtTest>

#include <windows.h>

#include <aclapi.h>

namespace fs = std::filesystem;
using namespace std::string_literals;

namespace {

/// Somebody else who lets nobody at a file.
class Holder
{
public:
    explicit Holder(const fs::path& file)
        : m_handle(CreateFileW(file.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr))
    {}
    ~Holder() { CloseHandle(m_handle); }
    Holder(const Holder&) = delete;
    Holder& operator=(const Holder&) = delete;

private:
    HANDLE m_handle;
};

/// How many entries of the file's rights are for everybody.
int rightsOfEverybody(const fs::path& file)
{
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    PACL rights = nullptr;
    if (GetNamedSecurityInfoW(file.c_str(), SE_FILE_OBJECT, DACL_SECURITY_INFORMATION, nullptr, nullptr, &rights,
                              nullptr, &descriptor) != ERROR_SUCCESS ||
        !rights)
        return -1;
    int count = 0;
    for (DWORD index = 0; index < rights->AceCount; ++index) {
        void* entry = nullptr;
        if (GetAce(rights, index, &entry) &&
            IsWellKnownSid(&static_cast<ACCESS_ALLOWED_ACE*>(entry)->SidStart, WinWorldSid))
            ++count;
    }
    LocalFree(descriptor);
    return count;
}

void pressTab(bool backwards = false)
{
    if (backwards)
        keybd_event(VK_SHIFT, 0, 0, 0);
    keybd_event(VK_TAB, 0, 0, 0);
    keybd_event(VK_TAB, 0, KEYEVENTF_KEYUP, 0);
    if (backwards)
        keybd_event(VK_SHIFT, 0, KEYEVENTF_KEYUP, 0);
}

} // namespace

class WindowsSideTest : public QObject
{
    Q_OBJECT

    QTemporaryDir m_temporary;
    fs::path m_folder = pathOf(m_temporary.path());
    fs::path m_programs;

public:
    explicit WindowsSideTest(fs::path programs) : m_programs(std::move(programs)) {}

private Q_SLOTS:
    void faultsOfTheDiskHaveTheirNumbers()
    {
        QCOMPARE(raisedBy([&] { readBytes(m_folder / "none"); }), numberOf(ErrorNumber::FileNotFound));
        QCOMPARE(raisedBy([&] { readBytes(m_folder / "no" / "none"); }), numberOf(ErrorNumber::PathNotFound));
        QVERIFY(!readBytesIfPresent(m_folder / "no" / "none"));
        QCOMPARE(raisedBy([&] { writeBytes(m_folder / "no" / "new", "x"); }), numberOf(ErrorNumber::PathNotFound));
        QCOMPARE(raisedBy([&] { appendBytes(m_folder / "no" / "new", "x"); }), numberOf(ErrorNumber::PathNotFound));
        for (const auto& body :
             {+[](const fs::path& path) { readBytes(path); }, +[](const fs::path& path) { writeBytes(path, "x"); },
              +[](const fs::path& path) { appendBytes(path, "x"); }})
            QCOMPARE(raisedBy([&] { body(m_folder); }), numberOf(ErrorNumber::PermissionDenied));
    }

    void aFileThatSomebodyHoldsStaysAsItIs()
    {
        const fs::path folder = m_folder / "held";
        fs::create_directory(folder);
        const fs::path file = folder / "file";
        writeBytes(file, "old");
        {
            const Holder holder(file);
            QCOMPARE(raisedBy([&] { readBytes(file); }), numberOf(ErrorNumber::PermissionDenied));
            QCOMPARE(raisedBy([&] { writeBytes(file, "new"); }), numberOf(ErrorNumber::PermissionDenied));
            QCOMPARE(raisedBy([&] { appendBytes(file, "more"); }), numberOf(ErrorNumber::PermissionDenied));
        }
        QCOMPARE(readBytes(file), "old"s);
        QCOMPARE(std::distance(fs::directory_iterator(folder), fs::directory_iterator()), 1);
        writeBytes(file, "new\0"s);
        appendBytes(file, "more");
        QCOMPARE(readBytes(file), "new\0more"s);
    }

    void aSecretStaysOneWhenItIsWrittenAgain()
    {
        const fs::path secret = m_folder / "secret";
        writeBytes(secret, "1", Access::OwnerOnly);
        QCOMPARE(rightsOfEverybody(secret), 0);
        writeBytes(secret, "2");
        QCOMPARE(rightsOfEverybody(secret), 0);
        QCOMPARE(readBytes(secret), "2"s);
    }

    void namesAreBytesOfTheHost()
    {
        const AppFolder folder(m_folder);
        const CodePage codePage;
        const std::string name = codePage.toBytes(QStringLiteral("caf\u00E9.txt"));
        folder.makeFolder("\\names");
        writeBytes(folder.path("\\names\\" + name), "x");
        QVERIFY(fs::exists(m_folder / "names" / L"caf\u00E9.txt"));
        QCOMPARE(folder.fileNames("\\NAMES"), std::vector<std::string>{name});
        for (int value = 0; value < 256; ++value) {
            const std::string single(1, static_cast<char>(value));
            QCOMPARE(codePage.toBytes(codePage.toText(single)), single);
        }
    }

    void versionsComeFromTheResource()
    {
        QCOMPARE(fileVersionOf(m_programs / "QRVV3RC.exe"), QRVRC_VERSION ""s);
        QCOMPARE(fileVersionOf(m_programs / "Plugins" / "qrvrcWatch.dll"), "1.0.0.0"s);
        QVERIFY(!fileVersionOf(m_programs / "help.chm"));
        // The system and our own reader, which other systems use, are of one mind.
        QCOMPARE(fileVersion(readBytes(m_programs / "QRVV3RC.exe")), QRVRC_VERSION ""s);
    }

    void aPluginIsCalledByName()
    {
        const AppFolder folder(m_folder);
        Components components(folder);
        QCOMPARE(raisedBy([&] { components.createObject("qrvrcNone.clsPlugin"); }),
                 numberOf(ErrorNumber::CannotCreateObject));
        const ObjectRef plugin = components.createObject("qrvrcWatch.clsPlugin");
        const ObjectRef data = plugin->call("getdata").toObject();
        QCOMPARE(data->call("Name").toString(), "Match Watch"s);
        QVERIFY(data->call("ServerMenu").toBoolean());
        QVERIFY(!data->call("ProfileMenu").toBoolean());
        const ComponentValue::List items = data->call("ServerMenuItems").toList();
        QCOMPARE(items->size(), std::size_t{1});
        QCOMPARE(items->front().toString(), "Match Watch"s);
        QVERIFY(data->call("ProfileMenuItems").toList()->empty());
        QCOMPARE(raisedBy([&] { plugin->call("Nonsense"); }), numberOf(ErrorNumber::MemberNotSupported));
        QCOMPARE(raisedBy([&] { plugin->call("HideInterface"); }), numberOf(ErrorNumber::InvalidProcedureCall));
        QCOMPARE(raisedBy([&] { plugin->call("HideInterface", {ComponentValue::listOf({"x"})}); }),
                 numberOf(ErrorNumber::TypeMismatch));
    }

    /// Its page finds the frame by the number of 32 bits that it is handed.
    void tabLeadsIntoAPluginsPageAndOut()
    {
        PluginFrame frame;
        auto* strip = new QWidget;
        auto* row = new QHBoxLayout(strip);
        row->setContentsMargins({});
        auto* first = new QLineEdit;
        auto* last = new QLineEdit;
        row->addWidget(first);
        row->addWidget(last);
        frame.setMenuWidget(strip);
        frame.setCentralWidget(new QLineEdit); // which the page covers
        frame.resize(600, 400);
        frame.show();
        QVERIFY(QTest::qWaitForWindowActive(&frame));

        const AppFolder folder(m_folder);
        Components components(folder);
        const ObjectRef plugin = components.createObject("qrvrcWatch.clsPlugin");
        plugin->call("LoadInterface", {std::int32_t{7}, static_cast<std::int32_t>(frame.winId()),
                                       ComponentValue::listOf({"Match Watch"}), "admin"});
        const auto page = [&] { return GetWindow(reinterpret_cast<HWND>(frame.winId()), GW_CHILD); };
        QTRY_VERIFY(page() && IsWindowVisible(page()));
        for (const bool backwards : {false, true}) {
            QLineEdit* const before = backwards ? first : last;
            QLineEdit* const behind = backwards ? last : first;
            before->setFocus();
            pressTab(backwards);
            QTRY_COMPARE(GetFocus(), page());
            pressTab(backwards);
            QTRY_COMPARE(QApplication::focusWidget(), behind);
        }
        plugin->call("HideInterface", {"admin"});
    }

    void aFullDiskIsToldAndLeavesWhatWasThere()
    {
        const fs::path disk = pathOf(qEnvironmentVariable("QRVRC_SMALL_DISK"));
        if (disk.empty())
            QSKIP("no small disk was given");
        writeBytes(disk / "file", "old");
        const std::string tooMuch(std::size_t{1} << 20, 'x');
        QCOMPARE(raisedBy([&] { writeBytes(disk / "file", tooMuch); }), numberOf(ErrorNumber::DiskFull));
        QCOMPARE(readBytes(disk / "file"), "old"s);
        QCOMPARE(raisedBy([&] { appendBytes(disk / "file", tooMuch); }), numberOf(ErrorNumber::DiskFull));
    }

    void aPathMayBeLong()
    {
        const AppFolder folder(m_folder);
        std::string name = "\\long";
        for (int depth = 0; depth < 10; ++depth) {
            folder.makeFolder(name);
            name += '\\' + std::string(40, static_cast<char>('a' + depth));
        }
        writeBytes(folder.path(name), "x");
        writeBytes(folder.path(name), "y");
        QCOMPARE(readBytes(folder.path(name)), "y"s);
        QVERIFY(folder.path(name).native().size() > 400);
    }

    void theListThatAPluginIsHandedComesBack()
    {
        const AppFolder folder(m_folder);
        Components components(folder);
        const ObjectRef plugin = components.createObject("qrvrcBHDGS.clsPlugin");
        plugin->call("SetPrivis", {ComponentValue::listOf({"Start=1"}), ComponentValue::listOf({}), true});
        const ComponentValue list = ComponentValue::listOf({"one", "t\xFCo"});
        plugin->call("LoadInterface", {std::int32_t{7}, std::int32_t{0}, list, "admin"});
        QCOMPARE(list.toList()->size(), std::size_t{2});
        QCOMPARE(list.toList()->back().toString(), "t\xFCo"s);
    }
};

int main(int argc, char** argv)
{
    if (argc < 2)
        return 2;
    const QApplication application(argc, argv);
    WindowsSideTest test(fs::absolute(fs::path(argv[1])));
    QStringList arguments = QCoreApplication::arguments();
    arguments.removeAt(1);
    return QTest::qExec(&test, arguments);
}

#include "WindowsSideTest.moc"
