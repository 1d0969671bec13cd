#include "diagnostics/help/HelpBook.h"
#include "base/RuntimeError.h"
#include "base/Text.h"
#include "diagnostics/help/HelpBounds.h"
#include "support/AddRow.h"

#include <QFile>
#include <QRegularExpression>
#include <QTemporaryDir>

#include <map>
#include <optional>
#include <set>

using namespace Qt::StringLiterals;

namespace {

const QString shippedBook = QStringLiteral(QRVRC_SHIPPED_DIR "/help.chm");

std::filesystem::path pathOf(const QString& file)
{
    return file.toStdU16String();
}

std::optional<ErrorNumber> faultOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const RuntimeError& error) {
        return error.number();
    }
    return std::nullopt;
}

bool isPage(const std::string& name)
{
    return lowerAscii(name).ends_with(".html");
}

QString textOf(const HelpBook& book, const std::string& name)
{
    const auto bytes = book.page(name);
    return bytes ? QString::fromLatin1(bytes->data(), qsizetype(bytes->size())) : QString();
}

} // namespace

class HelpBookTest : public QObject
{
    Q_OBJECT

private:
    QTemporaryDir m_folder;
    QByteArray m_shipped;

    QString write(const QByteArray& bytes)
    {
        const QString name = m_folder.filePath(u"book.chm"_s);
        QFile file(name);
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", qPrintable(name));
        return name;
    }

    using Objects = std::map<std::string, std::string>;

    /// All that the book holds. @throws RuntimeError
    Objects objectsOf(const QByteArray& bytes)
    {
        const HelpBook book(pathOf(write(bytes)));
        Objects objects;
        for (const std::string& name : book.names())
            objects[name] = book.page(name).value_or(std::string());
        return objects;
    }

    QByteArray patched(qsizetype at, const QByteArray& bytes) const
    {
        return QByteArray(m_shipped).replace(at, bytes.size(), bytes);
    }

private Q_SLOTS:
    void aPageIsNoFlatterThanItLooks_data()
    {
        addColumns<QByteArray, bool>("page", "canBe");
        const auto most = static_cast<qsizetype>(Bounds().helpPageBytes);
        const QByteArray open = "<table><tr><TD>";
        const QByteArray one = "<Table border='1'><tr><td>x</td></tr></TABLE>";
        const auto row = [](const char* name, const QByteArray& page, bool canBe) {
            QTest::newRow(name) << page << canBe;
        };
        row("elements behind each other", QByteArray("<div>a</div>").repeated(2001), true);
        row("one long line", "<nobr>" + QByteArray("a ").repeated(most / 32), false);
        row("nine tables in a row", one.repeated(9), true);
        row("one in each cell", (open + one.repeated(2)).repeated(8), false);
        row("closed in a comment", (open + "<!-- </table> -->").repeated(9), false);
        row("closed in an attribute", (open + "<a b='</table>'>").repeated(9), false);
        row("closed in a style", "<style>" + (open + "</table>").repeated(9) + "</style>", false);
        row("a cell of many columns and rows", "<table><tr><td COLSPAN='9999' rowspan = 999>", false);
        row("closed too often", "</table>" + open.repeated(9), false);
    }
    void aPageIsNoFlatterThanItLooks()
    {
        QFETCH(const QByteArray, page);
        QTEST(canBeLaidOut(page.toStdString(), Bounds()), "canBe");
    }

    void aPageThatIsNotLaidOutIsText()
    {
        QCOMPARE(pageAsText("<title>T</title><p class='>'>a &lt;b&gt;<!-- no --> &amp;lt;<br>c", 99),
                 "\na <b> &lt;\nc");
        QCOMPARE(pageAsText(std::string(1001, 'w'), 9999), std::string(1000, 'w') + "\nw");
    }

    void initTestCase()
    {
        QFile file(shippedBook);
        QVERIFY(file.open(QIODevice::ReadOnly));
        m_shipped = file.readAll();
        QVERIFY(m_shipped.size() > 10000);
    }

    void theBookHasEveryTopicThatTheHelpKeyOpens()
    {
        const HelpBook book(pathOf(shippedBook));
        for (const char* topic : {"ProfileList.html", "About.html", "Options.html", "ExpsMods.html", "Plugins.html",
                                  "Updates.html", "Admin.html", "Help.html", "ManagingRemoteAccess.html"})
            QVERIFY2(textOf(book, topic).contains(u"<h1>"_s), topic);
    }

    void everyLinkAndPictureLeadsSomewhere()
    {
        const HelpBook book(pathOf(shippedBook));
        const QRegularExpression reference(u"(?:href|src)=\"([^\"]+)\""_s);
        int references = 0;
        for (const std::string& name : book.names()) {
            if (!isPage(name))
                continue;
            auto matches = reference.globalMatch(textOf(book, name));
            while (matches.hasNext()) {
                const std::string target = matches.next().captured(1).toStdString();
                QVERIFY2(book.page(target).has_value(), (name + " -> " + target).c_str());
                ++references;
            }
        }
        QVERIFY(references > 20);
    }

