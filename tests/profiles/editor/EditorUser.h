#pragma once

#include "practice/web/ScriptPages.h"
#include "practice/web/WebSide.h"
#include "profiles/editor/qrvrcModify.h"
#include "support/Desk.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLineEdit>
#include <QListWidget>
#include <QTableView>
#include <QTest>

/// What tests of the profile editor do at it.

/// Rows of the small world. Bravo follows no game, so it can be modified.
enum Row { Alpha, Bravo, Charlie };

/// The desk with a web host beside it, and the hands of somebody who edits the profile Bravo.
struct Editor
{
    Desk desk;
    practice::WebSide web;

    Editor()
    {
        desk.tracker.world().profile(2)->settings.scripts = {"http://a:1", "http://b:2"};
        if (!web.listen())
            qFatal("the web host has no port");
    }

    bool open(int row = Bravo)
    {
        if (!desk.logIn())
            return false;
        desk.clickRow(row);
        return openAgain();
    }
    bool openAgain()
    {
        desk.in(QStringLiteral("qrvrcProfilesList")).click(QStringLiteral("cmdModify"));
        QCoreApplication::processEvents(); // the reading begins behind the click
        return desk.settles() && isShown();
    }
    QWidget* window() { return desk.frame().findChild<QWidget*>(QStringLiteral("qrvrcModify")); }
    bool isShown() { return window() && window()->isVisible(); }
    template <typename Control = QWidget>
    Control& in(const QString& name)
    {
        return Pane(*window()).control<Control>(name);
    }
    QString text(const QString& name) { return Pane(*window()).text(name); }
    void type(const QString& field, const QString& text) { Pane(*window()).type(field, text); }
    void choose(const QString& system) { in<QComboBox>(QStringLiteral("cboStats")).setCurrentText(system); }
    void click(const QString& name) { Pane(*window()).click(name); }
    void add(const QString& folder, const QString& id)
    {
        type(QStringLiteral("txtUrl"), web.base().toString() + QLatin1Char('/') + folder);
        type(QStringLiteral("txtServerid"), id);
        click(QStringLiteral("cmdAddurl"));
    }
    QStringList entries() { return Pane(*window()).column(QStringLiteral("lstUrls")); }
    bool isUsable()
    {
        return desk.frame().isEnabled() && desk.control(QStringLiteral("qrvrcMenu")).isEnabled() &&
               window()->isEnabled() && in(QStringLiteral("cmdAddurl")).isEnabled() &&
               !in(QStringLiteral("cmdStopCheck")).isVisible() && window()->cursor().shape() == Qt::ArrowCursor;
    }
    const practice::ProfileSettings& kept() { return desk.tracker.world().profile(2)->settings; }
};
