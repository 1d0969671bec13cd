#pragma once

#include "tour/Act.h"

namespace tour {

/// The way of an administrator who watches the players of his servers: of both games, of one where nobody plays, of one
/// whose game has ended, and of one that the tracker tells of badly.
class StatsTour : public Act
{
public:
    /// @param frame     not started yet; outlives the tour
    /// @param pictures  folder that exists
    StatsTour(qrvrcMain& frame, const QDir& pictures);

private:
    void signIn();
    void open(int profile, int players);
    void close();
    void watchPlayers();
    void watchIslands();
    void meetEmptiness();
    void meetTrouble();
};

} // namespace tour
