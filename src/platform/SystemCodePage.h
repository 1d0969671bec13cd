#pragma once

#include <array>
#include <string>
#include <string_view>

/// What each byte of the host stands for; no two stand for the same. Windows-1252, but the system's own code page where
/// there is one that has one byte a character.
std::array<char16_t, 256> hostCharacters();

#if defined(_WIN32)

/// The same for what the system converts itself.
std::wstring wideOf(std::string_view bytes);
/// What the code page lacks becomes "?".
std::string bytesOf(std::wstring_view text);

#endif
