#include "base/RuntimeError.h"

#include "base/Bounds.h"

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
        append(": ");
    append(detail);
}

RuntimeError::RuntimeError(ErrorNumber number, const PrivateName& detail, std::source_location where)
    : RuntimeError(number, detail.before, where)
{
    if (detail.before.empty())
        append(": ");
    m_privateAt = m_description.size();
    append(detail.name);
    m_privateSize = m_description.size() - m_privateAt;
    append(detail.after);
}

RuntimeError RuntimeError::followedBy(std::string_view text) const
{
    RuntimeError error = *this;
    error.append(text);
    return error;
}

std::string_view RuntimeError::privateName() const noexcept
{
    return std::string_view(m_description).substr(m_privateAt, m_privateSize);
}

std::string RuntimeError::descriptionWith(std::string_view standIn) const
{
    std::string text = m_description;
    if (m_privateSize > 0)
        text.replace(m_privateAt, m_privateSize, standIn);
    return text;
}

void RuntimeError::append(std::string_view text)
{
    constexpr std::size_t most = Bounds{}.descriptionBytes;
    m_description.append(text.substr(0, most - m_description.size()));
}
