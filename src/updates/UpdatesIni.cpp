#include "updates/UpdatesIni.h"

#include "base/RuntimeError.h"
#include "base/Text.h"
#include "platform/system/FileBytes.h"
#include "store/AppFolder.h"
#include "store/IniText.h"

#include <algorithm>

namespace fs = std::filesystem;

namespace {

constexpr std::string_view listName = "updates.ini";
constexpr std::string_view section = "Files";

fs::path listPath(const AppFolder& folder)
{
    return folder.path(std::string(updatesFolder).append("\\").append(listName));
}

IniText readList(const AppFolder& folder)
{
    const fs::path path = listPath(folder);
    return IniText(readBytesIfPresent(path, IniText::maxBytes).value_or(std::string()), path.string());
}

} // namespace

std::vector<WaitingFile> waitingFiles(const AppFolder& folder)
{
    std::vector<WaitingFile> files;
    for (const std::string& line : readList(folder).lines(section)) {
        const std::size_t equals = line.find('=');
        files.push_back({.name = line.substr(0, equals), .folder = line.substr(equals + 1)});
    }
    return files;
}

bool waitsForAnotherFolder(const AppFolder& folder, const WaitingFile& file)
{
    const std::vector<WaitingFile> waiting = waitingFiles(folder);
    return std::any_of(waiting.begin(), waiting.end(), [&file](const WaitingFile& other) {
        return equalsIgnoringCase(other.name, file.name) && !equalsIgnoringCase(other.folder, file.folder);
    });
}

void dropWaiting(const AppFolder& folder, const std::vector<WaitingFile>& dropped)
{
    IniText list = readList(folder);
    std::vector<WaitingFile> left = waitingFiles(folder);
    std::erase_if(left, [&](const WaitingFile& file) {
        return std::find(dropped.begin(), dropped.end(), file) != dropped.end();
    });
    list.removeSection(section);
    for (const WaitingFile& file : left)
        list.setValue(section, file.name, file.folder);
    writeBytes(listPath(folder), list.bytes());
    for (const WaitingFile& file : dropped) {
        std::error_code ignored; // what stays is on no list any more
        if (isPlainFileName(file.name))
            fs::remove(folder.path(std::string(updatesFolder).append("\\").append(file.name)), ignored);
    }
}

void divert(const AppFolder& folder, const fs::path& arrived, const WaitingFile& file)
{
    if (!isPlainFileName(file.name) || equalsIgnoringCase(file.name, listName))
        throw RuntimeError(ErrorNumber::PermissionDenied, file.name);
    folder.makeFolder(updatesFolder);
    IniText list = readList(folder);
    list.setValue(section, file.name, file.folder);
    // The file first: a list that names what is not there would be believed.
    const fs::path waiting = folder.path(std::string(updatesFolder).append("\\").append(file.name));
    moveFile(arrived, waiting);
    try {
        writeBytes(listPath(folder), list.bytes());
    } catch (const RuntimeError&) {
        std::error_code ignored;
        fs::remove(waiting, ignored);
        throw;
    }
}
