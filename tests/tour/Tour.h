#pragma once

#include "practice/Tracker.h"
#include "practice/WebSide.h"
#include "tour/Camera.h"
#include "tour/Script.h"

class qrvrcMain;

namespace tour {

/// The way through the program that an administrator takes on his first day, mishaps included, with a picture of every
/// window on it. Plays the host as well.
class Tour
{
public:
    /// @param frame     not shown yet; outlives the tour
    /// @param web       the frame's maker host
    /// @param pictures  folder that exists
    Tour(qrvrcMain& frame, practice::WebSide& web, const QDir& pictures);

    /// @return false when no port is to be had
    bool start();
    bool isThrough() const { return m_script.isThrough(); }
    /// One line that says what did not come true and what was on the screen instead.
    QString complaint() const;

private:
    QString whatStands() const;
    void arrive();
    void fillInProfile();
    void beRefused();
    void chooseProfile();
    void signInFirst();
    void watchProgress();
    void readHelp();
    void lookAround();
    void signInAsGuest();
    void openMenu();
    void meetGarbage();
    void loseLink();
    void quit();

    void picture(const QString& file);
    void openProfileList();
    void signOut();
    void signInAs(const QByteArray& account);
    void awaitFrame();
    void dismissBox(const QString& what);

    qrvrcMain& m_frame;
    practice::WebSide& m_web;
    practice::Tracker m_tracker;
    Camera m_camera;
    Script m_script;
    QString m_failure;
};

} // namespace tour
