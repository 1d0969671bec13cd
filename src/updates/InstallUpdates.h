#pragma once

#include "updates/UpdatesIni.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;
class UpdateTargets;

/// Where the files that the last update replaced are kept until the next one.
inline constexpr std::string_view replacedFolder = "\\Replaced";
/// What could not be installed, a line each; shown by the program at its next start.
inline constexpr std::string_view problemsFile = "\\UpdateProblems.txt";

/// Called before each step with its name, so that a test can end the program there.
using StepHook = std::function<void(std::string_view step)>;

/// Begins an update: what an earlier one replaced is let go, unless a part of that still waits or the program has not
/// started with it. Nothing is thrown.
void beginUpdate(const AppFolder& folder) noexcept;

/// Where the file that an update is about to replace is to be kept; that there was none is noted.
/// @return nothing when there is nothing to be kept: an older file that is kept already stays
/// @throws RuntimeError from the disk
std::optional<std::filesystem::path> placeToKeep(const AppFolder& folder, const std::filesystem::path& target,
                                                 const WaitingFile& file);
/// Keeps the file there. It may be copied for that, which takes its time. @throws RuntimeError from the disk
void keepFile(const std::filesystem::path& file, const std::filesystem::path& kept);
/// Both, when it may take its time.
void keepReplaced(const AppFolder& folder, const std::filesystem::path& target, const WaitingFile& file);

/// Installs everything that waits, or nothing: what waits is looked at again first, what was there before is kept, and
/// when one file cannot be put in its place, those before it are taken back. Nothing that could be installed later is
/// lost; what never could (damaged, refused, gone) is taken off the list, and the rest is noted as waiting for what
/// comes in its place. What went wrong is written down. May be ended at any moment and run again: every file is the old
/// or the new one as a whole.
/// @return what could not be done, a line each; empty when all is in its place
std::vector<std::string> installWaiting(const UpdateTargets& targets, const StepHook& beforeStep = {});

/// Puts the files back that the last update replaced, and takes away those that it added. What of it still waits is
/// dropped.
/// @return what could not be put back, a line each
std::vector<std::string> restoreReplaced(const UpdateTargets& targets);

/// Whether there is an update that can be undone.
bool isReplacedKept(const AppFolder& folder);

/// Leaves lines for the program to show at its next start.
/// @throws RuntimeError from the disk
void writeProblems(const AppFolder& folder, const std::vector<std::string>& problems);

/// Lets go of what was replaced. Nothing is thrown; what cannot be removed stays.
void forgetReplaced(const AppFolder& folder) noexcept;

/// What the lock of the application folder says while the updater holds it instead of a client.
inline constexpr std::string_view updaterLockText = "QRVV3Updater\n";

/// How the client is to be started again after an installation.
struct RestartOrder
{
    std::filesystem::path program;
    std::vector<std::string> arguments;

    bool operator==(const RestartOrder&) const = default;
};

/// @throws RuntimeError from the disk, and InvalidProcedureCall for an argument with a line break
void writeRestartOrder(const AppFolder& folder, const RestartOrder& order);
/// An order without a program when none has been left.
RestartOrder readRestartOrder(const AppFolder& folder);
