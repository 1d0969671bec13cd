#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The lists of files that an update location offers. Texts are bytes; versions are compared as text, character by
/// character, so "1.10.0.0" comes before "1.9.0.0".

/// Which of the two kinds of lists a text is to be.
enum class ListKind {
    Client,  ///< the program's own files; knows "help.chm" and the folder "{System}"
    Plugins, ///< plugin files; treats both like any other name
};

/// One line of a list. Nothing in it has been looked at: name and folder may be anything.
struct UpdateRecord
{
    std::string name;         ///< file name, no folder
    std::string folder;       ///< below the program folder, begins and ends with "\"; or "{System}"
    std::string type;         ///< short text for the grid
    std::string description;  ///< tool tip of the grid's row
    std::int32_t size = 0;    ///< bytes; 0 when the list gives no usable number
    std::string version = {}; ///< four parts

    bool operator==(const UpdateRecord&) const = default;
};

inline constexpr std::string_view systemFolderMark = "{System}";

/// Whether the text is such a list at all and no error page: every list holds one line that all of them have.
bool isUpdateList(std::string_view text, ListKind kind);

/// The records of a list in its order. Lines with fewer than six fields are skipped, carriage returns taken out.
std::vector<UpdateRecord> parseUpdateList(std::string_view text);

/// The name under which the location holds the file: executables lie there under another ending, so every "exe" in the
/// name becomes "fle".
std::string requestedName(std::string_view name);
