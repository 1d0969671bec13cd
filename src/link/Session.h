#pragma once

#include <cstdint>
#include <string>

/// What the link knows of the login under way. One instance, owned by the frame.
struct Session
{
    /// Written by the reply road: true with a login success, false with a login failure. It outlives the connection.
    bool loggedIn = false;
    /// Written by the navigation with every privilege string; cleared when the tracker closes the link and on
    /// disconnect.
    bool superAdmin = false;
    /// Name with which the login succeeded, in the host's code page. Written at login, cleared on disconnect.
    std::string user;
    /// TCP port of the support link. Written at login.
    std::int32_t supportPort = 0;
    /// Written by the frame when the user has confirmed quitting.
    bool quitting = false;
};
