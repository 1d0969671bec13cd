#pragma once

#include "practice/web/UpdatePages.h"
#include "practice/web/WebSide.h"
#include "support/Desk.h"
#include "updates/ListCheck.h"

#include <QTableView>
#include <QTest>

/// The client beside a maker host, whose first built-in location it has stored.
struct House
{
    practice::WebSide web;
    Desk desk;

    explicit House(const QByteArray& settings = "[Settings]\r\nUpdateUrl=\r\nCheckForUpdates=0\r\n")
    {
        if (!web.listen())
            qFatal("no port");
        desk.makerHost = web.base();
        if (!settings.isEmpty())
            desk.put("\\settings\\config.ini", settings);
        desk.put("\\data.bin", "0123456789");
        desk.put("\\qrvv3rc.exe", "QRVRC-FILE-VERSION:3.0.1.0"); // the program that the lists speak of
    }
    practice::UpdatePages& pages() { return web.updates(); }
    void offer(const QByteArray& name, const QByteArray& version, const QByteArray& body)
    {
        pages().offerClientFile({.name = name,
                                 .folder = "\\",
                                 .type = name == "qrvv3rc.exe" ? "executable file" : "data file",
                                 .description = name == "qrvv3rc.exe" ? "(QRV) Main Executable" : "About " + name,
                                 .version = version,
                                 .body = body});
    }
    bool open(const QString& window)
    {
        if (!desk.open())
            return false;
        // The questions of the start are over when nothing of it is left: a box may have come with the answer.
        if (!QTest::qWaitFor(
                [this] { return desk.frame().findChildren<ListCheck*>().isEmpty() && !pages().requested().isEmpty(); },
                30'000))
            return false;
        pages().forgetRequests();
        desk.boxes.boxes.clear();
        desk.frame().showWindow(window);
        return true;
    }
    QStringList rows(const QString& window)
    {
        const QAbstractItemModel& model = *desk.in(window).control<QTableView>(QStringLiteral("lstQRV")).model();
        QStringList texts;
        for (int row = 0; row < model.rowCount(); ++row) {
            const bool isTitle = !model.index(row, 0).data().toString().isEmpty();
            const int state = model.index(row, 0).data(Qt::UserRole).toInt();
            texts += isTitle ? model.index(row, 0).data().toString()
                             : (state == 1 ? QStringLiteral("+") : QStringLiteral("-")) +
                                   model.index(row, 1).data().toString();
        }
        return texts;
    }
    bool check(const QString& window, const QString& button)
    {
        desk.in(window).click(button);
        return QTest::qWaitFor([&] { return desk.in(window).control(QStringLiteral("lstQRV")).isEnabled(); }, 30'000);
    }
    /// Downloads what is checked. @return whether the closing message has come
    bool getUpdates(const QString& window)
    {
        const qsizetype before = desk.boxes.boxes.size();
        desk.in(window).click(QStringLiteral("cmdGetUpdates"));
        return QTest::qWaitFor([&] { return desk.boxes.boxes.size() > before; }, 30'000);
    }
};
