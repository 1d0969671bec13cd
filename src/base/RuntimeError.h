#pragma once

#include <cstddef>
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

/// A detail of which `name` stays on this machine: a path, or what somebody or something of the user's is called. The
/// user sees it, a report of the error does not tell it.
struct PrivateName
{
    explicit PrivateName(std::string_view whatItIs, std::string_view textAfter = {}, std::string_view textBefore = {})
        : name(whatItIs),
          after(textAfter),
          before(textBefore)
    {}

    std::string_view name;
    std::string_view after;
    std::string_view before;
};

/// The one kind of fault that error traps are for. Thrown where the fault is noticed; everything that was done before
/// stays done.
class RuntimeError : public std::exception
{
public:
    /// @param detail  what the fault was about, for example a file name; appended to the number's sentence
    /// @param where   the place that is reported as the error's line; helpers pass their caller's
    explicit RuntimeError(ErrorNumber number, std::string_view detail = {},
                          std::source_location where = std::source_location::current());

    RuntimeError(ErrorNumber number, const PrivateName& detail,
                 std::source_location where = std::source_location::current());

    /// The same error with `text` behind its description.
    RuntimeError followedBy(std::string_view text) const;

    ErrorNumber number() const noexcept { return m_number; }
    /// The sentence and, after ": ", the detail; in the code page of the texts that it was made from. Cut at
    /// `Bounds::descriptionBytes`.
    const std::string& description() const noexcept { return m_description; }
    /// The part of the description that stays on this machine; empty when there is none.
    std::string_view privateName() const noexcept;
    /// The description with `standIn` in the place of its private name.
    std::string descriptionWith(std::string_view standIn) const;
    /// The source line that noticed the fault.
    std::int32_t line() const noexcept { return m_line; }
    const char* what() const noexcept override { return m_description.c_str(); }

private:
    void append(std::string_view text);

    ErrorNumber m_number;
    std::int32_t m_line;
    std::string m_description;
    std::size_t m_privateAt = 0; ///< of the description
    std::size_t m_privateSize = 0;
};
