#include "platform/system/FileVersion.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <vector>

namespace {

/// Numbers of a PE file, which are stored with their lowest byte first. What lies beyond the end reads as nothing.
class Image
{
public:
    explicit Image(std::string_view bytes) : m_bytes(bytes) {}

    std::optional<std::uint32_t> number(std::uint64_t offset, unsigned size) const
    {
        if (offset > m_bytes.size() || m_bytes.size() - offset < size)
            return std::nullopt;
        std::uint32_t value = 0;
        for (unsigned index = size; index-- > 0;)
            value = (value << 8) | static_cast<unsigned char>(m_bytes[static_cast<std::size_t>(offset) + index]);
        return value;
    }
    std::optional<std::uint32_t> word(std::uint64_t offset) const { return number(offset, 2); }
    std::optional<std::uint32_t> dword(std::uint64_t offset) const { return number(offset, 4); }

    bool holdsAt(std::uint64_t offset, std::string_view what) const
    {
        return offset <= m_bytes.size() && m_bytes.substr(static_cast<std::size_t>(offset)).starts_with(what);
    }

private:
    std::string_view m_bytes;
};

using namespace std::string_view_literals;

constexpr std::uint32_t magicOf32Bits = 0x10B;
constexpr std::uint32_t magicOf64Bits = 0x20B;
constexpr std::uint32_t resourceDirectory = 2; // its place among the data directories
constexpr std::uint32_t versionResource = 16;
constexpr std::uint32_t isSubdirectory = 0x80000000;
constexpr std::uint32_t versionSignature = 0xFEEF04BD;

/// The sections of a PE file, which say where an address of the loaded module lies in the file.
struct Section
{
    std::uint32_t address = 0;
    std::uint32_t size = 0; ///< of what the file holds
    std::uint32_t offset = 0;
};

std::optional<std::uint64_t> fileOffsetOf(std::uint32_t address, const std::vector<Section>& sections)
{
    for (const Section& section : sections) {
        if (address >= section.address && address - section.address < section.size)
            return std::uint64_t{section.offset} + (address - section.address);
    }
    return std::nullopt;
}

/// What the entry of a resource directory leads to: the one numbered `wanted`, or the first one.
/// @param root       file offset of the resources
/// @param directory  of the directory, counted from there
std::optional<std::uint32_t> resourceEntry(const Image& image, std::uint64_t root, std::uint32_t directory,
                                           std::optional<std::uint32_t> wanted)
{
    constexpr unsigned headerSize = 16;
    constexpr unsigned entrySize = 8;
    const std::uint64_t start = root + directory;
    const std::optional<std::uint32_t> named = image.word(start + 12);
    const std::optional<std::uint32_t> numbered = image.word(start + 14);
    if (!named || !numbered)
        return std::nullopt;
    const std::uint32_t count = *named + *numbered; // two 16-bit numbers, so the loop ends soon
    for (std::uint32_t index = 0; index < count; ++index) {
        const std::uint64_t entry = start + headerSize + std::uint64_t{index} * entrySize;
        const std::optional<std::uint32_t> id = image.dword(entry);
        if (!id)
            return std::nullopt;
        if (!wanted || *id == *wanted)
            return image.dword(entry + 4);
    }
    return std::nullopt;
}

/// The fixed part of a version resource at `offset`, behind its key and padded to four bytes.
std::optional<std::string> versionAt(const Image& image, std::uint64_t offset)
{
    constexpr std::string_view key = "V\0S\0_\0V\0E\0R\0S\0I\0O\0N\0_\0I\0N\0F\0O\0\0\0"sv; // UTF-16, lowest byte first
    constexpr unsigned keyOffset = 6;
    const std::uint64_t fixed = offset + (keyOffset + key.size() + 3) / 4 * 4;
    if (!image.holdsAt(offset + keyOffset, key) || image.dword(fixed) != versionSignature)
        return std::nullopt;
    std::string version;
    for (const unsigned part : {10U, 8U, 14U, 12U}) { // two 32-bit numbers, the higher half of each first
        const std::optional<std::uint32_t> value = image.word(fixed + part);
        if (!value)
            return std::nullopt;
        version.append(version.empty() ? "" : ".").append(std::to_string(*value));
    }
    return version;
}

std::optional<std::string> versionOfPe(std::string_view bytes)
{
    const Image image(bytes);
    const std::optional<std::uint32_t> header = image.dword(0x3C);
    if (!header || !image.holdsAt(*header, "PE\0\0"sv))
        return std::nullopt;
    const std::uint64_t coff = std::uint64_t{*header} + 4;
    const std::optional<std::uint32_t> sectionCount = image.word(coff + 2);
    const std::optional<std::uint32_t> optionalSize = image.word(coff + 16);
    const std::uint64_t optional = coff + 20;
    const std::optional<std::uint32_t> magic = image.word(optional);
    if (!sectionCount || !optionalSize || (magic != magicOf32Bits && magic != magicOf64Bits))
        return std::nullopt;

    const std::uint64_t directories = optional + (magic == magicOf32Bits ? 96 : 112);
    const std::optional<std::uint32_t> directoryCount = image.dword(directories - 4);
    const std::optional<std::uint32_t> address = image.dword(directories + resourceDirectory * 8);
    if (!directoryCount || *directoryCount <= resourceDirectory || !address || *address == 0)
        return std::nullopt;

    std::vector<Section> sections;
    for (std::uint32_t index = 0; index < *sectionCount; ++index) {
        constexpr unsigned sectionSize = 40;
        const std::uint64_t at = optional + *optionalSize + std::uint64_t{index} * sectionSize;
        const auto start = image.dword(at + 12);
        const auto size = image.dword(at + 16);
        const auto offset = image.dword(at + 20);
        if (!start || !size || !offset)
            return std::nullopt;
        sections.push_back({*start, *size, *offset});
    }
    const std::optional<std::uint64_t> root = fileOffsetOf(*address, sections);
    if (!root)
        return std::nullopt;

    // Resources lie three directories deep: kind, name, language.
    std::optional<std::uint32_t> entry = resourceEntry(image, *root, 0, versionResource);
    for (int level = 0; level < 2; ++level) {
        if (!entry || !(*entry & isSubdirectory))
            return std::nullopt;
        entry = resourceEntry(image, *root, *entry & ~isSubdirectory, std::nullopt);
    }
    if (!entry || (*entry & isSubdirectory))
        return std::nullopt;
    const std::optional<std::uint32_t> dataAddress = image.dword(*root + *entry);
    const std::optional<std::uint64_t> data = dataAddress ? fileOffsetOf(*dataAddress, sections) : std::nullopt;
    return data ? versionAt(image, *data) : std::nullopt;
}

/// The four decimal numbers up to 65535 that `text` begins with.
std::optional<std::string> leadingVersion(std::string_view text)
{
    std::size_t position = 0;
    for (int part = 0; part < 4; ++part) {
        if (part > 0 && (position >= text.size() || text[position++] != '.'))
            return std::nullopt;
        const std::size_t start = position;
        std::uint32_t value = 0;
        while (position < text.size() && position - start < 5 && text[position] >= '0' && text[position] <= '9')
            value = value * 10 + static_cast<std::uint32_t>(text[position++] - '0');
        if (position == start || value > 0xFFFF)
            return std::nullopt;
    }
    const bool isOver = position == text.size() || text[position] == '\0';
    return isOver ? std::optional(std::string(text.substr(0, position))) : std::nullopt;
}

std::optional<std::string> versionBehindMarker(std::string_view bytes)
{
    constexpr std::string_view marker = "QRVRC-FILE-VERSION:";
    // This program holds the marker too, without a version behind it.
    for (std::size_t found = bytes.find(marker); found != std::string_view::npos; found = bytes.find(marker, found)) {
        found += marker.size();
        if (std::optional<std::string> version = leadingVersion(bytes.substr(found)))
            return version;
    }
    return std::nullopt;
}

} // namespace

std::optional<std::string> fileVersion(std::string_view bytes)
{
    return bytes.starts_with("MZ") ? versionOfPe(bytes) : versionBehindMarker(bytes);
}
