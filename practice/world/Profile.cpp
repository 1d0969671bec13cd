#include "practice/world/Profile.h"

namespace practice {

const char* const deltaForce = "Delta Force,  V1.5.0.5";
const char* const jointOperations = "Joint Operations,  V1.7.5.7";

namespace {

QByteArray statusTextOf(GameState state)
{
    switch (state) {
    case GameState::NotHosting:
        return "Active, not hosting";
    case GameState::Loading:
        return "Loading map";
    case GameState::Hosting:
        return "Hosting map";
    case GameState::HostingSquad:
        return "Hosting squad match";
    case GameState::Scoring:
        return "Scoring map";
    case GameState::NotActive:
        return "Not active";
    }
    return {};
}

} // namespace

QByteArray Profile::playersText() const
{
    if (!isAttached())
        return {};
    return QByteArray::number(players.size()) + '/' + QByteArray::number(maxPlayers);
}

QByteArray Profile::timerText() const
{
    if (state == GameState::NotHosting || state == GameState::NotActive)
        return {};
    const auto twoDigits = [](int number) { return QByteArray::number(number).rightJustified(2, '0'); };
    return twoDigits(secondsLeft / 3600) + ':' + twoDigits(secondsLeft / 60 % 60) + ':' + twoDigits(secondsLeft % 60);
}

void Profile::enter(GameState newState)
{
    state = newState;
    statusText = statusTextOf(newState);
}

void Profile::leaveGame()
{
    process = 0;
    players.clear();
    map.clear();
    secondsLeft = 0;
    enter(GameState::NotActive);
}

} // namespace practice
