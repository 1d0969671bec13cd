#include "base/RuntimeError.h"

std::string_view errorSentence(ErrorNumber number)
{
    switch (number) {
    case ErrorNumber::InvalidProcedureCall:
        return "Invalid procedure call or argument";
    case ErrorNumber::Overflow:
        return "Overflow";
    case ErrorNumber::OutOfMemory:
        return "Out of memory";
    case ErrorNumber::SubscriptOutOfRange:
        return "Subscript out of range";
    case ErrorNumber::TypeMismatch:
        return "Type mismatch";
    case ErrorNumber::InternalError:
        return "Internal error";
    case ErrorNumber::FileNotFound:
        return "File not found";
    case ErrorNumber::DeviceInputOutput:
        return "Device I/O error";
    case ErrorNumber::FileAlreadyExists:
        return "File already exists";
    case ErrorNumber::DiskFull:
        return "Disk full";
    case ErrorNumber::PermissionDenied:
        return "Permission denied";
    case ErrorNumber::PathNotFound:
        return "Path not found";
    case ErrorNumber::ObjectNotSet:
        return "Object variable not set";
    case ErrorNumber::InvalidFileFormat:
        return "Invalid file format";
    case ErrorNumber::CannotCreateObject:
        return "Component can't create object";
    case ErrorNumber::MemberNotSupported:
        return "Object doesn't support this property or method";
    }
    return "Application-defined or object-defined error";
}

RuntimeError::RuntimeError(ErrorNumber number, std::string_view detail, std::source_location where)
    : m_number(number),
      m_line(static_cast<std::int32_t>(where.line())),
      m_description(errorSentence(number))
{
    if (!detail.empty())
        m_description.append(": ").append(detail);
}

RuntimeError RuntimeError::followedBy(std::string_view text) const
{
    RuntimeError error = *this;
    error.m_description.append(text);
    return error;
}
