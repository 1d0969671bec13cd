#include "platform/system/PathBytes.h"

std::string bytesOf(const std::filesystem::path& path)
{
    return path.string();
}

std::filesystem::path pathOfBytes(std::string_view bytes)
{
    return bytes;
}
