#pragma once

#include "platform/system/FileBytes.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string_view>
#include <system_error>

/// An open file as the system knows it, closed at its end: the one place where systems differ in how bytes get to the
/// disk and back. Faults are those of the C library's errno wherever it has a number for them.
class DiskFile
{
public:
    enum class Mode {
        Read,
        CreateNew, ///< to be written; fails when there is such a file
        Append,    ///< to be written at its end; created when missing
        Settle,    ///< an existing one, to be flushed or given rights
    };

    /// @param access  of a file that is created
    DiskFile(const std::filesystem::path& path, Mode mode, Access access = Access::AsUsual);
    ~DiskFile();
    DiskFile(const DiskFile&) = delete;
    DiskFile& operator=(const DiskFile&) = delete;

    /// What opening it failed with; nothing when it is open.
    std::error_code fault() const { return m_fault; }

    /// Its length in bytes. Only a plain file has one: pipes, devices and folders fail as what may not be opened.
    std::uintmax_t size(std::error_code& fault) const;
    /// Reads up to `space` bytes; 0 at the end.
    std::size_t read(char* bytes, std::size_t space, std::error_code& fault);
    std::error_code write(std::string_view bytes);
    /// Returns when the disk has it all.
    std::error_code flush();
    /// Takes away what lies beyond `size`.
    void cutTo(std::uintmax_t size);
    /// Gives it the rights that another file has.
    std::error_code takeRightsOf(const std::filesystem::path& other);
    /// Closing can report that the last bytes did not fit.
    std::error_code close();

private:
    std::intptr_t m_handle;
    std::error_code m_fault;
};

/// Gives `from` the name `to`, in one step also where `to` is there already.
std::error_code renameOver(const std::filesystem::path& from, const std::filesystem::path& to);
