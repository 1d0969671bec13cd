#pragma once

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
class WindowRegistry;
struct Session;

/// What every window needs of the program around it. The frame owns all of it and outlives every window.
struct Client
{
    clsWinSock& link;
    ReplyDispatcher& replies;
    Session& session;
    clsMFD& store;
    AppFolder& folder;
    Inet& inet;
    Reporter& reporter;
    MessageBoxes& boxes;
    const CodePage& codePage;
    PictureStore& pictures;
    WindowRegistry& windows;
    /// Name of the section shown, by which F1 finds its topic. Written by each working window when it becomes the one
    /// in front.
    QString& helpSection;
};
