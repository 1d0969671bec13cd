#pragma once

#include "tour/Act.h"

namespace tour {

/// The way of an administrator who has put plugins into his folder: one is registered, one is not, and one file is no
/// plugin at all. He sorts them out, starts a game with the one and watches the match with the other.
class PluginTour : public Act
{
public:
    /// Fills the folder's plugins from `examples`, and registers the first one.
    /// @param frame     not started yet; outlives the tour
    /// @param folder    the frame's application folder
    /// @param examples  folder of the example plugins
    /// @param pictures  folder that exists
    PluginTour(qrvrcMain& frame, const QDir& folder, const QDir& examples, const QDir& pictures);

private:
    void layOut(const QDir& folder, const QDir& examples);
    void sortOut();
    void signIn();
    void startGame();
    void attach();
    void seeItPlayed();
    void watchMatch();
};

} // namespace tour
