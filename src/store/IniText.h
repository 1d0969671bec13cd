#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// A key and what it is to be set to.
struct IniEntry
{
    std::string_view key;
    std::string_view value;
};

/// Whether both names mean one section: they are compared without regard to the case of ASCII letters and to blanks
/// around them. Whoever lists sections for people compares by this too.
bool isSameSection(std::string_view left, std::string_view right);

/// The bytes of one INI file, read and edited in place: order, comments, blank lines and line ends that an edit does
/// not touch stay as they are. Section and key names are compared as `isSameSection` does. Where a section or a key
/// stands twice, the first one counts. A section's name is what stands between the first "[" and the last "]" of its
/// line.
///
/// A value may hold every byte but line breaks and NUL; what is read may hold NUL too. A value that begins or ends with
/// a blank, or that itself stands in quotes, is written in double quotes; one pair of quotes around a value is taken
/// off when it is read.
class IniText
{
public:
    static constexpr std::size_t maxBytes = std::size_t{4} * 1024 * 1024;

    IniText() = default;
    /// @param name  what a fault is reported of
    /// @throws RuntimeError InvalidFileFormat for UTF-16 and for more than `maxBytes`
    explicit IniText(std::string bytes, std::string_view name = {});

    const std::string& bytes() const { return m_bytes; }

    std::optional<std::string> value(std::string_view section, std::string_view key) const;
    /// The section's lines that have a "=", each as "key=value" without the blanks and quotes around the two.
    std::vector<std::string> lines(std::string_view section) const;
    /// The names in file order as the file spells them, each once. A "[]" gives an empty name.
    std::vector<std::string> sectionNames() const;

    /// Sets the key where it stands, or adds it behind the section's last key; a missing section is added at the end.
    /// New lines end as the file's first line does, in a new file with CR LF.
    /// @throws RuntimeError InvalidProcedureCall for names and values that the file could not give back, and for a new
    ///         section with brackets in its name; InvalidFileFormat when the file would grow beyond `maxBytes`
    void setValue(std::string_view section, std::string_view key, std::string_view value);
    /// Sets several keys, all or none. The section begins with them in this order then, for who reads it by position.
    void setValues(std::string_view section, const std::vector<IniEntry>& entries);
    /// Takes out every section of that name, each down to the next section.
    void removeSection(std::string_view section);

private:
    void putFirst(std::string_view section, const std::vector<IniEntry>& entries);

    std::string m_bytes;
};
