#pragma once

#include "base/Bounds.h"

#include <QString>

class AppFolder;
class clsMFD;
class clsWinSock;
class CodePage;
class Inet;
class MessageBoxes;
class PictureStore;
class ReplyDispatcher;
class Reporter;
class StatusSlot;
class WindowRegistry;
struct Preferences;

/// What every window needs of the program around it. The frame owns all of it and outlives every window.
struct Client
{
    clsWinSock& link;
    ReplyDispatcher& replies;
    clsMFD& store;
    AppFolder& folder;
    Inet& inet;
    Reporter& reporter;
    MessageBoxes& boxes;
    const CodePage& codePage;
    PictureStore& pictures;
    WindowRegistry& windows;
    /// Set once the user has confirmed quitting. Written by the frame.
    const bool& quitting;
    StatusSlot& status;
    /// Written by the options.
    const Preferences& preferences;
    /// How much is taken from the host.
    const Bounds bounds = {};
};
