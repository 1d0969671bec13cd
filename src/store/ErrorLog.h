#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;
class clsMFD;

/// The error log as it is worked on: read from its file, then shrinking as its blocks are delivered. The file changes
/// only when it is cleared, or when everything that was read from it has been delivered.
class ErrorLog
{
public:
    /// Both outlive this.
    ErrorLog(const clsMFD& store, const AppFolder& folder);
    ErrorLog(const ErrorLog&) = delete; // the pieces are views into it
    ErrorLog& operator=(const ErrorLog&) = delete;
    ~ErrorLog() = default;

    /// A log as it is in its file, cut into pieces that are views of the text.
    struct Contents
    {
        explicit Contents(std::string whole);

        const std::string text; ///< CR LF between lines
        std::vector<std::string_view> pieces;
    };
    /// Reads a file, in any thread. @return null when there is none
    /// @throws RuntimeError from the disk
    static std::shared_ptr<Contents> read(const std::filesystem::path& file);
    /// Where the log is.
    std::filesystem::path file() const;

    /// From now on this is the log. @param contents  not null; changed by this alone
    void adopt(std::shared_ptr<Contents> contents);
    /// Empties the file, removes the older log and forgets what was read. @throws RuntimeError from the disk
    void clear();

    /// What is left, piece by piece from top to bottom; together they are the text to show, with CR LF between lines.
    const std::vector<std::string_view>& pieces() const { return m_contents->pieces; }
    /// Whether nothing but blanks and line breaks is left.
    bool isBlank() const;
    /// The piece has been delivered.
    void take(std::size_t piece);
    /// Takes every piece that reads like one that has been delivered. @return whether there was one
    bool takeTwins();

    enum class FileFate {
        Stays,        ///< something of it has not been delivered, or it is gone, or changed by somebody else
        Deleted,      ///< all of it has been delivered
        HoldsNewOnly, ///< errors were logged since it was read: they alone are in the file now, and have been read
    };
    /// Deletes the file when nothing is left of what was read from it. @throws RuntimeError from the disk
    FileFate settleFile();

private:
    const clsMFD& m_store;
    const AppFolder& m_folder;
    std::shared_ptr<Contents> m_contents; ///< all that was read; its pieces are what is left
    std::vector<std::string_view> m_delivered;
};
