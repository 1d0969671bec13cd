#include "ui/Grid.h"
#include "support/AddRow.h"
#include "ui/CopyActions.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QListWidget>
#include <QMenu>
#include <QProxyStyle>
#include <QSignalSpy>
#include <QTextDocumentFragment>
#include <QToolTip>

#include <map>

using namespace Qt::StringLiterals;

namespace {

constexpr GridColumn columns[] = {
    {"Game Name", 1600_twips},
    {"", 350_twips, Qt::AlignHCenter},
    {"Players", 700_twips, Qt::AlignRight},
};

class Grid : public GridView
{
public:
    Grid() : GridView(u"fgTry"_s, nullptr)
    {
        setColumns(columns);
        resize(300, 200);
        show();
    }

    QImage picture() { return viewport()->grab().toImage(); }

    /// The plain text of the tool tip over a cell; null when there is none.
    QString toolTipAt(int row, int column)
    {
        const QPoint place = visualRect(model()->index(row, column)).center();
        QHelpEvent event(QEvent::ToolTip, place, viewport()->mapToGlobal(place));
        QApplication::sendEvent(viewport(), &event);
        const QString shown = QToolTip::isVisible() ? QToolTip::text() : QString();
        return shown.isNull() ? shown : QTextDocumentFragment::fromHtml(shown).toPlainText();
    }
};

GridRow rowOf(const QString& text)
{
    return {{text, {}, u"12/32"_s}, {}};
}

} // namespace

class GridTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsFromOutsideAreOneLineOfPlainText_data()
    {
        addColumns<QString, QString, bool>("text", "looksLike", "same");
        QTest::newRow("markup is not interpreted") << u"<!-- nothing -->"_s << QString() << false;
        QTest::newRow("nor are entities") << u"&lt;x"_s << u"<x"_s << false;
        QTest::newRow("line breaks") << u"a\r\nb\tc"_s << u"a  b c"_s << true;
        QTest::newRow("line and paragraph separators") << u"a\u2028b\u2029c"_s << u"a b c"_s << true;
        QTest::newRow("100,000 characters") << QString(100'000, u'w') << QString(2000, u'w') << true;
    }
    void textsFromOutsideAreOneLineOfPlainText()
    {
        QFETCH(const QString, text);
        QFETCH(const QString, looksLike);
        QFETCH(const bool, same);
        Grid grid;
        grid.rows().setRows({rowOf(text)});
        const QImage shown = grid.picture();
        grid.rows().setRows({rowOf(looksLike)});
        QCOMPARE(shown == grid.picture(), same);
    }

    void aToolTipHoldsWhatIsCutOffAndOnlyThat()
    {
        const QString markup = u"<img src='file:///etc/x'> & a long name that cannot fit"_s;
        Grid grid;
        QPixmap pixmap(16, 16);
        pixmap.fill(Qt::red);
        GridRow pictured = rowOf(u"short"_s);
        pictured.pictures = {{1, pixmap, u"Hosting Map"_s}};
        GridRow described = rowOf(markup);
        described.toolTip = u"what the file <is> for"_s;
        grid.rows().setRows({pictured, rowOf(markup), described, rowOf(QString(100'000, u'w'))});

        QVERIFY(grid.toolTipAt(0, 0).isNull());
        QCOMPARE(grid.toolTipAt(0, 1), u"Hosting Map"_s);
        QCOMPARE(grid.toolTipAt(1, 0), markup);
        QCOMPARE(grid.toolTipAt(2, 2), u"what the file <is> for"_s);
        const QString longest = grid.toolTipAt(3, 0);
        QVERIFY(longest.startsWith(QString(200, u'w')));
        QVERIFY(longest.size() < 5000);
        grid.toolTipAt(0, 2);
        QTRY_VERIFY(!QToolTip::isVisible());
        grid.setColumnWidth(0, 600);
        QVERIFY(grid.toolTipAt(1, 0).isNull());
    }

    void rowsThatNobodyLooksAtAreNotMade()
    {
        Grid grid;
        std::map<int, int> made;
        grid.rows().setRows(10'000, [&made](int row) {
            ++made[row];
            return rowOf(QString::number(row));
        });
        grid.picture();
        grid.picture();
        QVERIFY(!made.empty());
        QVERIFY2(made.size() < 30, qPrintable(QString::number(made.size())));
        QCOMPARE(grid.rows().rowCount(), 10'000);
        QCOMPARE(grid.rows().text(9'999, 0), u"9999"_s);
        grid.rows().setText(9'999, 0, u"changed"_s);
        grid.rows().appendRow(rowOf(u"last"_s));
        QCOMPARE(grid.rows().text(9'999, 0), u"changed"_s);
        QCOMPARE(grid.rows().text(10'000, 0), u"last"_s);
        for (const auto& [row, times] : made)
            QCOMPARE(times, 1);
        grid.rows().setRows({rowOf(u"plain again"_s)});
        QCOMPARE(grid.rows().text(0, 0), u"plain again"_s);
    }

    void titlesSpanTheirOwnRowsOnly()
    {
        Grid grid;
        const GridRow title{{u"New Files Available"_s}, {}, 0, {}, true};
        grid.rows().setRows({rowOf(u"a"_s), title});
        grid.rows().appendRow(title);
        QCOMPARE(grid.columnSpan(0, 0), 1);
        QCOMPARE(grid.columnSpan(1, 0), 3);
        QCOMPARE(grid.columnSpan(2, 0), 3);
        grid.rows().setRows({title, rowOf(u"b"_s)});
        QCOMPARE(grid.columnSpan(0, 0), 3);
        QCOMPARE(grid.columnSpan(1, 0), 1);
    }

    void copiedRowsFitIntoATable()
    {
        Grid grid;
        QPixmap pixmap(16, 16);
        pixmap.fill(Qt::red);
        GridRow pictured = rowOf(u"a\tb\r\nc"_s);
        pictured.pictures = {{1, pixmap, u"Hosting Map"_s}};
        const GridRow title{{u"New Files"_s}, {}, 0, {}, true};
        grid.rows().setRows({rowOf(u"first"_s), title, pictured});
        const auto copied = [&grid](int action) {
            QGuiApplication::clipboard()->clear();
            grid.copyActions().at(action)->trigger();
            return QGuiApplication::clipboard()->text();
        };
        enum { Cell, Row, All };
        QCOMPARE(copied(Row), QString()); // nothing is selected
        grid.selectRow(2);
        QCOMPARE(copied(Row), u"a b  c\tHosting Map\t12/32"_s);
        QCOMPARE(copied(All), u"Game Name\t\tPlayers\r\nfirst\t\t12/32\r\nNew Files\r\na b  c\tHosting Map\t12/32"_s);
        QGuiApplication::clipboard()->clear();
        QTest::keyClick(&grid, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"a b  c\tHosting Map\t12/32"_s);

        const QPoint place = grid.visualRect(grid.model()->index(2, 0)).center();
        QContextMenuEvent event(QContextMenuEvent::Mouse, place, grid.viewport()->mapToGlobal(place));
        QApplication::sendEvent(grid.viewport(), &event);
        auto* menu = grid.findChild<QMenu*>(u"mnuCopy"_s);
        QVERIFY(menu && menu->isVisible());
        QCOMPARE(copied(Cell), u"a\tb\r\nc"_s); // one cell is copied as it is
        menu->close();
        grid.rows().clear();
        QApplication::sendEvent(grid.viewport(), &event);
        for (const QAction* action : grid.copyActions())
            QVERIFY(!action->isEnabled());
    }

    void linesOfAListAreCopiedInTheirOrder()
    {
        QListWidget list;
        list.setSelectionMode(QListWidget::MultiSelection);
        list.addItems({u"one"_s, u"two"_s, u"three"_s});
        const QList<QAction*> actions = addCopyActions(&list);
        list.item(2)->setSelected(true);
        list.item(0)->setSelected(true);
        list.show();
        QVERIFY(QTest::qWaitForWindowActive(&list));
        QTest::keyClick(&list, Qt::Key_C, Qt::ControlModifier);
        QCOMPARE(QGuiApplication::clipboard()->text(), u"one\r\nthree"_s);
        actions.at(1)->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), u"one\r\ntwo\r\nthree"_s);
    }

    void aRowIsOpenedByADoubleClickOrReturnOnly()
    {
        struct SingleClickStyle : QProxyStyle
        {
            int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* data) const override
            {
                return hint == SH_ItemView_ActivateItemOnSingleClick
                           ? 1
                           : QProxyStyle::styleHint(hint, option, widget, data);
            }
        } style;
        Grid grid;
        grid.setStyle(&style);
        QTest::keyClick(&grid, Qt::Key_Return); // on no row
        grid.rows().setRows({rowOf(u"first"_s), rowOf(u"second"_s)});
        const QSignalSpy opened(&grid, &GridView::rowOpened);
        const QPoint second = grid.visualRect(grid.rows().index(1, 0)).center();
        QTest::mouseClick(grid.viewport(), Qt::LeftButton, {}, second);
        QCOMPARE(opened.size(), 0);
        QTest::mouseDClick(grid.viewport(), Qt::LeftButton, {}, second);
        QCOMPARE(opened.size(), 1);
        QTest::keyClick(&grid, Qt::Key_Return);
        QTest::keyClick(&grid, Qt::Key_Enter);
        QCOMPARE(opened.size(), 3);
        QCOMPARE(opened.at(2).at(0).toInt(), 1);
    }
};

QTEST_MAIN(GridTest)
#include "GridTest.moc"
