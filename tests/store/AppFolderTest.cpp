#include "store/AppFolder.h"

#include "base/RaisedError.h"
#include "support/AddRow.h"

#include <QTemporaryDir>
#include <QtTest>

#include <fstream>

namespace fs = std::filesystem;
using namespace std::string_literals;

class AppFolderTest : public QObject
{
    Q_OBJECT

    static constexpr int denied = numberOf(ErrorNumber::PermissionDenied);

    QTemporaryDir m_temporary;
    fs::path m_base = m_temporary.path().toStdString();
    fs::path m_root = m_base / "program";

    static void makeFile(const fs::path& file) { std::ofstream(file) << "x"; }

private Q_SLOTS:
    void initTestCase()
    {
        fs::create_directories(m_root / "Imgs");
        fs::create_directories(m_root / "settings");
        fs::create_directories(m_base / "programs");
        makeFile(m_root / "Imgs" / "ButUp.GIF");
        makeFile(m_root / "both.txt");
        makeFile(m_root / "BOTH.txt");
        makeFile(m_base / "programs" / "secret.txt");
        fs::create_directory_symlink("settings", m_root / "inside");
        fs::create_directory_symlink("../programs", m_root / "outside");
        fs::create_symlink(m_base / "programs" / "secret.txt", m_root / "secret.lnk");
        fs::create_symlink(m_base / "programs" / "new.txt", m_root / "dangling");
        fs::create_symlink("around", m_root / "around");
    }

    void namesStayInTheFolder_data()
    {
        QTest::addColumn<std::string>("layoutName");
        QTest::addColumn<std::string>("found"); // below the root; empty when refused
        addRow("other case", "\\IMGS\\butup.gif"s, "Imgs/ButUp.GIF"s);
        addRow("without the backslash", "imgs\\butup.gif"s, "Imgs/ButUp.GIF"s);
        addRow("folder with a backslash behind", "\\imgs\\"s, "Imgs"s);
        addRow("new file in an existing folder", "\\IMGS\\New.gif"s, "Imgs/New.gif"s);
        addRow("new folder", "\\Mods\\New.gif"s, "Mods/New.gif"s);
        addRow("two files, own case", "\\both.txt"s, "both.txt"s);
        addRow("two files, neither case", "\\Both.TXT"s, "BOTH.txt"s);
        addRow("link inside", "\\inside\\config.ini"s, "inside/config.ini"s);
        addRow("dots in a name", "\\..a..b"s, "..a..b"s);
        addRow("not quite a device", "\\com10.txt"s, "com10.txt"s);
        const QByteArray outside =
            "\\..|\\..\\programs\\secret.txt|\\imgs\\..\\..\\x|\\imgs\\.|\\...|\\imgs\\\\x|\\\\host\\share|\\C:\\x|C:|"
            "\\a:stream|\\/etc/passwd|/etc/passwd|\\imgs/x|\\con|\\NUL.txt|\\imgs\\Com1.log|\\LPT9|\\com\xB9|\\aux "
            ".c|\\conout$|\\a\n|\\a\x7F|\\x "
            "|\\x.|\\outside|\\OUTSIDE\\secret.txt|\\outside\\new.txt|\\secret.lnk|\\dangling|\\around";
        for (const QByteArray& name : outside.split('|'))
            addRow(name, name.toStdString(), ""s);
        addRow("NUL inside", "\\a\0b"s, ""s);
    }
    void namesStayInTheFolder()
    {
        QFETCH(const std::string, layoutName);
        QFETCH(const std::string, found);
        const AppFolder folder(m_root);
        fs::path path;
        QCOMPARE(raisedBy([&] { path = folder.path(layoutName); }), found.empty() ? denied : 0);
        if (!found.empty())
            QCOMPARE(path.string(), (m_root / found).string());
    }

    void aRootBehindALinkIsStillTheRoot()
    {
        fs::create_directory_symlink(m_root, m_base / "alias");
        const AppFolder folder(m_base / "alias");
        QVERIFY(folder.fileExists("\\imgs\\butup.gif"));
        QVERIFY(folder.folderExists("\\inside"));
        QCOMPARE(folder.path("\\").string(), (m_base / "alias").string());
    }

    void foldersAreMadeAndListed()
    {
        const AppFolder folder(m_root);
        folder.makeFolder("\\imgs\\Deep\\er");
        folder.makeFolder("\\IMGS\\deep\\");
        QVERIFY(fs::is_directory(m_root / "Imgs" / "Deep" / "er"));
        makeFile(m_root / "Imgs" / "a.gif");
        QCOMPARE(folder.fileNames("\\imgs"), (std::vector<std::string>{"ButUp.GIF", "a.gif"}));
        QCOMPARE(folder.fileNames("\\none"), std::vector<std::string>());
        QVERIFY(!folder.fileExists("\\imgs"));
        QVERIFY(!folder.folderExists("\\both.txt"));
        QCOMPARE(raisedBy([&] { folder.makeFolder("\\both.txt"); }), numberOf(ErrorNumber::PathNotFound));
        QCOMPARE(raisedBy([&] { folder.makeFolder("\\both.txt\\x"); }), numberOf(ErrorNumber::PathNotFound));
        QCOMPARE(raisedBy([&] { folder.makeFolder("\\outside\\x"); }), denied);
    }
};

QTEST_APPLESS_MAIN(AppFolderTest)
#include "AppFolderTest.moc"
