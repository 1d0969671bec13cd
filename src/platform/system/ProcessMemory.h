#pragma once

/// Gives memory that the program holds but does not use back to the system.
void trimProcessMemory();
