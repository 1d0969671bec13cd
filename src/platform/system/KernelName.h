#pragma once

#include <string>

/// The operating system's name and release, and the processor, separated by blanks.
std::string kernelName();
