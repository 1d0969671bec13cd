#pragma once

#include "plugins/PluginTable.h"
#include "support/Desk.h"
#include "support/Registration.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDialog>
#include <QListWidget>
#include <QMenu>
#include <QPointer>
#include <QTableView>
#include <QTest>
#include <QTimer>

/// What tests of the profile list's actions do at the list and at the window in which a process is chosen.

inline constexpr int patience = 30'000; // milliseconds; only a fault makes anybody wait that long

/// Rows of the small world.
enum Row { Alpha, Bravo, Charlie };

/// The user at every "Attach to Process" window that opens. What he leaves open is closed behind him.
class PickerUser
{
public:
    explicit PickerUser(std::function<void(const Pane&)> act) : m_act(std::move(act))
    {
        QObject::connect(&m_look, &QTimer::timeout, &m_look, [this] { look(); });
        m_look.start(1);
    }

    int opened = 0;
    QStringList ids;       ///< listed by the newest window
    QStringList processes; ///< the names beside them

private:
    void look()
    {
        for (QWidget* widget : QApplication::topLevelWidgets()) {
            if (!widget->isVisible() || widget->objectName() != QStringLiteral("qrvrcProcesses") || widget == m_known)
                continue;
            const QPointer<QDialog> picker = static_cast<QDialog*>(widget);
            m_known = picker;
            ++opened;
            const Pane pane(*picker);
            ids = pane.column(QStringLiteral("lstID"));
            processes = pane.column(QStringLiteral("lstProcess"));
            if (m_act)
                m_act(pane);
            if (picker && picker->isVisible())
                picker->reject();
            return;
        }
    }

    std::function<void(const Pane&)> m_act;
    QPointer<QWidget> m_known;
    QTimer m_look;
};

/// Chooses the process with this id.
inline auto choosing(const QString& id)
{
    return [id](const Pane& picker) {
        const auto row = static_cast<int>(picker.column(QStringLiteral("lstID")).indexOf(id));
        if (row < 0)
            return;
        picker.clickRow(QStringLiteral("lstID"), row);
        picker.click(QStringLiteral("cmdAttach"));
    };
}

inline void pressDelete(Desk& desk)
{
    QTest::keyClick(&desk.control(QStringLiteral("fgProfiles")), Qt::Key_Delete);
}

/// Runs `act` once the tracker holds an answer to such a request, above whatever waits for it.
/// @return whether it came to that and `act` is over
inline bool whenHeld(Desk& desk, const QByteArray& request, const std::function<void()>& ask,
                     const std::function<void()>& act)
{
    desk.tracker.hold(request);
    bool isOver = false;
    QTimer look;
    QObject::connect(&look, &QTimer::timeout, &look, [&] {
        if (desk.tracker.held(request) == 0)
            return;
        look.stop();
        act();
        isOver = true;
    });
    look.start(1);
    ask();
    return QTest::qWaitFor([&] { return isOver; }, patience);
}

/// Asks for the list by its tab.
inline void askForList(Desk& desk)
{
    desk.clickTab(QStringLiteral("tsMain"), QStringLiteral("Profile List"));
}

/// Lets what is held come and arrive.
inline void letCome(Desk& desk)
{
    desk.tracker.releaseAll();
    QVERIFY(desk.settles());
}

/// Opens the list's menu by a right click on this row.
inline void openMenu(Desk& desk, int row)
{
    auto& grid = desk.control<QTableView>(QStringLiteral("fgProfiles"));
    const QPoint at = grid.visualRect(desk.grid().index(row, 1)).center();
    QTest::mouseClick(grid.viewport(), Qt::RightButton, {}, at);
    QContextMenuEvent event(QContextMenuEvent::Mouse, at, grid.viewport()->mapToGlobal(at));
    QApplication::sendEvent(grid.viewport(), &event);
}

/// The same by key, for the selected row.
inline void openMenuByKey(Desk& desk)
{
    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QApplication::sendEvent(&desk.control(QStringLiteral("fgProfiles")), &event);
}

/// Chooses an entry of the menu that is open.
inline void chooseEntry(Desk& desk, const QString& entry)
{
    auto& menu = desk.control<QMenu>(QStringLiteral("mnuMain"));
    QTest::mouseClick(&menu, Qt::LeftButton, {}, menu.actionGeometry(&desk.control<QAction>(entry)).center());
}

/// Uses a button of the list, an entry of its menu or, for "Delete", the key.
inline void use(Desk& desk, const QString& control)
{
    if (control == QStringLiteral("Delete")) {
        pressDelete(desk);
    } else if (control.startsWith(QStringLiteral("mnu"))) {
        openMenuByKey(desk);
        chooseEntry(desk, control);
    } else {
        desk.click(control);
    }
}

inline bool isUsable(Desk& desk)
{
    return desk.frame().isEnabled() && desk.control(QStringLiteral("qrvrcProfilesList")).isEnabled() &&
           desk.control(QStringLiteral("qrvrcMenu")).isEnabled() &&
           desk.control(QStringLiteral("tsMain")).isEnabled() && !QApplication::overrideCursor();
}

inline qsizetype actionsSent(const Desk& desk)
{
    qsizetype sent = 0;
    for (const char* name : {"Attach", "Detach", "StopGame", "DeleteProfile"})
        sent += desk.requestCount(name);
    return sent;
}

/// The game-start plugin as the list sees it, without a library behind it.
inline void pretendStartPlugin(Desk& desk)
{
    Plugin plugin;
    plugin.name = startPlugin;
    plugin.enabled = true;
    desk.core().plugins.plugins.push_back(plugin);
}

/// The real one in the desk's folder, registered, so that the start does not stop at it.
inline void addStartPlugin(const Desk& desk)
{
    const AppFolder folder(desk.path(""));
    folder.makeFolder("\\Plugins");
    const std::filesystem::path target = folder.path("\\Plugins\\qrvrcBHDGS.dll");
    std::filesystem::copy_file(std::filesystem::path(QRVRC_EXAMPLE_DIR) / "qrvrcBHDGS.dll", target);
    Components components(folder);
    if (!isRegistered(components, target))
        qFatal("the game-start plugin cannot be registered");
}
