#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;
class UpdateTargets;

/// Where the files that an installation replaced are kept until the new program has started once.
inline constexpr std::string_view replacedFolder = "\\Replaced";
/// What could not be installed, a line each; shown by the program at its next start.
inline constexpr std::string_view problemsFile = "\\UpdateProblems.txt";

/// Called before each step with its name, so that a test can end the program there.
using StepHook = std::function<void(std::string_view step)>;

/// Moves everything that waits to its place, keeps what was there before, writes down what could not be done, and
/// removes the folder of what waits. May be ended at any moment and run again: every file is the old or the new one as
/// a whole, and what has been moved no longer waits.
/// @return what could not be done, a line each; empty when all is in its place
std::vector<std::string> installWaiting(const UpdateTargets& targets, const StepHook& beforeStep = {});

/// Puts the files back that the last installation replaced.
/// @return what could not be put back, a line each
std::vector<std::string> restoreReplaced(const UpdateTargets& targets);

/// Lets go of what was replaced: the new program has started. Nothing is thrown; what cannot be removed stays.
void forgetReplaced(const AppFolder& folder) noexcept;

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
