#pragma once

#include "diagnostics/help/HelpArchive.h"
#include "diagnostics/help/HelpContents.h"

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A compiled help file (.chm), read. The file may come from a network and may be damaged.
class HelpBook
{
public:
    static constexpr std::size_t maxFileBytes = std::size_t{64} * 1024 * 1024;
    static constexpr std::size_t maxPageBytes = std::size_t{16} * 1024 * 1024;

    /// Reads the whole file into memory, so that it can be replaced meanwhile.
    /// @throws RuntimeError FileNotFound, PathNotFound, PermissionDenied; InvalidFileFormat for what is no help file,
    ///         is damaged, or has more than maxFileBytes
    explicit HelpBook(std::filesystem::path file);

    const std::filesystem::path& file() const { return m_path; }

    /// The bytes of a page, picture or style sheet, or nothing when the book has none of that name.
    /// @param name  with or without a leading "/"; "\" counts as "/"; found in another letter case when there is none
    /// in
    ///              the given one; an anchor behind "#" is not looked at
    /// @throws RuntimeError InvalidFileFormat when the object is damaged or has more than maxPageBytes
    std::optional<std::string> page(std::string_view name) const;

    /// The names of all pages, pictures and style sheets, without the leading "/", sorted.
    std::vector<std::string> names() const;

    /// The table of contents from top to bottom; empty when the book has none that can be read.
    const std::vector<HelpContentsEntry>& contents() const { return m_contents; }

    /// The page to begin with: the first of the contents, or of the book when it has no contents; empty for an empty
    /// book.
    std::string homePage() const;

    /// Whether the file on disk is still the one that was read.
    bool isCurrent() const;

private:
    struct Stamp
    {
        std::filesystem::file_time_type changed;
        std::uintmax_t bytes = 0;
        bool operator==(const Stamp&) const = default;
    };
    using Objects = std::map<std::string, std::size_t, std::less<>>;

    static std::optional<Stamp> stampOf(const std::filesystem::path& file);
    const Objects::value_type* find(std::string_view name) const;

    std::filesystem::path m_path;
    std::optional<Stamp> m_stamp;
    HelpArchive m_archive;
    Objects m_objects; ///< lengths by full name, which begins with "/" for what the author put in
    std::map<std::string, std::string, std::less<>> m_anyCase; ///< from lower case to a full name
    std::vector<HelpContentsEntry> m_contents;
};
