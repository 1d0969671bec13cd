#include "updates/UpdateState.h"

#include "base/RuntimeError.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <charconv>

namespace {

constexpr std::string_view stateFile = "\\settings\\updates.ini";
constexpr std::string_view serialSection = "Serials";
constexpr std::string_view digestSection = "Digests";
constexpr std::string_view addedSection = "Added";
constexpr std::string_view progressSection = "Progress";
constexpr std::string_view handOverKey = "HandOver";
constexpr std::string_view trialKey = "Trial";

IniText stored(const AppFolder& folder)
{
    try {
        return IniText(readBytesIfPresent(folder.path(stateFile), IniText::maxBytes).value_or(std::string()),
                       stateFile);
    } catch (const RuntimeError&) {
        return {};
    }
}

void store(const AppFolder& folder, const IniText& text)
{
    folder.makeFolder("\\settings");
    writeBytes(folder.path(stateFile), text.bytes(), Access::OwnerOnly);
}

std::vector<WaitingFile> entries(const AppFolder& folder, std::string_view section)
{
    std::vector<WaitingFile> found;
    for (const std::string& line : stored(folder).lines(section)) {
        const std::size_t equals = line.find('=');
        found.push_back({.name = line.substr(0, equals), .folder = line.substr(equals + 1)});
    }
    return found;
}

} // namespace

std::string UpdateState::value(std::string_view section, std::string_view key) const
{
    return stored(m_folder).value(section, key).value_or(std::string());
}

void UpdateState::set(std::string_view section, std::string_view key, std::string_view value) const
{
    IniText text = stored(m_folder);
    if (text.value(section, key).value_or(std::string()) == value)
        return;
    text.setValue(section, key, value);
    store(m_folder, text);
}

void UpdateState::remove(std::string_view section) const
{
    IniText text = stored(m_folder);
    const std::size_t before = text.bytes().size();
    text.removeSection(section);
    if (text.bytes().size() != before)
        store(m_folder, text);
}

std::uint64_t UpdateState::highestSerial(std::string_view key) const
{
    const std::string text = value(serialSection, key);
    std::uint64_t serial = 0;
    std::from_chars(text.data(), text.data() + text.size(), serial);
    return serial;
}

void UpdateState::noteSerial(std::string_view key, std::uint64_t serial) const
{
    set(serialSection, key, std::to_string(serial));
}

std::map<std::string, std::string> UpdateState::digests() const
{
    std::map<std::string, std::string> found;
    for (const WaitingFile& entry : entries(m_folder, digestSection))
        found.emplace(entry.name, entry.folder);
    return found;
}

void UpdateState::noteDigest(std::string_view name, std::string_view digest) const
{
    set(digestSection, name, digest);
}

void UpdateState::forgetDigests() const
{
    remove(digestSection);
}

std::vector<WaitingFile> UpdateState::added() const
{
    return entries(m_folder, addedSection);
}

void UpdateState::noteAdded(const WaitingFile& file) const
{
    set(addedSection, file.name, file.folder);
}

void UpdateState::forgetAdded() const
{
    remove(addedSection);
}

UpdateState::HandOver UpdateState::handOver() const
{
    const std::string text = value(progressSection, handOverKey);
    return text == "Started" ? HandOver::Started : text == "Told" ? HandOver::Told : HandOver::None;
}

void UpdateState::noteHandOver(HandOver state) const
{
    set(progressSection, handOverKey, state == HandOver::Started ? "Started" : state == HandOver::Told ? "Told" : "");
}

bool UpdateState::isOnTrial() const
{
    return value(progressSection, trialKey) == "1";
}

void UpdateState::noteTrial(bool isOnTrial) const
{
    set(progressSection, trialKey, isOnTrial ? "1" : "");
}
