#include "store/IniText.h"

#include "base/RuntimeError.h"
#include "base/Text.h"

#include <algorithm>
#include <unordered_set>

namespace {

constexpr std::string_view lineBreaks = "\r\n";
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view newFileLineEnd = "\r\n";

enum class LineKind { Section, Key, Other };

/// One line where it stands in the file.
struct IniLine
{
    LineKind kind = LineKind::Other;
    std::string_view name;      ///< of the section or the key, without blanks around it
    std::string_view value;     ///< as written, without blanks around it
    std::size_t start = 0;      ///< of the line in the file
    std::size_t valueStart = 0; ///< behind the "=" and the blanks that follow it
    std::size_t textEnd = 0;    ///< behind the line's last character
    std::size_t end = 0;        ///< behind its line end

    bool isSection(std::string_view wanted) const { return kind == LineKind::Section && isSameSection(name, wanted); }
    bool isKey(std::string_view wanted) const { return kind == LineKind::Key && equalsIgnoringCase(name, wanted); }
};

void classify(IniLine& line, std::string_view bytes)
{
    const std::string_view whole = bytes.substr(line.start, line.textEnd - line.start);
    const std::string_view text = trimmed(whole);
    if (text.starts_with('[')) {
        if (const auto bracket = text.rfind(']'); bracket != std::string_view::npos) {
            line.kind = LineKind::Section;
            line.name = trimmed(text.substr(1, bracket - 1));
            return;
        }
    }
    const auto equals = whole.find('=');
    if (equals == std::string_view::npos || text.starts_with(';') || text.starts_with('#'))
        return;
    line.kind = LineKind::Key;
    line.name = trimmed(whole.substr(0, equals));
    line.value = trimmed(whole.substr(equals + 1));
    line.valueStart = line.value.empty() ? line.textEnd : static_cast<std::size_t>(line.value.data() - bytes.data());
}

/// Goes through a file's lines from the first to the last. A line ends with CR LF, LF or CR.
class LineReader
{
public:
    explicit LineReader(std::string_view bytes)
        : m_bytes(bytes),
          m_at(bytes.starts_with(byteOrderMark) ? byteOrderMark.size() : 0)
    {}

    std::optional<IniLine> next()
    {
        if (m_at == m_bytes.size())
            return {};
        IniLine line;
        line.start = m_at;
        line.textEnd = std::min(m_bytes.find_first_of(lineBreaks, m_at), m_bytes.size());
        line.end = line.textEnd == m_bytes.size()                             ? line.textEnd
                   : m_bytes.substr(line.textEnd).starts_with(newFileLineEnd) ? line.textEnd + 2
                                                                              : line.textEnd + 1;
        m_at = line.end;
        classify(line, m_bytes);
        return line;
    }

    /// The next line, unless another section begins there.
    std::optional<IniLine> nextInSection()
    {
        const std::size_t before = m_at;
        std::optional<IniLine> line = next();
        if (!line || line->kind != LineKind::Section)
            return line;
        m_at = before;
        return {};
    }

    /// Goes on to the first section of that name.
    std::optional<IniLine> findSection(std::string_view name)
    {
        while (std::optional<IniLine> line = next()) {
            if (line->isSection(name))
                return line;
        }
        return {};
    }

private:
    std::string_view m_bytes;
    std::size_t m_at;
};

bool standsInQuotes(std::string_view value)
{
    return value.size() >= 2 && value.front() == '"' && value.back() == '"';
}

std::string_view withoutQuotes(std::string_view value)
{
    return standsInQuotes(value) ? value.substr(1, value.size() - 2) : value;
}

std::string asWritten(std::string_view value)
{
    if (value == trimmed(value) && !standsInQuotes(value))
        return std::string(value);
    return '"' + std::string(value) + '"';
}

std::string_view lineEndOf(std::string_view bytes)
{
    const auto at = bytes.find_first_of(lineBreaks);
    if (at == std::string_view::npos || bytes.substr(at).starts_with(newFileLineEnd))
        return newFileLineEnd;
    return bytes.substr(at, 1);
}

bool hasAnyOf(std::string_view text, std::string_view characters)
{
    return text.find_first_of(characters) != std::string_view::npos;
}

void checkBytes(std::string_view bytes, std::string_view name)
{
    const bool isUtf16 = bytes.starts_with("\xFF\xFE") || bytes.starts_with("\xFE\xFF");
    if (isUtf16 || bytes.size() > IniText::maxBytes)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, PrivateName(name));
}

void checkNames(std::string_view section, std::string_view key, std::string_view value)
{
    using namespace std::string_view_literals;
    // A key that begins like a section or a comment would be read as one.
    if (section.empty() || hasAnyOf(section, "\r\n\0"sv) || key.empty() || hasAnyOf(key.substr(0, 1), "[;#"sv) ||
        hasAnyOf(key, "=\r\n\0"sv) || hasAnyOf(value, "\r\n\0"sv))
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, PrivateName(section));
}

enum class Missing { Nothing, Key, Section };

/// Where a value is to be put, and what must be put there with it.
struct Place
{
    Missing what = Missing::Section;
    std::size_t start = 0;
    std::size_t length = 0; ///< of the old value
};

