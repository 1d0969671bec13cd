#pragma once

#include "updates/UpdateCheck.h"

#include <string>
#include <string_view>

class UpdateTargets;

/// The facts of the disk that a check goes by; each file is looked at once.
/// @param targets       outlives the facts
/// @param version       the running program's own, which its executable need not carry
/// @param helpVersionIn layout name of the file that notes the version of the help file
LocalFacts diskFacts(const UpdateTargets& targets, ListKind kind, std::string version, std::string_view helpVersionIn);

/// Notes the version of the help file, which carries none itself; what was noted before returns with the files that an
/// undone update gives back.
void noteHelpVersion(const UpdateTargets& targets, std::string_view version);

/// Where a check by the user reads the noted version, and where one by the clock does.
inline constexpr std::string_view helpVersionFile = "\\config.ini";
inline constexpr std::string_view helpVersionFileByClock = "\\settings\\config.ini";
