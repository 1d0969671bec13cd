#pragma once

#include "base/Bounds.h"
#include "store/IniText.h"
#include "store/LocalPaths.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

class AppFolder;
class RuntimeError;
struct ErrorLogBlock;

/// What is reported of one trapped error.
struct ErrorReportRecord
{
    std::int32_t number = 0;
    std::string description;
    std::string program; ///< "QRVV3RC.exe " and major.minor.revision
    std::string procedure;
    std::int32_t line = 0;

    bool operator==(const ErrorReportRecord&) const = default;
};

/// A text in bytes of the code page.
struct CodePageText
{
    std::string bytes;
    bool isWhole = true; ///< else characters that the code page lacks have become "?"
};

/// What the helper passes on to parts of the program that lie above the store.
struct HelperServices
{
    /// Shows a warning about disabled or outdated components to the user.
    std::function<void(const std::string& text)> updateWarning;
    /// Opens a topic of a compiled help file.
    std::function<void(const std::filesystem::path& file, const std::string& topic)> showHelp;
    /// Posts an already joined fifteen-field report; calls back once with whether the page took it.
    std::function<void(const std::string& report, std::function<void(bool delivered)>)> postErrorReport;
    /// Brings an INI file that some editor has saved as Unicode into the code page. Without it, UTF-16 is refused.
    std::function<CodePageText(std::u16string_view text)> toCodePage;
};

/// The helper: INI files, text files, expansion, the error log and the machine's identity. All texts are bytes in the
/// code page of the files; every `file` is a full path. A missing file, section or key reads as empty. All faults are
/// RuntimeErrors with the classic numbers.
class clsMFD
{
public:
    using Path = std::filesystem::path;

    /// @param folder  where the error log and this installation's identity are kept; outlives the helper
    clsMFD(const AppFolder& folder, HelperServices services, const Bounds& bounds = {});

    /// INI files are read in the code page, and as Unicode when they begin with a byte order mark.
    std::string GetIniKey(std::string_view section, std::string_view key, const Path& file) const;
    /// Creates file (readable by its owner only), section and key as needed. The file is replaced whole or not at all,
    /// and is in the code page then.
    /// @throws RuntimeError InvalidFileFormat for a file that is too large, or in Unicode with characters that the code
    ///         page lacks: it is kept as it is; InvalidProcedureCall for names that an INI file cannot hold (empty or
    ///         line breaks in a section, brackets in a new one, "=" or line breaks in a key, line breaks in a value);
    ///         PermissionDenied, PathNotFound, DiskFull from the disk
    void WriteIniKey(std::string_view section, std::string_view key, std::string_view value, const Path& file) const;
    /// The same for several keys in one write. The section begins with them in this order then.
    void WriteIniKeys(std::string_view section, const std::vector<IniEntry>& entries, const Path& file) const;
    /// The section's lines, each "key=value" with the blanks around both taken off, without comments.
    std::vector<std::string> GetIniSection(std::string_view section, const Path& file) const;
    /// The names of all sections in file order, each once.
    std::vector<std::string> GetAllIniSections(const Path& file) const;
    /// Removes every section of that name with all its lines; a missing one is no fault.
    void ClearIniSection(std::string_view section, const Path& file) const;
    /// The text behind the first "="; empty when there is none.
    static std::string ParseIniKey(std::string_view line);
    /// Key and value, split at the first "="; a line without "=" is all key.
    static std::array<std::string, 2> ParseIniKey(std::string_view line, bool both);

    /// The file's lines without their ends. @throws RuntimeError FileNotFound, PermissionDenied
    std::vector<std::string> ReadFile(const Path& file) const;
    /// Makes the file hold exactly `text`.
    void WriteFile(const Path& file, std::string_view text) const;
    /// @param length  bytes of the expanded text, as declared by the tracker
    /// @param most    of a text that is longer than these bytes and a little no more than these are expanded
    /// @throws RuntimeError InvalidFileFormat for damaged data or a length that does not match, OutOfMemory above 256
    /// MiB
    static std::string DecompressString(std::string_view data, std::int32_t length,
                                        std::size_t most = Bounds{}.logTextBytes);

    /// 32 hexadecimal digits that name this installation; made at random on first use and kept in the settings folder.
    std::string GetUIDStr() const;
    /// What a log or a report may tell of an error: its description without paths of this machine and without its
    /// private name.
    std::string reportable(const RuntimeError& error) const;
    /// The same of a text that was written before, as a block of an older log.
    std::string reportable(std::string text) const;
    /// Appends one block to "\ErrorLog.txt". A log that would grow beyond its bound takes the place of
    /// "\ErrorLog.old.txt" first.
    void LogError(std::string_view program, std::string_view procedure, const RuntimeError& error,
                  std::int32_t line) const;
    /// Delivers a report without holding anybody up; `done` is called once with whether it was delivered.
    void SendErrorReport(const ErrorReportRecord& record, std::function<void(bool delivered)> done) const;
    void UpdateWarning(const std::string& text) const;
    void ShowHelp(const Path& file, const std::string& topic) const;
    /// The well-formed web address that `text` means, or an empty text when it means none.
    static std::string validateUrl(std::string_view text);

private:
    ErrorLogBlock blockOf(const ErrorReportRecord& record) const;
    struct IniFile;
    IniFile readIni(const Path& file) const;
    void changeIni(const Path& file, const std::function<void(IniText&)>& change) const;

    void makeRoomInLog(const Path& log, std::size_t bytes) const;

    const AppFolder& m_folder;
    HelperServices m_services;
    Bounds m_bounds;
    std::vector<LocalPlace> m_places;
};
