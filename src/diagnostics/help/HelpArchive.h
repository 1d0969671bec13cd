#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <string_view>

/// What a compiled help file (.chm) holds, unpacked from memory by the library for it. Nothing is read from the disk.
class HelpArchive
{
public:
    /// No object that lies farther than this into the compressed section is unpacked: its beginning has to be unpacked
    /// before it.
    static constexpr std::size_t maxUnpackedBytes = std::size_t{256} * 1024 * 1024;

    /// @param bytes  the whole file
    /// @throws RuntimeError InvalidFileFormat for what is no help file or is damaged; OutOfMemory
    explicit HelpArchive(std::string bytes);
    ~HelpArchive();
    HelpArchive(const HelpArchive&) = delete;
    HelpArchive& operator=(const HelpArchive&) = delete;

    /// Lengths in bytes of all objects by their full names, the format's own tables among them. Names of which there
    /// are several stand for the first, names with control characters are left out.
    std::map<std::string, std::size_t, std::less<>> objects() const;

    /// @param name  one of objects()
    /// @throws RuntimeError InvalidFileFormat when the object is damaged or lies too far into the file
    std::string unpacked(std::string_view name) const;

private:
    struct Library;
    std::unique_ptr<Library> m_library;
};
