#include "store/clsMFD.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/DiskFile.h"
#include "platform/system/FileBytes.h"
#include "platform/system/KernelName.h"
#include "platform/system/PathBytes.h"
#include "store/AppFolder.h"
#include "store/ErrorLogBlock.h"
#include "store/Expansion.h"
#include "store/MarkedText.h"
#include "store/WebAddress.h"

#include <algorithm>
#include <ctime>
#include <random>
#include <utility>

namespace {

constexpr std::string_view settingsFolderName = "\\settings";
constexpr std::string_view identityName = "\\settings\\installation.id";
constexpr std::size_t identityDigits = 32;

struct LocalTime
{
    std::string date; ///< "yyyy-mm-dd"
    std::string time; ///< "hh:mm:ss"
};

LocalTime localTimeNow()
{
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
#if defined(_WIN32)
    localtime_s(&parts, &now);
#else
    localtime_r(&now, &parts);
#endif
    std::array<char, 32> text{};
    const auto formatted = [&](const char* format) {
        return std::string(text.data(), std::strftime(text.data(), text.size(), format, &parts));
    };
    return {formatted("%Y-%m-%d"), formatted("%H:%M:%S")};
}

/// The operating system's name and release, the processor and the width of a pointer.
std::string systemText()
{
    return kernelName() + ", " + std::to_string(8 * sizeof(void*)) + " bit";
}

bool isIdentity(std::string_view text)
{
    return text.size() == identityDigits && text.find_first_not_of("0123456789abcdef") == std::string_view::npos;
}

std::string newIdentity()
{
    constexpr std::string_view digits = "0123456789abcdef";
    std::random_device random;
    std::uniform_int_distribution<std::size_t> digit(0, digits.size() - 1);
    std::string identity(identityDigits, '0');
    std::generate(identity.begin(), identity.end(), [&] { return digits[digit(random)]; });
    return identity;
}

/// A fault is still logged and reported when this installation's identity cannot be had.
std::optional<std::string> identityIfAny(const clsMFD& store)
{
    try {
        return store.GetUIDStr();
    } catch (const RuntimeError&) {
        return {};
    }
}

} // namespace

clsMFD::clsMFD(const AppFolder& folder, HelperServices services, const Bounds& bounds)
    : m_folder(folder),
      m_services(std::move(services)),
      m_bounds(bounds),
      m_places(localPlaces(folder.root()))
{}

struct clsMFD::IniFile
{
    IniText text;
    bool isWhole = true; ///< writing the text loses nothing that the file holds
};

/// A file that is missing reads as an empty one.
clsMFD::IniFile clsMFD::readIni(const Path& file) const
{
    std::optional<std::string> bytes = readBytesIfPresent(file, IniText::maxBytes);
    if (!bytes)
        return {};
    CodePageText text{*std::move(bytes)};
    const std::optional<std::u16string> marked = m_services.toCodePage ? markedText(text.bytes) : std::nullopt;
    if (marked)
        text = m_services.toCodePage(*marked);
    return {IniText(std::move(text.bytes), bytesOf(file)), text.isWhole};
}

void clsMFD::changeIni(const Path& file, const std::function<void(IniText&)>& change) const
{
    const IniFile before = readIni(file);
    IniText after = before.text;
    change(after);
    if (after.bytes() == before.text.bytes())
        return;
    if (!before.isWhole)
        throw RuntimeError(ErrorNumber::InvalidFileFormat,
                           PrivateName(bytesOf(file),
                                       " is kept as it is, because it holds characters that the code page "
                                       "lacks"));
    writeBytes(file, after.bytes(), Access::OwnerOnly);
}

std::string clsMFD::GetIniKey(std::string_view section, std::string_view key, const Path& file) const
{
    return readIni(file).text.value(section, key).value_or(std::string());
}

void clsMFD::WriteIniKey(std::string_view section, std::string_view key, std::string_view value, const Path& file) const
{
    changeIni(file, [&](IniText& text) { text.setValue(section, key, value); });
}

void clsMFD::WriteIniKeys(std::string_view section, const std::vector<IniEntry>& entries, const Path& file) const
{
    changeIni(file, [&](IniText& text) { text.setValues(section, entries); });
}

std::vector<std::string> clsMFD::GetIniSection(std::string_view section, const Path& file) const
{
    return readIni(file).text.lines(section);
}

std::vector<std::string> clsMFD::GetAllIniSections(const Path& file) const
{
    return readIni(file).text.sectionNames();
}

