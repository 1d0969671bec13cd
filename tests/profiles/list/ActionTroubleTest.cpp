#include "profiles/list/ActionUser.h"

#include "support/AddRow.h"
#include "support/LoggedIn.h"

using namespace Qt::StringLiterals;
using namespace std::chrono_literals;
using practice::Fault;

class ActionTroubleTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void thePickerIsLeftWithoutAChoice_data()
    {
        QTest::addColumn<int>("way");
        QTest::newRow("Cancel") << 0;
        QTest::newRow("Escape") << 1;
        QTest::newRow("the window's close button") << 2;
        QTest::newRow("the link is lost") << 3;
    }
    void thePickerIsLeftWithoutAChoice()
    {
        QFETCH(const int, way);
        LoggedIn<Desk> desk;
        desk.clickRow(Bravo);
        bool isGone = false;
        PickerUser user([&](const Pane& picker) {
            picker.clickRow(u"lstID"_s, 2);
            if (way == 0)
                picker.click(u"cmdCancel"_s);
            else if (way == 1)
                QTest::keyClick(&picker.window(), Qt::Key_Escape);
            else if (way == 2)
                picker.window().close();
            else
                desk.tracker.resetLinks();
            isGone = QTest::qWaitFor([&] { return !picker.window().isVisible(); }, patience);
        });
        const qsizetype refreshed = desk.requestCount("GetProfiles");
        desk.click(u"cmdAttach"_s);
        QCOMPARE(user.opened, 1);
        QVERIFY(isGone);
        QCOMPARE(desk.requestCount("Attach"), 1);
        QCOMPARE(desk.requestCount("GetProfiles"), refreshed);
        QVERIFY(isUsable(desk));
    }

    void oddAnswersToAttach_data()
    {
        // boxes: a part of each
        addColumns<QByteArray, QStringList, QStringList>("body", "ids", "boxes");
        const QString none = u"There is no process on the host"_s;
        addRow("no processes", ""_ba, QStringList(), QStringList(none));
        addRow("blank elements", "_MXxh_ _MnxicA==_"_ba, QStringList{u"1"_s, u"2"_s}, QStringList());
        addRow("the second is no Base64", "MXxh_%%%%_MXxh"_ba, QStringList(u"1"_s), QStringList(u"Error 13: "_s));
        addRow("garbage", "%%%%"_ba, QStringList(), QStringList{u"Error 13: "_s, none});
    }
    void oddAnswersToAttach()
    {
        QFETCH(const QByteArray, body);
        QFETCH(const QStringList, ids);
        QFETCH(const QStringList, boxes);
        LoggedIn<Desk> desk;
        desk.clickRow(Bravo);
        PickerUser user({});
        desk.click(u"cmdAttach"_s); // a good answer before it, which counts for nothing later
        QCOMPARE(std::exchange(user.opened, 0), 1);
        user.ids.clear();
        desk.tracker.answerNextWith("Attach", body);
        desk.click(u"cmdAttach"_s);
        QCOMPARE(user.opened, ids.isEmpty() ? 0 : 1);
        QCOMPARE(user.ids, ids);
        QCOMPARE(desk.boxes.boxes.size(), boxes.size());
        for (qsizetype box = 0; box < boxes.size(); ++box)
            QVERIFY2(desk.boxes.boxes[box].text.contains(boxes[box]), qPrintable(desk.boxes.boxes[box].text));
        QVERIFY(isUsable(desk));
    }

    void aNewProcessListForTheChoiceIsOfferedAgain_data()
    {
        QTest::addColumn<bool>("byKey");
        QTest::newRow("Return") << true;
        QTest::newRow("double click") << false;
    }
    void aNewProcessListForTheChoiceIsOfferedAgain()
    {
        QFETCH(const bool, byKey);
        LoggedIn<Desk> desk;
        desk.clickRow(Bravo);
        PickerUser user([&](const Pane& picker) {
            if (user.opened == 1)
                desk.tracker.answerNextWith("Attach", "MjAwfGRmc2VydmVyLmV4ZQ=="); // 200|dfserver.exe
            QListWidget& list = picker.control<QListWidget>(u"lstProcess"_s);
            const int row = list.count() == 1 ? 0 : 2;
            picker.clickRow(u"lstProcess"_s, row);
            if (byKey)
                QTest::keyClick(&list, Qt::Key_Return);
            else
                QTest::mouseDClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(row)).center());
        });
        desk.click(u"cmdAttach"_s);
        QCOMPARE(user.opened, 2);
        QCOMPARE(user.ids, QStringList(u"200"_s));
        QCOMPARE(desk.requestCount("Attach"), 3);
        QCOMPARE(desk.lastRequest("Attach"), "Attach_admin_VB6_2_200");
        QVERIFY(isUsable(desk));
    }

    void aDropLeavesEverythingUsable_data()
    {
        // step: 1 for the request behind the picker
        addColumns<QString, int, QByteArray, int, Fault>("control", "row", "request", "step", "fault");
        const QList<std::pair<const char*, Fault>> faults{
            {"cut off", Fault::cutOffAfter(9)}, {"reset", Fault::reset()}, {"never", Fault::never()}};
        for (const auto& [name, fault] : faults) {
            QTest::addRow("attach, %s", name) << u"cmdAttach"_s << int{Bravo} << "Attach"_ba << 0 << fault;
            QTest::addRow("attach to a process, %s", name) << u"cmdAttach"_s << int{Bravo} << "Attach"_ba << 1 << fault;
            QTest::addRow("detach, %s", name) << u"cmdDetach"_s << int{Alpha} << "Detach"_ba << 0 << fault;
            QTest::addRow("detach, its refresh, %s", name)
                << u"cmdDetach"_s << int{Alpha} << "GetProfiles"_ba << 0 << fault;
            QTest::addRow("delete, %s", name) << u"Delete"_s << int{Bravo} << "DeleteProfile"_ba << 0 << fault;
        }
        QTest::newRow("stop, never") << u"cmdStop"_s << int{Alpha} << "StopGame"_ba << 0 << Fault::never();
    }
    void aDropLeavesEverythingUsable()
    {
        QFETCH(const QString, control);
        QFETCH(const int, row);
        QFETCH(const QByteArray, request);
        QFETCH(const int, step);
        QFETCH(const Fault, fault);
        LoggedIn<Desk> desk;
        pretendStartPlugin(desk);
        desk.clickRow(Charlie);
        desk.clickRow(row);
        const auto spoil = [&] {
            if (fault == Fault::never())
                desk.link().replyLimit = 30ms;
            desk.tracker.answerNext(request, fault);
        };
        PickerUser user([&](const Pane& picker) {
            spoil();
            choosing(u"200"_s)(picker);
        });
        if (step == 0)
            spoil();
        use(desk, control);
        QCOMPARE(user.opened, step);
        QTRY_VERIFY(!desk.link().isConnected());
        QVERIFY(isUsable(desk));
        QCOMPARE(desk.grid().rowCount(), 0);
        QTRY_COMPARE(desk.boxes.count(u"Failed!"_s), fault == Fault::never() ? 1 : 0); // who is silent is named

        desk.link().replyLimit = 60s;
        QVERIFY(desk.logIn(u"moderator"_s));
        desk.clickRow(static_cast<int>(desk.column(1).indexOf(u"Charlie"_s)));
        desk.click(u"cmdDetach"_s);
        QCOMPARE(desk.tracker.world().profile(3)->isAttached(), false);
        QVERIFY(isUsable(desk));
    }

    void aPluginThatCannotStartIsReported()
    {
        Desk desk;
        addStartPlugin(desk);
        desk.put("\\RCData", "no folder, so that the plugin has nowhere to put its request");
        QVERIFY(desk.logIn());
        desk.clickRow(Bravo);
        desk.click(u"cmdStart"_s);
        const QString text = desk.boxes.onlyText();
        QVERIFY2(text.contains(u"Error 70: "_s) && text.endsWith(u"Function/Sub: cmdStart_Click"_s), qPrintable(text));
        QCOMPARE(actionsSent(desk), 0);
        QCOMPARE(desk.frame().helpSection(), u"Profile List"_s);
        QVERIFY(isUsable(desk));
    }
};

QTEST_MAIN(ActionTroubleTest)
#include "ActionTroubleTest.moc"
