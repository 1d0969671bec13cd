#pragma once

#include "practice/WebSide.h"
#include "tour/Act.h"

class qrvrcMain;

namespace tour {

/// The way through the program that an administrator takes on his first day, mishaps included, with a picture of every
/// window on it.
class Tour : public Act
{
public:
    /// @param frame     not started yet; outlives the tour
    /// @param web       the frame's maker host
    /// @param pictures  folder that exists
    Tour(qrvrcMain& frame, practice::WebSide& web, const QDir& pictures);

private:
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

    void openProfileList();
    void signOut();
    void signInAs(const QByteArray& account);

    practice::WebSide& m_web;
};

} // namespace tour
