#pragma once

#include "practice/world/Profile.h"

namespace practice {

inline constexpr int playerNames = 48;

/// One of `playerNames` names; a higher number gets its round appended, so that every number has its own name.
QByteArray playerName(int number);

QByteArray identityOf(const QByteArray& name, int number);

/// A player who has done nothing yet, with the weapons that he carries.
Player newcomer(const QByteArray& name, const QByteArray& identity, int slot, int team);

} // namespace practice
