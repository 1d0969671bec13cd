#pragma once

#include <string>

/// Lets standard output and standard error reach the console from which the program was started, where the system gives
/// a program with windows none.
void joinCallersConsole();

/// Tells whoever started the program one line: on standard error, or in a box where that reaches nobody.
void tellCaller(const std::string& line);
