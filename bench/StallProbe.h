#pragma once

#include "Heartbeat.h"
#include "QuietDesk.h"
#include "link/clsWinSock.h"
#include "ui/Grid.h"

#include <string>

/// Saves a connection to a practice tracker on this port. The login window learns of it when it lists what is saved,
/// which it does in the event loop's first round.
inline void saveConnection(QuietDesk& desk, quint16 port)
{
    ClientCore& core = desk.frame->core();
    const std::filesystem::path store = core.folder.path("\\profiles.ini");
    core.store.WriteIniKey("bench", "Host", "127.0.0.1", store);
    core.store.WriteIniKey("bench", "Port", std::to_string(port), store);
    core.store.WriteIniKey("bench", "User", "admin", store);
    core.store.WriteIniKey("bench", "Pass", "admin", store);
}

/// Logs the client in over it and waits for the first list.
inline void logIn(QuietDesk& desk)
{
    desk.frame->connectProfile(QStringLiteral("bench"));
    runUntil([&] {
        const auto* list = desk.frame->findChild<GridView*>(QStringLiteral("fgProfiles"));
        return list && list->rows().rowCount() > 0 && !desk.frame->core().link.pending();
    });
}
