#pragma once

#include "practice/ScriptPages.h"
#include "practice/WebSide.h"
#include "profiles/qrvrcModify.h"
#include "support/Desk.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
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
        QTest::mouseClick(
            desk.control(QStringLiteral("qrvrcProfilesList")).findChild<QWidget*>(QStringLiteral("cmdModify")),
            Qt::LeftButton);
        QCoreApplication::processEvents(); // the reading begins behind the click
        return desk.settles() && isShown();
    }
    QWidget* window() { return desk.frame().findChild<QWidget*>(QStringLiteral("qrvrcModify")); }
    bool isShown() { return window() && window()->isVisible(); }
    template <typename Control = QWidget>
    Control& in(const QString& name)
    {
        return *window()->findChild<Control*>(name);
    }
    void type(const QString& field, const QString& text)
    {
        in<QLineEdit>(field).clear();
        in<QLineEdit>(field).insert(text);
    }
    void choose(const QString& system) { in<QComboBox>(QStringLiteral("cboStats")).setCurrentText(system); }
    void click(const QString& name) { QTest::mouseClick(&in(name), Qt::LeftButton); }
    void add(const QString& folder, const QString& id)
    {
        type(QStringLiteral("txtUrl"), web.base().toString() + QLatin1Char('/') + folder);
        type(QStringLiteral("txtServerid"), id);
        click(QStringLiteral("cmdAddurl"));
    }
    QStringList entries()
    {
        QStringList texts;
        for (int row = 0; row < in<QListWidget>(QStringLiteral("lstUrls")).count(); ++row)
            texts += in<QListWidget>(QStringLiteral("lstUrls")).item(row)->text();
        return texts;
    }
    bool isUsable()
    {
        return desk.frame().isEnabled() && desk.control(QStringLiteral("qrvrcMenu")).isEnabled() &&
               window()->isEnabled() && in(QStringLiteral("cmdAddurl")).isEnabled() &&
               !in(QStringLiteral("cmdStopCheck")).isVisible() && window()->cursor().shape() == Qt::ArrowCursor;
    }
    const practice::ProfileSettings& kept() { return desk.tracker.world().profile(2)->settings; }
};
