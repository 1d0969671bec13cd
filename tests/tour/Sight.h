#pragma once

#include <QString>
#include <QStringList>

namespace tour {

// What a user can read off the screen. What is not on it has no rows, no text and no state.

/// -1 for a grid that is not there.
int rowsOf(const QString& grid);
/// The selected row of the profile list, from 0; -1 when it is not exactly one.
int selectedRow();
/// Whether each status from 0 to 5 is there with its picture, and the picture of a mod.
bool showsEveryStatus();
/// The status of a row of the profile list; -1 when that is not there with its picture.
int statusOf(int row);
/// The lines of a list; none for one that is not there.
QStringList linesOf(const QString& list);
/// The line of a list that is selected, from 0; -1 when it is not exactly one.
int selectedLine(const QString& list);
/// Whether a strip has a tab with that caption.
bool hasTab(const QString& strip, const QString& caption);
QString textOf(const QString& name, const QString& container);
QString fieldText(const QString& name);
/// What the status of the login window says.
bool isConnected();
/// Whether the client has the login window and the menus of one that is not logged in.
bool isLoggedOut();
/// Whether an image button is there in that state, caption and face alike.
bool isButton(const QString& name, bool enabled);
bool hasFocus(const QString& name);
bool boxSays(const QString& text);

} // namespace tour
