#include "platform/system/StandardStreams.h"

#include <iostream>

void joinCallersConsole() {}

void tellCaller(const std::string& line)
{
    std::cerr << line << '\n';
}
