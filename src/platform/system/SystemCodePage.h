#pragma once

#include <string>
#include <string_view>

/// The name of the code page in which bytes of the host stand for characters, as far as this system knows: its own
/// where it has one that `CodePageMap` knows, otherwise "windows-1252".
std::string systemCodePage();

#if defined(_WIN32)

/// The same for what the system converts itself.
std::wstring wideOf(std::string_view bytes);
/// What the code page lacks becomes "?".
std::string bytesOf(std::wstring_view text);

#endif
