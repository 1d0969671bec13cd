#include "support/AddRow.h"
#include "support/Desk.h"
#include "ui/WorkingWindow.h"

#include <QApplication>
#include <QDesktopServices>
#include <QTextBrowser>
#include <QWindow>

using namespace Qt::StringLiterals;

namespace {

/// The page that the manual shows; empty while its window is not open.
QString shownTopic()
{
    for (const QWidget* window : QApplication::topLevelWidgets()) {
        if (window->inherits("qrvrcHelpViewer") && window->isVisible())
            return window->findChild<QTextBrowser*>(u"txtHelp"_s)->source().fileName();
    }
    return {};
}

void pressF1(Desk& desk)
{
    QTest::keyClick(desk.frame().windowHandle(), Qt::Key_F1);
}

/// A window in front that shows the given section.
class SectionWindow : public WorkingWindow
{
public:
    SectionWindow(QString section, QWidget* parent) : WorkingWindow(parent), m_section(std::move(section)) {}
    QString helpSection() const override { return m_section; }

private:
    QString m_section;
};

void showSection(Desk& desk, const QString& section)
{
    desk.core().windows.add(u"section"_s, [&] { return new SectionWindow(section, desk.frame().centralWidget()); });
    desk.frame().showWindow(u"section"_s);
}

} // namespace

class HelpKeyTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void note(const QUrl& url) { m_opened.append(url); }

private:
    QList<QUrl> m_opened; ///< what would have been handed to the desktop

private Q_SLOTS:
    void initTestCase() { QDesktopServices::setUrlHandler(u"file"_s, this, "note"); }
    void cleanupTestCase() { QDesktopServices::unsetUrlHandler(u"file"_s); }
    void init() { m_opened.clear(); }

    /// The help of a modal window belongs to it, so that it can be used while that is open.
    void aWindowBesideTheFrameHasItsOwnTopic()
    {
        Desk desk;
        QVERIFY(desk.open());
        auto* recovery = desk.core().windows.window(u"qrvrcRecovery"_s);
        recovery->setWindowModality(Qt::ApplicationModal);
        recovery->show();
        QVERIFY(QTest::qWaitForWindowActive(recovery));
        QTest::keyClick(recovery->windowHandle(), Qt::Key_F1);
        QCOMPARE(shownTopic(), u"RecoveryConsole.html"_s);
        auto* page = recovery->findChild<QTextBrowser*>(u"txtHelp"_s);
        QVERIFY(page);
        QTest::keyClick(page, Qt::Key_Escape);
        QCOMPARE(shownTopic(), QString());
    }

    void sectionsWithoutATopicSaySo_data()
    {
        addColumns<QString, QString, QString>("section", "title", "text");
        const QString missing = u"This help file for this section appears to be missing!"_s;
        QTest::newRow("windows without help") << u"IGNORE"_s << QString() << QString();
        QTest::newRow("no section") << QString() << u"Failed!"_s
                                    << u"This section does not appear to have a help file associated with it!"_s;
        QTest::newRow("a plugin's file that is not there") << u"none.html"_s << u"Error!"_s << missing;
        QTest::newRow("out of the folder") << u"..\\help.chm"_s << u"Error!"_s << missing;
        QTest::newRow("out of the folder with slashes") << u"../help.chm"_s << u"Error!"_s << missing;
        QTest::newRow("the folder above") << u".."_s << u"Error!"_s << missing;
        QTest::newRow("a device") << u"con"_s << u"Error!"_s << missing;
        QTest::newRow("a folder") << u"folder"_s << u"Error!"_s << missing;
        QTest::newRow("other letter case is another section") << u"profile list"_s << u"Error!"_s << missing;
    }
    void sectionsWithoutATopicSaySo()
    {
        QFETCH(const QString, section);
        QFETCH(const QString, title);
        QFETCH(const QString, text);
        Desk desk;
        desk.put("\\Plugins\\folder\\x", "x");
        QVERIFY(desk.open());
        showSection(desk, section);
        pressF1(desk);
        QCOMPARE(desk.boxes.boxes.size(), title.isEmpty() ? 0 : 1);
        if (!title.isEmpty())
            QVERIFY((desk.boxes.boxes.constFirst() == RecordingDialogs::Box{title, text}));
        QCOMPARE(shownTopic(), QString());
        QVERIFY(m_opened.isEmpty());
    }

    void aPluginsHelpFileIsOpenedByTheDesktop()
    {
        Desk desk;
        desk.put("\\Plugins\\Stats Help.html", "x");
        QVERIFY(desk.open());
        showSection(desk, u"stats help.html"_s);
        pressF1(desk);
        QCOMPARE(m_opened.size(), 1);
        QCOMPARE(m_opened.constFirst().toLocalFile(),
                 QString::fromStdU16String(desk.path("\\Plugins\\Stats Help.html").u16string()));
        QVERIFY(desk.boxes.boxes.isEmpty());
    }

    void everyWindowNamesItsSection()
    {
        Desk desk;
        QVERIFY(desk.logIn());
        pressF1(desk);
        QCOMPARE(shownTopic(), u"ProfileList.html"_s);
        for (const auto& [tab, topic] : QList<std::pair<QString, QString>>{{u"Options"_s, u"Options.html"_s},
                                                                           {u"Plugins"_s, u"Plugins.html"_s},
                                                                           {u"Update"_s, u"Updates.html"_s},
                                                                           {u"Help"_s, u"Help.html"_s},
                                                                           {u"About"_s, u"About.html"_s}}) {
            desk.clickTab(u"tsMain"_s, tab);
            pressF1(desk);
            QCOMPARE(shownTopic(), topic);
        }
        desk.clickTab(u"tsMain"_s, u"Login"_s); // has no topic, and does not show that of the window before
        pressF1(desk);
        QCOMPARE(desk.boxes.onlyText(), u"This section does not appear to have a help file associated with it!"_s);
    }
};

QTEST_MAIN(HelpKeyTest)
#include "HelpKeyTest.moc"
