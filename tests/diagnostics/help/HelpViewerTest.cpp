#include "diagnostics/help/HelpBrowser.h"
#include "diagnostics/help/qrvrcHelpViewer.h"

#include <QBuffer>
#include <QDesktopServices>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QTreeWidgetItemIterator>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace {

const QString shippedBook = QStringLiteral(QRVRC_SHIPPED_DIR "/help.chm");

} // namespace

class HelpViewerTest : public QObject
{
    Q_OBJECT

public Q_SLOTS:
    void note(const QUrl& url) { m_opened.append(url); }

private:
    QList<QUrl> m_opened; ///< what would have been handed to the desktop

    /// A viewer and its parts.
    struct Desk
    {
        qrvrcHelpViewer viewer;
        QTextBrowser* page = viewer.findChild<QTextBrowser*>(u"txtHelp"_s);
        QTreeWidget* contents = viewer.findChild<QTreeWidget*>(u"tvContents"_s);
        QWidget* external = viewer.findChild<QWidget*>(u"fmeExternal"_s);
        QToolButton* back = viewer.findChild<QToolButton*>(u"cmdBack"_s);
        QToolButton* home = viewer.findChild<QToolButton*>(u"cmdHome"_s);

        void show(const QString& topic, const QString& file = shippedBook)
        {
            viewer.showTopic(file.toStdU16String(), topic);
        }
    };

private Q_SLOTS:
    void initTestCase()
    {
        QDesktopServices::setUrlHandler(u"http"_s, this, "note");
        QDesktopServices::setUrlHandler(u"file"_s, this, "note");
    }
    void cleanupTestCase()
    {
        QDesktopServices::unsetUrlHandler(u"http"_s);
        QDesktopServices::unsetUrlHandler(u"file"_s);
    }

    void aTopicIsShownWithItsPicturesAndItsPlaceInTheContents()
    {
        Desk desk;
        desk.show(u"ProfileList.html"_s);
        QVERIFY(desk.viewer.isVisible());
        QVERIFY(desk.page->toPlainText().contains(u"Active/Not Hosting"_s));
        QVERIFY(desk.viewer.windowTitle().contains(u"Profile List"_s));
        const QVariant picture =
            desk.page->document()->resource(QTextDocument::ImageResource, QUrl(u"book:/hosting.png"_s));
        QCOMPARE(picture.value<QImage>().size(), QSize(32, 32));
        QVERIFY(desk.contents->currentItem());
        QCOMPARE(desk.contents->currentItem()->text(0), u"Profile List"_s);
    }

    void theUserMovesAmongTopics()
    {
        Desk desk;
        desk.show(QString());
        QVERIFY(!desk.back->isEnabled());
        QCOMPARE(desk.page->source(), QUrl(u"book:/About.html"_s));
        Q_EMIT desk.page->anchorClicked(QUrl(u"Login.html"_s));
        QCOMPARE(desk.page->source(), QUrl(u"book:/Login.html"_s));
        QCOMPARE(desk.contents->currentItem()->text(0), u"Login"_s);
        desk.contents->setFocus();
        QTest::keyClick(desk.contents, Qt::Key_Down);
        QCOMPARE(desk.page->source(), QUrl(u"book:/ProfileList.html"_s));
        desk.back->click();
        QCOMPARE(desk.page->source(), QUrl(u"book:/Login.html"_s));
        Q_EMIT desk.page->anchorClicked(QUrl(u"ms-its:help.chm::/Options.html"_s));
        QCOMPARE(desk.page->source(), QUrl(u"book:/Options.html"_s));
        desk.home->click();
        QCOMPARE(desk.page->source(), QUrl(u"book:/About.html"_s));
    }

    void whatCannotBeShownIsSaid()
    {
        QTemporaryDir folder;
        const QString noBook = folder.filePath(u"no <b>book.chm"_s);
        QFile file(noBook);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(QByteArray(5000, 'x'));
        file.close();

        Desk desk;
        desk.show(u"Nowhere.html"_s);
        QVERIFY(desk.page->toPlainText().contains(u"no page \"Nowhere.html\""_s));
        desk.show(u"About.html"_s, folder.filePath(u"none.chm"_s));
        QVERIFY(desk.page->toPlainText().contains(u"The help file is missing"_s));
        QCOMPARE(desk.contents->topLevelItemCount(), 0);
        desk.show(u"About.html"_s, noBook);
        QVERIFY(desk.page->toPlainText().contains(u"no <b>book.chm"_s));
        QVERIFY(!desk.home->isEnabled());
        desk.show(u"About.html"_s);
        QVERIFY(desk.page->toPlainText().contains(u"Where to begin"_s));
        QVERIFY(!desk.back->isEnabled());
    }

