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
constexpr char betweenFolderAndName = '|'; // as in the lists, so neither holds one
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
    for (const std::string& line : stored(m_folder).lines(digestSection)) {
        const std::size_t equals = line.find('=');
        found.emplace(line.substr(0, equals), line.substr(equals + 1));
    }
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
    std::vector<WaitingFile> files;
    for (const std::string& line : stored(m_folder).lines(addedSection)) {
        const std::size_t value = line.find('=') + 1;
        if (const std::size_t cut = line.find(betweenFolderAndName, value); cut != std::string::npos)
            files.push_back({.name = line.substr(cut + 1), .folder = line.substr(value, cut - value)});
    }
    return files;
}

/// Numbered, because two folders may get a file of one name.
void UpdateState::noteAdded(const WaitingFile& file) const
{
    set(addedSection, std::to_string(added().size() + 1), file.folder + betweenFolderAndName + file.name);
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
