#pragma once

#include "practice/links/Tracker.h"
#include "practice/web/WebSide.h"
#include "tour/Camera.h"
#include "tour/Script.h"

#include <QMessageBox>

class qrvrcMain;

namespace tour {

/// Where an act plays. All of it outlives the act.
struct Stage
{
    qrvrcMain& frame;       ///< not started yet
    practice::WebSide& web; ///< the frame's maker host
    QDir home;              ///< the frame's application folder
    QDir pictures;          ///< exists
};

/// One run of the program, from the start of its frame to its end, as a script with pictures. Plays the host as well.
class Act
{
public:
    explicit Act(const Stage& stage);
    Act(const Act&) = delete;
    Act& operator=(const Act&) = delete;

    qrvrcMain& frame;
    practice::WebSide& web;
    const QDir home;
    practice::Tracker tracker;
    Camera camera;

    /// Starts the program and goes through the steps.
    /// @return whether everything came true
    bool play();
    /// One line that says what did not come true and what was on the screen instead.
    QString complaint() const;

    /// Steps as Script::add() and Script::await() take them.
    void step(const QString& what, std::function<void()> act, std::function<bool()> until);
    void await(const QString& what, std::function<bool()> until);
    /// A picture of what the last step led to.
    void picture(const QString& file);

    void arrive();
    void awaitFrame();
    /// Presses Escape until that widget is gone.
    void escape(const QString& name);
    /// Clicks a button of the message box, which is to go.
    void answerBox(QMessageBox::StandardButton answer = QMessageBox::Ok);
    /// The same with OK, for a box in front of the frame.
    void dismissBox();
    void openMenu(int row);
    /// Fills the fields of the login window with a connection to the host as its super account.
    void typeConnection();
    /// Connects with what is typed, to a host that can be found from now on, and waits for the sample world's list.
    void connect();
    void signIn();
    /// Signs in anew with another account, whose name is its password, once the link is gone.
    void signInAs(const QByteArray& account);
    /// @param file  picture of the question; none when empty
    void quit(const QString& file = {});

private:
    QString whatStands() const;

    Script m_script;
    bool m_isStarted = false; ///< what precedes the frame is over
    QString m_failure;
};

} // namespace tour
