#pragma once

#include <QByteArray>

namespace practice {

/// The emblems that stand for game modifications in the sample worlds.
enum class Emblem { Shield, Parachute, Crosshair };

/// A complete GIF file of 16 by 16 pixels with a transparent ground.
QByteArray gifEmblem(Emblem emblem);

} // namespace practice
