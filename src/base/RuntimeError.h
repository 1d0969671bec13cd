#pragma once

#include <cstdint>
#include <exception>
#include <source_location>
#include <string>
#include <string_view>

/// The numbers under which run-time errors are logged, reported and shown.
enum class ErrorNumber : std::int32_t {
    InvalidProcedureCall = 5,
    Overflow = 6,
    OutOfMemory = 7,
    SubscriptOutOfRange = 9,
    TypeMismatch = 13,
    InternalError = 51,
    FileNotFound = 53,
    DeviceInputOutput = 57,
    FileAlreadyExists = 58,
    DiskFull = 61,
    PermissionDenied = 70,
    PathNotFound = 76,
    ObjectNotSet = 91,
    InvalidFileFormat = 321,
    CannotCreateObject = 429,
    MemberNotSupported = 438,
};

/// The fixed English sentence that goes with a number, for example "Subscript out of range".
std::string_view errorSentence(ErrorNumber number);

/// The one kind of fault that error traps are for. Thrown where the fault is noticed; everything that was done before
/// stays done.
class RuntimeError : public std::exception
{
public:
    /// @param detail  what the fault was about, for example a file name; appended to the number's sentence
    /// @param where   the place that is reported as the error's line; helpers pass their caller's
    explicit RuntimeError(ErrorNumber number, std::string_view detail = {},
                          std::source_location where = std::source_location::current());

    /// The same error with `text` behind its description.
    RuntimeError followedBy(std::string_view text) const;

    ErrorNumber number() const noexcept { return m_number; }
    /// The sentence and, after ": ", the detail; in the code page of the texts that it was made from.
    const std::string& description() const noexcept { return m_description; }
    /// The source line that noticed the fault.
    std::int32_t line() const noexcept { return m_line; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    ErrorNumber m_number;
    std::int32_t m_line;
    std::string m_description;
};
