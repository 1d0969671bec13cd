#pragma once

#include "diagnostics/report/Reporter.h"
#include "link/Ask.h"
#include "link/InterfaceLock.h"
#include "link/ReplyDispatcher.h"
#include "link/Request.h"
#include "link/clsWinSock.h"
#include "platform/system/CodePage.h"
#include "practice/links/Tracker.h"
#include "store/AppFolder.h"
#include "store/clsMFD.h"
#include "support/RecordingDialogs.h"

#include <QTemporaryDir>
#include <QTest>

/// The host link with everything below it and no window, beside a practice tracker on loopback.
struct LinkRig : LockableInterface
{
    QTemporaryDir directory;
    AppFolder folder{directory.path().toStdU16String()};
    clsMFD store{folder, {}};
    CodePage codePage;
    RecordingDialogs boxes;
    Reporter reporter{store, boxes, codePage, "3.0.1.0"};
    ReplyDispatcher replies{reporter, *this};
    Winsock wsMain{QStringLiteral("wsMain")};
    Winsock wSupport{QStringLiteral("wSupport")};
    clsWinSock link{wsMain, wSupport, replies};
    practice::Tracker tracker{practice::World::small()};
    int locks = 0; ///< depth to which the interface is locked

    void lockInterface() override { ++locks; }
    void unlockInterface() override { --locks; }

    Connection connectionToTracker() const
    {
        return {.profile = {},
                .host = QStringLiteral("127.0.0.1"),
                .isAddress = true,
                .port = tracker.port(),
                .user = "admin",
                .password = "admin"};
    }
    bool connect()
    {
        if (tracker.port() == 0 && !tracker.listen())
            return false;
        link.open(connectionToTracker());
        return QTest::qWaitFor([this] { return link.isConnected(); });
    }

    bool logIn()
    {
        return connect() && ask(link, loginRequest("admin", "admin", "3.0.1.0")) == WaitEnd::Done && link.isLoggedIn();
    }
};
