#pragma once

#include <QtGlobal>

/// A desk or another rig whose user is logged in from the beginning. The program ends when he cannot be.
template <typename Rig>
struct LoggedIn : Rig
{
    template <typename... Parts>
    explicit LoggedIn(const Parts&... parts) : Rig(parts...)
    {
        if (!Rig::logIn())
            qFatal("the login fails");
    }
};
