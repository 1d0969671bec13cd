#pragma once

#include <string>
#include <string_view>

/// The code page in which bytes of the host stand for characters, where the system converts between the two itself: its
/// ANSI code page when that has one byte a character, otherwise Windows-1252.
unsigned systemCodePage();

std::wstring wideOf(std::string_view bytes);
/// What the code page lacks becomes "?".
std::string bytesOf(std::wstring_view text);
