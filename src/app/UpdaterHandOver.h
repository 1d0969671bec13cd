#pragma once

class AppFolder;

enum class HandOver {
    Nothing,        ///< no update waits; the program goes on
    UpdaterStarted, ///< the updater needs the program out of its way
    UpdaterMissing, ///< updates wait, but nobody can install them
};

/// Looks into "\Updates": more than one file there means that updates wait, and the updater is started; a folder with
/// the list of updates alone is taken away.
/// @throws RuntimeError when the folder cannot be taken away
HandOver handOverUpdates(const AppFolder& folder);
