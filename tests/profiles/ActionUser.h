#pragma once

#include "plugins/PluginTable.h"
#include "support/Desk.h"

#include <QAction>
#include <QApplication>
#include <QDialog>
#include <QListWidget>
#include <QPointer>
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
    explicit PickerUser(std::function<void(QDialog&)> act) : m_act(std::move(act))
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
            ids = texts(*picker, QStringLiteral("lstID"));
            processes = texts(*picker, QStringLiteral("lstProcess"));
            if (m_act)
                m_act(*picker);
            if (picker && picker->isVisible())
                picker->reject();
            return;
        }
    }

    static QStringList texts(const QDialog& picker, const QString& list)
    {
        const auto* widget = picker.findChild<QListWidget*>(list);
        QStringList rows;
        for (int row = 0; row < widget->count(); ++row)
            rows += widget->item(row)->text();
        return rows;
    }

    std::function<void(QDialog&)> m_act;
    QPointer<QWidget> m_known;
    QTimer m_look;
};

inline QListWidget& listOf(const QDialog& picker, const QString& name)
{
    return *picker.findChild<QListWidget*>(name);
}

inline void clickItem(const QDialog& picker, const QString& name, int row)
{
    QListWidget& list = listOf(picker, name);
    QTest::mouseClick(list.viewport(), Qt::LeftButton, {}, list.visualItemRect(list.item(row)).center());
}

inline void press(const QDialog& picker, const QString& button)
{
    QTest::mouseClick(picker.findChild<QWidget*>(button), Qt::LeftButton);
}

/// Chooses the process with this id.
inline auto choosing(const QString& id)
{
    return [id](QDialog& picker) {
        const QList<QListWidgetItem*> found = listOf(picker, QStringLiteral("lstID")).findItems(id, Qt::MatchExactly);
        if (found.isEmpty())
            return;
        clickItem(picker, QStringLiteral("lstID"), listOf(picker, QStringLiteral("lstID")).row(found.constFirst()));
        press(picker, QStringLiteral("cmdAttach"));
    };
}

inline void pressDelete(Desk& desk)
{
    QTest::keyClick(&desk.control(QStringLiteral("fgProfiles")), Qt::Key_Delete);
}

/// Uses a button of the list, an entry of its menu or, for "Delete", the key.
inline void use(Desk& desk, const QString& control)
{
    if (control == QStringLiteral("Delete"))
        pressDelete(desk);
    else if (control.startsWith(QStringLiteral("mnu")))
        desk.control<QAction>(control).trigger();
    else
        desk.click(control);
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
    if (!Components(folder).registerFile(target))
        qFatal("the game-start plugin cannot be registered");
}
