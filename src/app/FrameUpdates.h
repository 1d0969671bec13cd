#pragma once

#include "updates/InstallUpdates.h"

#include <functional>
#include <memory>

class LoginExchange;
class QWidget;
class UpdateAgent;
class UpdateOptions;
struct ClientCore;

/// What the frame has to do with updates: their windows, the hand-over to the updater and the question of a start.
class FrameUpdates
{
public:
    /// @param core     outlives this
    /// @param restart  how the program is started again after an update
    /// @param frame    outlives this; timers and checks are found below it
    /// @param quit     ends the program without asking
    FrameUpdates(ClientCore& core, RestartOrder restart, QWidget* frame, const std::function<void()>& quit);
    ~FrameUpdates();

    /// Registers options, update and plugin windows.
    /// @param exchange  outlives them
    /// @param pages     holds them
    void registerWindows(LoginExchange& exchange, QWidget* pages);
    /// Reads the options. @throws RuntimeError from the file
    void load();
    /// Hands over to the updater when updates wait.
    /// @return whether this program is to end
    bool updaterTakesOver();
    /// Asks the update locations, and tells the user of what there is.
    void askAtStart();

private:
    ClientCore& m_core;
    RestartOrder m_restart;
    std::unique_ptr<UpdateAgent> m_agent;
    std::unique_ptr<UpdateOptions> m_options;
};