    void theContentsListEveryPageOnce()
    {
        const HelpBook book(pathOf(shippedBook));
        std::multiset<std::string> listed;
        for (const HelpContentsEntry& entry : book.contents()) {
            QVERIFY(!entry.title.empty());
            listed.insert(entry.page);
        }
        std::multiset<std::string> pages;
        for (const std::string& name : book.names()) {
            if (isPage(name))
                pages.insert(name);
        }
        QVERIFY(listed == pages);
        QCOMPARE(book.homePage(), std::string("About.html"));
        const auto entry = std::find_if(book.contents().begin(), book.contents().end(),
                                        [](const auto& e) { return e.page == "ManagingRemoteAccess.html"; });
        QVERIFY(entry != book.contents().end());
        QCOMPARE(entry->depth, 1);
    }

    void aNameIsFoundHoweverItIsWritten_data()
    {
        addColumns<QByteArray, bool>("name", "found");
        QTest::newRow("leading slash") << QByteArray("/Login.html") << true;
        QTest::newRow("backslash") << QByteArray("\\Login.html") << true;
        QTest::newRow("other case") << QByteArray("LOGIN.HTML") << true;
        QTest::newRow("a place in the page") << QByteArray("Login.html#top") << true;
        QTest::newRow("unknown") << QByteArray("Nowhere.html") << false;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("out of the book") << QByteArray("../help.chm") << false;
        QTest::newRow("the format's own table") << QByteArray("/#SYSTEM") << false;
        QTest::newRow("the compressed section") << QByteArray("::DataSpace/NameList") << false;
    }
    void aNameIsFoundHoweverItIsWritten()
    {
        QFETCH(const QByteArray, name);
        QFETCH(const bool, found);
        const HelpBook book(pathOf(shippedBook));
        QCOMPARE(book.page(name.toStdString()).has_value(), found);
    }

    void whatIsNoBookIsRefusedOrReadAsItWas_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("text") << QByteArray("This is a text that someone named book.chm.\r\n").repeated(200);
        QTest::newRow("only the mark") << QByteArray("ITSF");
        for (const qsizetype sixteenth : {1, 2, 4, 6, 8, 12, 15})
            QTest::addRow("cut off after %d sixteenths", int(sixteenth))
                << m_shipped.left(m_shipped.size() * sixteenth / 16);
        QTest::newRow("the last byte is missing") << m_shipped.chopped(1);

        const qsizetype leaf = 0xcc; // the first directory block, behind both headers
        QVERIFY(m_shipped.mid(leaf, 4) == "PMGL");
        QTest::newRow("directory beyond the end") << patched(0x48, QByteArray(8, '\x7f'));
        QTest::newRow("data beyond the end") << patched(0x58, QByteArray(8, '\xff'));
        QTest::newRow("huge blocks") << patched(0x88, QByteArray(4, '\x7f'));
        QTest::newRow("blocks of no size") << patched(0x88, QByteArray(4, '\0'));
        QTest::newRow("more blocks than there is room for") << patched(0xa4, QByteArray(4, '\x7f'));
        QTest::newRow("first block out of range") << patched(0x98, QByteArray(4, '\x01'));
        QTest::newRow("index block out of range") << patched(0x94, QByteArray("\x70\0\0\0", 4));
        QTest::newRow("a number that never ends") << patched(leaf + 20, QByteArray(12, '\xff'));

        const qsizetype control = m_shipped.indexOf("LZXC");
        QVERIFY(control > 0);
        QTest::newRow("no window") << patched(control + 12, QByteArray(4, '\0'));
        QTest::newRow("a huge window") << patched(control + 12, QByteArray(4, '\x40'));
        QTest::newRow("never reset") << patched(control + 8, QByteArray(4, '\0'));
        const qsizetype table = control + 24 + 8 + 38; // behind the control data, the span and the transform list
        QCOMPARE(m_shipped.mid(table, 4), QByteArray("\x02\0\0\0", 4));
        QTest::newRow("frames of no size") << patched(table + 32, QByteArray(8, '\0'));
        QTest::newRow("huge frames") << patched(table + 32, QByteArray(8, '\x7f'));
        QTest::newRow("no frames") << patched(table + 4, QByteArray(4, '\0'));
        QTest::newRow("objects beyond the expanded end") << patched(table + 16, QByteArray(8, '\0'));
    }
    void whatIsNoBookIsRefusedOrReadAsItWas()
    {
        QFETCH(const QByteArray, bytes);
        Objects objects;
        const auto fault = faultOf([&] { objects = objectsOf(bytes); });
        // What only says where to begin in the middle can be done without; what lies behind the last object, too.
        if (fault)
            QCOMPARE(*fault, ErrorNumber::InvalidFileFormat);
        else
            QVERIFY(objects == objectsOf(m_shipped));
    }

    void aMissingFileAndAFolderAreNoBooks()
    {
        QCOMPARE(faultOf([&] { HelpBook book(pathOf(m_folder.filePath(u"none.chm"_s))); }), ErrorNumber::FileNotFound);
        QVERIFY(faultOf([&] { HelpBook book(pathOf(m_folder.path())); }).has_value());
    }

    void aBookThatIsReplacedIsReadAsItWas()
    {
        const HelpBook book(pathOf(write(m_shipped)));
        QVERIFY(book.isCurrent());
        write(m_shipped + "more");
        QVERIFY(!book.isCurrent());
        QVERIFY(textOf(book, "Login.html").contains(u"<h1>"_s));
    }
};

QTEST_GUILESS_MAIN(HelpBookTest)
#include "HelpBookTest.moc"
