#pragma once

#include "tour/Act.h"

namespace tour {

/// Name, in the frame's folder, of what stands for the running program.
inline const QString programName = QStringLiteral("qrvv3rc");

// What a user goes through in one run of the program. Each fills an act that has not begun.

/// His first day, mishaps included.
void firstDay(Act& act);
/// He has put plugins into his folder: one is registered, one is not, and one file is no plugin at all. He sorts them
/// out, starts a game with the one and watches the match with the other.
void plugins(Act& act);
/// He edits a profile: adds a script address, saves, and meets a profile that cannot be read.
void editor(Act& act);
/// He looks for what happened on his host, in lists of logs and backups, a log and an archive.
void files(Act& act);
/// He watches the players of his servers: of both games, and of one where nobody plays.
void statistics(Act& act);
/// He looks at an account and adds one, and comes back as somebody who may do next to nothing.
void accounts(Act& act);
/// A bad day: he looks at the errors that the program has noted, sends them, and recovers a tracker that hangs.
void helpCentre(Act& act);
/// He talks to the host's operator: asks, reads, filters and searches what was said, until the operator's link goes.
void support(Act& act);
/// The maker has something new: the start tells of it, he looks and downloads, and looks at options and plugins.
void updates(Act& act);

} // namespace tour
