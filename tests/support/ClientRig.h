#pragma once

#include "client/Client.h"
#include "client/Preferences.h"
#include "client/StatusSlot.h"
#include "platform/net/Inet.h"
#include "support/LinkRig.h"
#include "ui/PictureStore.h"
#include "ui/WindowRegistry.h"

/// All that a window is handed, without the frame around it.
struct ClientRig : LinkRig
{
    PictureStore pictures{folder};
    WindowRegistry windows;
    Inet inet;
    bool quitting = false;
    StatusSlot status;
    Preferences preferences;
    Client client{link,     replies,  store,   folder,   inet,   reporter,   boxes,
                  codePage, pictures, windows, quitting, status, preferences};
};