    void picturesBeyondTheBoundLeaveTheText_data()
    {
        QTest::addColumn<int>("pictures"); // of 100 points each
        QTest::addColumn<bool>("isText");
        QTest::newRow("as many as may be") << 3 << false;
        QTest::newRow("one more") << 4 << true;
    }
    void picturesBeyondTheBoundLeaveTheText()
    {
        QFETCH(const int, pictures);
        QFETCH(const bool, isText);
        QByteArray picture;
        QBuffer buffer(&picture);
        QVERIFY(buffer.open(QBuffer::WriteOnly) && QImage(10, 10, QImage::Format_RGB32).save(&buffer, "PNG"));
        std::string page = "<p>words</p>";
        for (int number = 0; number < pictures; ++number)
            page += "<img src='" + std::to_string(number) + ".png'>";
        HelpBrowser browser(
            [&](const std::string& name) { return name.ends_with(".png") ? picture.toStdString() : page; },
            {.helpPicturePoints = 300});
        browser.show();
        browser.setSource(bookUrl(u"a.html"_s), QTextDocument::HtmlResource);
        const auto hasText = [&browser] { return browser.toPlainText().contains(u"too large"_s); };
        if (isText)
            QTRY_VERIFY(hasText());
        QCoreApplication::processEvents();
        QCOMPARE(hasText(), isText);
        QVERIFY(browser.toPlainText().contains(u"words"_s));
        QCOMPARE(browser.source(), bookUrl(u"a.html"_s));
    }

    void aBookThatWasReplacedIsReadAnew()
    {
        QTemporaryDir folder;
        const QString book = folder.filePath(u"help.chm"_s);
        QVERIFY(QFile::copy(shippedBook, book));
        Desk desk;
        desk.show(u"About.html"_s, book);
        QVERIFY(QFile::remove(book));
        desk.show(u"About.html"_s, book);
        QVERIFY(desk.page->toPlainText().contains(u"The help file is missing"_s));
        QVERIFY(QFile::copy(shippedBook, book));
        desk.show(u"About.html"_s, book);
        QVERIFY(desk.page->toPlainText().contains(u"Where to begin"_s));
    }

    void aLinkOutOfTheBookOpensOnlyWhenAskedTo()
    {
        Desk desk;
        desk.show(u"About.html"_s);
        auto* open = desk.viewer.findChild<QToolButton*>(u"cmdOpenExternal"_s);
        auto* address = desk.viewer.findChild<QLabel*>(u"lblExternal"_s);
        m_opened.clear();
        Q_EMIT desk.page->anchorClicked(QUrl(u"http://maker.example/a?b=%3Cc%3E"_s));
        QVERIFY(desk.external->isVisible());
        QCOMPARE(address->text(), u"http://maker.example/a?b=%3Cc%3E"_s);
        QCOMPARE(m_opened.size(), 0);
        QCOMPARE(desk.page->source(), QUrl(u"book:/About.html"_s));
        open->click();
        QCOMPARE(m_opened, QList<QUrl>{QUrl(u"http://maker.example/a?b=%3Cc%3E"_s)});

        Q_EMIT desk.page->anchorClicked(QUrl(u"file:///etc/passwd"_s));
        QVERIFY(!open->isVisible());
        QCOMPARE(desk.page->source(), QUrl(u"book:/About.html"_s));
        const QVariant outside = desk.page->loadResource(QTextDocument::ImageResource, QUrl(u"file:///etc/passwd"_s));
        QVERIFY(!outside.isValid());
    }

    void aSearchLeavesThePagesThatHoldAllWords()
    {
        Desk desk;
        desk.show(u"About.html"_s);
        QVERIFY(QTest::qWaitForWindowActive(&desk.viewer));
        auto* search = desk.viewer.findChild<QLineEdit*>(u"txtSearch"_s);
        search->setFocus();
        const auto shown = [&desk] {
            QStringList titles;
            for (QTreeWidgetItemIterator it(desk.contents, QTreeWidgetItemIterator::NotHidden); *it; ++it) {
                if ((*it)->flags().testFlag(Qt::ItemIsSelectable))
                    titles.append((*it)->text(0));
            }
            return titles;
        };
        const QStringList all = shown();
        search->setText(u"CLEAR text restrict"_s);
        QCOMPARE(shown(), QStringList{u"Managing Remote Access"_s}); // its parent is not a page that was found
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(desk.page->source(), QUrl(u"book:/ManagingRemoteAccess.html"_s));
        QVERIFY(desk.page->extraSelections().size() >= 3);
        search->setText(u"no page says xyzzy"_s);
        QCOMPARE(shown(), QStringList());
        QTest::keyClick(search, Qt::Key_Return);
        QCOMPARE(desk.page->source(), QUrl(u"book:/ManagingRemoteAccess.html"_s));
        QTest::keyClick(search, Qt::Key_Escape);
        QVERIFY(desk.viewer.isVisible() && search->text().isEmpty());
        QCOMPARE(shown(), all);
    }
};

QTEST_MAIN(HelpViewerTest)
#include "HelpViewerTest.moc"
