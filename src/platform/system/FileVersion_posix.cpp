#include "platform/system/FileVersion.h"

#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"

std::optional<std::string> fileVersionOf(const std::filesystem::path& file)
{
    try {
        const std::optional<std::string> bytes = readBytesIfPresent(file, maxVersionedFileBytes);
        return bytes ? fileVersion(*bytes) : std::nullopt;
    } catch (const RuntimeError&) {
        return std::nullopt;
    }
}