void clsMFD::ClearIniSection(std::string_view section, const Path& file) const
{
    changeIni(file, [&](IniText& text) { text.removeSection(section); });
}

std::string clsMFD::ParseIniKey(std::string_view line)
{
    return ParseIniKey(line, true).back();
}

std::array<std::string, 2> clsMFD::ParseIniKey(std::string_view line, bool both)
{
    const auto equals = line.find('=');
    const std::string_view value = equals == std::string_view::npos ? std::string_view() : line.substr(equals + 1);
    return {std::string(both ? line.substr(0, equals) : std::string_view()), std::string(value)};
}

std::vector<std::string> clsMFD::ReadFile(const Path& file) const
{
    const std::string bytes = readBytes(file);
    const std::string_view text = bytes;
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find_first_of("\r\n", start), text.size());
        lines.emplace_back(text.substr(start, end - start));
        start = end + (text.substr(end).starts_with("\r\n") ? 2 : 1);
    }
    return lines;
}

void clsMFD::WriteFile(const Path& file, std::string_view text) const
{
    writeBytes(file, text);
}

std::string clsMFD::DecompressString(std::string_view data, std::int32_t length, std::size_t most)
{
    if (length < 0)
        throw RuntimeError(ErrorNumber::InvalidFileFormat, "compressed text");
    return expandBeginning(data, static_cast<std::uint32_t>(length), most);
}

std::string clsMFD::GetUIDStr() const
{
    const Path file = m_folder.path(identityName);
    if (const std::optional<std::string> kept = readBytesIfPresent(file); kept && isIdentity(*kept))
        return *kept;
    m_folder.makeFolder(settingsFolderName);
    const std::string identity = newIdentity();
    writeBytes(file, identity, Access::OwnerOnly);
    return identity;
}

/// What is logged and what is reported of an error, as of now.
ErrorLogBlock clsMFD::blockOf(const ErrorReportRecord& record) const
{
    const LocalTime now = localTimeNow();
    return {
        .date = now.date,
        .time = now.time,
        .file = record.program,
        .function = record.procedure,
        .line = std::to_string(record.line),
        .number = std::to_string(record.number),
        .description = onOneLine(record.description),
        .identity = identityIfAny(*this),
        .system = systemText(),
    };
}

std::string clsMFD::reportable(const RuntimeError& error) const
{
    const std::string name(error.privateName());
    const std::string standIn = reportable(name);
    return reportable(error.descriptionWith(standIn == name ? "(a name)" : standIn));
}

std::string clsMFD::reportable(std::string text) const
{
    return withoutLocalPaths(std::move(text), m_places);
}

/// A log that cannot be moved away goes on growing: what it holds next is worth more.
void clsMFD::makeRoomInLog(const Path& log, std::size_t bytes) const
{
    std::error_code fault;
    const std::uintmax_t size = std::filesystem::file_size(log, fault);
    if (!fault && size + bytes > m_bounds.errorLogBytes)
        static_cast<void>(renameOver(log, m_folder.path(olderErrorLogName)));
}

void clsMFD::LogError(std::string_view program, std::string_view procedure, const RuntimeError& error,
                      std::int32_t line) const
{
    const ErrorLogBlock block = blockOf({.number = static_cast<std::int32_t>(error.number()),
                                         .description = reportable(error),
                                         .program = std::string(program),
                                         .procedure = std::string(procedure),
                                         .line = line});
    const Path log = m_folder.path(errorLogName);
    const std::string text = formatErrorLogBlock(block);
    makeRoomInLog(log, text.size());
    appendBytes(log, text);
}

void clsMFD::SendErrorReport(const ErrorReportRecord& record, std::function<void(bool delivered)> done) const
{
    if (!m_services.postErrorReport) {
        done(false);
        return;
    }
    const ErrorLogBlock block = blockOf(record);
    m_services.postErrorReport(
        joinReport(reportFields(block, block.identity.value_or(std::string()), block.date + ' ' + block.time)),
        std::move(done));
}

void clsMFD::UpdateWarning(const std::string& text) const
{
    if (m_services.updateWarning)
        m_services.updateWarning(text);
}

void clsMFD::ShowHelp(const Path& file, const std::string& topic) const
{
    if (m_services.showHelp)
        m_services.showHelp(file, topic);
}

std::string clsMFD::validateUrl(std::string_view text)
{
    return webAddress(text);
}