Place placeFor(std::string_view bytes, std::string_view section, std::string_view key)
{
    LineReader reader(bytes);
    const std::optional<IniLine> header = reader.findSection(section);
    if (!header)
        return {Missing::Section, bytes.size(), 0};
    std::size_t behindLastKey = 0;
    std::size_t behindLastText = header->end;
    while (const std::optional<IniLine> line = reader.nextInSection()) {
        if (line->isKey(key))
            return {Missing::Nothing, line->valueStart, line->textEnd - line->valueStart};
        if (line->kind == LineKind::Key)
            behindLastKey = line->end;
        if (!trimmed(bytes.substr(line->start, line->textEnd - line->start)).empty())
            behindLastText = line->end;
    }
    // Comments behind the last key may belong to the next section; without any key they belong to this one.
    return {Missing::Key, behindLastKey != 0 ? behindLastKey : behindLastText, 0};
}

/// Whether a line put at `start` would run on in a last line that has no end.
bool runsOn(std::string_view bytes, std::size_t start)
{
    return start > 0 && !hasAnyOf(bytes.substr(start - 1, 1), lineBreaks) && bytes != byteOrderMark;
}

} // namespace

bool isSameSection(std::string_view left, std::string_view right)
{
    return equalsIgnoringCase(trimmed(left), trimmed(right));
}

IniText::IniText(std::string bytes, std::string_view name) : m_bytes(std::move(bytes))
{
    checkBytes(m_bytes, name);
}

std::optional<std::string> IniText::value(std::string_view section, std::string_view key) const
{
    LineReader reader(m_bytes);
    if (!reader.findSection(section))
        return {};
    while (const std::optional<IniLine> line = reader.nextInSection()) {
        if (line->isKey(trimmed(key)))
            return std::string(withoutQuotes(line->value));
    }
    return {};
}

std::vector<std::string> IniText::lines(std::string_view section) const
{
    std::vector<std::string> result;
    LineReader reader(m_bytes);
    if (!reader.findSection(section))
        return result;
    while (const std::optional<IniLine> line = reader.nextInSection()) {
        if (line->kind == LineKind::Key)
            result.push_back(std::string(line->name).append("=").append(withoutQuotes(line->value)));
    }
    return result;
}

std::vector<std::string> IniText::sectionNames() const
{
    std::vector<std::string> names;
    std::unordered_set<std::string> known;
    LineReader reader(m_bytes);
    while (const std::optional<IniLine> line = reader.next()) {
        if (line->kind == LineKind::Section && known.insert(lowerAscii(line->name)).second)
            names.emplace_back(line->name);
    }
    return names;
}

void IniText::setValue(std::string_view section, std::string_view key, std::string_view value)
{
    section = trimmed(section);
    key = trimmed(key);
    checkNames(section, key, value);

    const Place place = placeFor(m_bytes, section, key);
    if (place.what == Missing::Section && hasAnyOf(section, "[]")) // not every reader takes them for a part of the name
        throw RuntimeError(ErrorNumber::InvalidProcedureCall, PrivateName(section));
    const std::string_view lineEnd = lineEndOf(m_bytes);
    std::string text;
    if (place.what != Missing::Nothing && runsOn(m_bytes, place.start))
        text.append(lineEnd);
    if (place.what == Missing::Section)
        text.append("[").append(section).append("]").append(lineEnd);
    if (place.what != Missing::Nothing)
        text.append(key).append("=");
    text.append(asWritten(value));
    if (place.what != Missing::Nothing)
        text.append(lineEnd);

    if (m_bytes.size() - place.length + text.size() > maxBytes)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, PrivateName(section));
    m_bytes.replace(place.start, place.length, text);
}

void IniText::setValues(std::string_view section, const std::vector<IniEntry>& entries)
{
    IniText changed = *this;
    for (const auto& [key, value] : entries)
        changed.setValue(section, key, value);
    changed.putFirst(section, entries);
    *this = std::move(changed);
}

/// Moves the lines of these keys, which are all there, to the front of the section, unless they stand there.
void IniText::putFirst(std::string_view section, const std::vector<IniEntry>& entries)
{
    LineReader reader(m_bytes);
    const std::optional<IniLine> header = reader.findSection(section);
    if (!header)
        return;
    const std::string lineEnd(lineEndOf(m_bytes));
    std::vector<std::string> wanted(entries.size());
    std::string others;
    std::size_t end = header->end;
    std::size_t found = 0; // in order, at the front
    bool isInOrder = true;
    while (const std::optional<IniLine> line = reader.nextInSection()) {
        std::string text = m_bytes.substr(line->start, line->end - line->start);
        end = line->end;
        const auto entry = std::find_if(entries.begin(), entries.end(),
                                        [&line](const IniEntry& one) { return line->isKey(trimmed(one.key)); });
        const auto index = static_cast<std::size_t>(entry - entries.begin());
        if (line->kind == LineKind::Key && found < entries.size()) {
            isInOrder = isInOrder && index == found;
            ++found;
        }
        if (entry == entries.end() || !wanted[index].empty()) {
            others.append(text);
            continue;
        }
        if (line->end == line->textEnd)
            text.append(lineEnd);
        wanted[index] = std::move(text);
    }
    if (!isInOrder)
        m_bytes.replace(header->end, end - header->end, join(wanted, {}) + others);
}

void IniText::removeSection(std::string_view section)
{
    std::string kept;
    std::size_t keptTo = 0; // of m_bytes, what lies before is in `kept` or removed
    bool removing = false;
    LineReader reader(m_bytes);
    while (const std::optional<IniLine> line = reader.next()) {
        if (line->kind != LineKind::Section)
            continue;
        const bool remove = line->isSection(section);
        if (remove && !removing)
            kept.append(m_bytes, keptTo, line->start - keptTo);
        if (removing || remove)
            keptTo = line->start;
        removing = remove;
    }
    if (!removing)
        kept.append(m_bytes, keptTo);
    m_bytes = std::move(kept);
}
