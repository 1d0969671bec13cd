#pragma once

#include "updates/UpdateList.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

/// What a manifest says of one file.
struct ManifestEntry
{
    std::string digest; ///< SHA-256, 64 hexadecimal digits in lower case
    std::uint64_t size = 0;
    std::string version; ///< empty for "-"
    std::string folder;  ///< as in the lists
    std::string name;

    bool operator==(const ManifestEntry&) const = default;
};

/// The one text that says everything of a release: which files it has, where each belongs, and what it holds. It counts
/// only with the maker's signature.
///
///     serial 12
///     date 2026-03-01
///     <digest> <size> <version> <folder> <name>
///
/// A blank stands between two fields; the name comes last, and it and the folder may hold blanks. The version of a file
/// that has none is "-".
class UpdateManifest
{
public:
    static constexpr std::string_view fileName = "qrvv3rc_manifest.txt";
    static constexpr std::string_view signatureName = "qrvv3rc_manifest.txt.minisig";

    /// @return nothing for a text that is no manifest, in part or as a whole, that speaks of one file twice, or that is
    ///         beyond the bounds of a list
    static std::optional<UpdateManifest> parse(std::string_view text);

    /// Grows with every release.
    std::uint64_t serial() const { return m_serial; }
    const std::string& date() const { return m_date; } ///< "YYYY-MM-DD"
    std::size_t size() const { return m_entries.size(); }

    /// What it says of the file of that folder and name, in any letter case; null when it does not know it.
    const ManifestEntry* find(std::string_view folder, std::string_view name) const;

private:
    bool add(std::string_view line);

    std::uint64_t m_serial = 0;
    std::string m_date;
    std::map<std::string, ManifestEntry, std::less<>> m_entries; ///< by folder and name in lower case
};

/// Whether a list's line says the same as the manifest; the digest is the manifest's alone.
bool agrees(const ManifestEntry& entry, const UpdateRecord& record);
