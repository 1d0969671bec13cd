#pragma once

#include "practice/Tracker.h"
#include "tour/Camera.h"
#include "tour/Script.h"

#include <QMessageBox>

class qrvrcMain;

namespace tour {

/// One run of the program, from the start of its frame to its end, as a script with pictures. Plays the host as well.
class Act
{
public:
    Act(const Act&) = delete;
    Act& operator=(const Act&) = delete;
    virtual ~Act() = default;

    /// Starts the program and goes through it.
    /// @return whether everything came true
    bool play();
    /// One line that says what did not come true and what was on the screen instead.
    QString complaint() const;

protected:
    /// @param frame     not started yet; outlives the act
    /// @param pictures  folder that exists
    Act(qrvrcMain& frame, const practice::World& world, const QDir& pictures);

    void picture(const QString& file);
    void arrive();
    void awaitFrame();
    /// Clicks a button of the message box, which is to go.
    void answerBox(const QString& what, QMessageBox::StandardButton answer);
    void dismissBox(const QString& what);
    /// Fills the fields of the login window with a connection to the host as its super account.
    void typeConnection(const QString& profileName);
    void askToQuit();
    void confirmQuit();

    qrvrcMain& m_frame;
    practice::Tracker m_tracker;
    Camera m_camera;
    Script m_script;

private:
    QString whatStands() const;

    bool m_isStarted = false; ///< what precedes the frame is over
    QString m_failure;
};

} // namespace tour
