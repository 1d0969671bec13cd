#pragma once

#include <QStringList>

#include <string>

class AppFolder;
class UpdateTargets;
struct RestartOrder;

enum class HandOver {
    Nothing,        ///< no update waits; the program goes on
    UpdaterStarted, ///< the updater needs the program out of its way
    UpdaterMissing, ///< updates wait, but nobody can install them
    UpdaterSilent,  ///< updates wait, and the updater that was started last has not reported back; told once
    SetAside,       ///< updates wait that could not be installed; the user knows, and nothing new has come
};

/// Starts the updater in the program folder.
/// @param arguments  the updater's
/// @param order      how it is to start the program again
/// @return whether it runs
/// @throws RuntimeError when the order cannot be left
bool startUpdater(const UpdateTargets& targets, const RestartOrder& order, const QStringList& arguments);

/// Looks into "\Updates": more than one file there means that updates wait, and the updater is started; a folder with
/// the list of updates alone is taken away.
/// @param order  how the updater is to start the program again
/// @throws RuntimeError when the folder cannot be taken away
HandOver handOverUpdates(const UpdateTargets& targets, const RestartOrder& order);

/// What the updater could not do when it was last at work, a line each; told once. Empty when all went well.
/// @throws RuntimeError when there is something to tell that cannot be read or taken away
std::string takeUpdateProblems(const AppFolder& folder);
