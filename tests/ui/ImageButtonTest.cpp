#include "ui/ImageButton.h"

#include "ui/PictureFolder.h"
#include "ui/PictureStore.h"

#include <QAccessible>
#include <QSignalSpy>
#include <QTest>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace {

constexpr QColor up(0, 0, 200);
constexpr QColor down(200, 0, 0);
constexpr QRect faceRect(30, 40, 110, 26);

/// A shown window with one button.
struct Desk
{
    Desk()
    {
        pictureFolder.paint(u"imgs/butup.gif"_s, up);
        pictureFolder.paint(u"imgs/butdown.gif"_s, down);
        window.resize(300, 200);
        button = new ImageButton(u"cmdTry"_s, u"&Try it"_s, pictures, &window);
        button->face()->setGeometry(faceRect);
        window.show();
    }

    QColor faceColour() const { return button->face()->grab().toImage().pixelColor(2, 2); }
    QWidget* part(const QString& name) const { return window.findChild<QWidget*>(name); }

    PictureFolder pictureFolder;
    PictureStore pictures{pictureFolder.folder()};
    QWidget window;
    QPointer<ImageButton> button;
};

void addParts()
{
    QTest::addColumn<QString>("part");
    QTest::newRow("caption") << u"cmdTry"_s;
    QTest::newRow("face") << u"cmdTryImg"_s;
}

} // namespace

class ImageButtonTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void aPressSwapsTheFaceAndMovesTheCaptionUntilReleased_data() { addParts(); }
    void aPressSwapsTheFaceAndMovesTheCaptionUntilReleased()
    {
        QFETCH(const QString, part);
        Desk desk;
        QWidget* const target = desk.part(part);
        const QRect raised = desk.button->geometry();
        QCOMPARE(raised.left(), faceRect.left() + 5);
        QCOMPARE(raised.size(), QSize(faceRect.width() - 10, faceRect.height()));
        QCOMPARE(desk.faceColour(), up);
        bool raisedFirst = false;
        connect(desk.button, &ImageButton::activated, this,
                [&] { raisedFirst = desk.button->geometry() == raised && desk.faceColour() == up; });
        QSignalSpy used(desk.button, &ImageButton::activated);
        QSignalSpy clicked(desk.button, &QAbstractButton::clicked);

        QTest::mousePress(target, Qt::LeftButton);
        QCOMPARE(desk.faceColour(), down);
        QCOMPARE(desk.button->geometry(), raised.translated(1, 3)); // 20 and 50 twips
        QCOMPARE(used.count(), 0);
        QTest::mouseRelease(target, Qt::LeftButton);
        QCOMPARE(desk.button->geometry(), raised);
        QVERIFY(raisedFirst);
        QCOMPARE(used.count(), 1);
        QCOMPARE(used[0][0].value<Qt::MouseButton>(), Qt::LeftButton);
        QCOMPARE(clicked.count(), 1);
    }

    void otherButtonsActWithoutAPressedFace_data()
    {
        QTest::addColumn<QString>("part");
        QTest::addColumn<Qt::MouseButton>("button");
        QTest::newRow("right on caption") << u"cmdTry"_s << Qt::RightButton;
        QTest::newRow("right on face") << u"cmdTryImg"_s << Qt::RightButton;
        QTest::newRow("middle on face") << u"cmdTryImg"_s << Qt::MiddleButton;
    }
    void otherButtonsActWithoutAPressedFace()
    {
        QFETCH(const QString, part);
        QFETCH(const Qt::MouseButton, button);
        Desk desk;
        QSignalSpy used(desk.button, &ImageButton::activated);
        QSignalSpy clicked(desk.button, &QAbstractButton::clicked);
        QTest::mousePress(desk.part(part), button);
        QCOMPARE(desk.faceColour(), up);
        QTest::mouseRelease(desk.part(part), button);
        QCOMPARE(used.count(), 1);
        QCOMPARE(used[0][0].value<Qt::MouseButton>(), button);
        QCOMPARE(clicked.count(), 0);
    }

    void draggingAwayBeforeTheReleaseCancels_data() { addParts(); }
    void draggingAwayBeforeTheReleaseCancels()
    {
        QFETCH(const QString, part);
        Desk desk;
        QWidget* const target = desk.part(part);
        QSignalSpy used(desk.button, &ImageButton::activated);
        const QPoint outside(5, -30);
        QTest::mousePress(target, Qt::LeftButton);
        QMouseEvent away(QEvent::MouseMove, outside, target->mapToGlobal(outside), Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(target, &away);
        QCOMPARE(desk.faceColour(), up);
        QTest::mouseRelease(target, Qt::LeftButton, {}, outside);
        QTest::mousePress(target, Qt::RightButton);
        QTest::mouseRelease(target, Qt::RightButton, {}, outside);
        QTest::mouseRelease(target, Qt::RightButton); // of a press that was somewhere else
        QCOMPARE(used.count(), 0);
    }

    void theKeyboardAndScreenReadersUseIt()
    {
        Desk desk;
        QSignalSpy used(desk.button, &ImageButton::activated);
        QTest::keyClick(&desk.window, Qt::Key_Tab);
        QCOMPARE(desk.window.focusWidget(), desk.button.data());
        for (const Qt::Key key : {Qt::Key_Space, Qt::Key_Return, Qt::Key_Enter})
            QTest::keyClick(desk.button, key);
        QCOMPARE(used.count(), 3);
        QKeyEvent repeated(QEvent::KeyPress, Qt::Key_Return, {}, u"\r"_s, true);
        QApplication::sendEvent(desk.button, &repeated);
        QCOMPARE(used.count(), 3);

        QAccessibleInterface* const accessible = QAccessible::queryAccessibleInterface(desk.button);
        QVERIFY(accessible);
        QCOMPARE(accessible->role(), QAccessible::Button);
        QCOMPARE(accessible->text(QAccessible::Name), u"Try it"_s);
        accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
        QTRY_COMPARE(used.count(), 4);
        for (const QList<QVariant>& arguments : used)
            QCOMPARE(arguments[0].value<Qt::MouseButton>(), Qt::LeftButton);
    }

    void disablingReachesBothPartsAndStopsThem()
    {
        Desk desk;
        QSignalSpy used(desk.button, &ImageButton::activated);
        desk.button->setEnabled(false);
        QVERIFY(!desk.button->face()->isEnabled());
        for (const QString& part : {u"cmdTry"_s, u"cmdTryImg"_s}) {
            QTest::mouseClick(desk.part(part), Qt::LeftButton);
            QTest::mouseClick(desk.part(part), Qt::RightButton);
        }
        QCOMPARE(used.count(), 0);
        desk.button->setEnabled(true);
        QVERIFY(desk.button->face()->isEnabled());
    }

    void aLockedContainerDoesNotSeparateTheParts()
    {
        Desk desk;
        desk.window.setEnabled(false);
        desk.button->setEnabled(false);
        desk.window.setEnabled(true);
        QVERIFY(!desk.button->isEnabled());
        QVERIFY(!desk.button->face()->isEnabled());
        desk.window.setEnabled(false);
        desk.button->setEnabled(true);
        desk.window.setEnabled(true);
        QVERIFY(desk.button->isEnabled());
        QVERIFY(desk.button->face()->isEnabled());
    }

    void itComesBackRaisedWhenHiddenWhilePressed()
    {
        Desk desk;
        const QRect raised = desk.button->geometry();
        QTest::mousePress(desk.button, Qt::LeftButton);
        desk.button->hide();
        QVERIFY(desk.button->face()->isHidden());
        desk.button->show();
        QVERIFY(desk.button->face()->isVisible());
        QCOMPARE(desk.faceColour(), up);
        QCOMPARE(desk.button->geometry(), raised);
    }

    void itSurvivesBeingDeletedByItsAction_data() { addParts(); }
    void itSurvivesBeingDeletedByItsAction()
    {
        QFETCH(const QString, part);
        Desk desk;
        connect(desk.button, &ImageButton::activated, this, [&] { delete desk.button; });
        QTest::mouseClick(desk.part(part), Qt::RightButton);
        QVERIFY(!desk.part(u"cmdTryImg"_s));
    }

    void theCaptionFollowsTheFaceThatALayoutMoves()
    {
        Desk desk;
        auto* layout = new QVBoxLayout(desk.button->parentWidget());
        layout->addSpacing(40);
        layout->addWidget(desk.button->face(), 0, Qt::AlignCenter);
        layout->activate();
        QVERIFY(desk.button->face()->height() >= desk.button->sizeHint().height());
        QCOMPARE(desk.button->x(), desk.button->face()->x() + 5); // 75 twips
        QVERIFY(desk.button->face()->y() >= 40);
        const QRect caption = desk.button->geometry();
        layout->insertSpacing(0, 30);
        layout->activate();
        QVERIFY(desk.button->geometry() != caption);
        QCOMPARE(desk.button->x(), desk.button->face()->x() + 5);
    }
};

QTEST_MAIN(ImageButtonTest)
#include "ImageButtonTest.moc"
